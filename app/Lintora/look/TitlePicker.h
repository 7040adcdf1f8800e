#pragma once

#include "app/Lintora/look/TitleListModel.h"
#include "app/model/LintoraModel.h"

#include <QWidget>

class QLabel;
class QListView;
class QPushButton;

/// Where a title of the user's own is chosen, whose look the cues are to have: the arrow keys go through the titles of
/// a project, Return chooses, Escape leaves.
class TitlePicker : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit TitlePicker(LintoraModel &model, QWidget *parent = nullptr);

    void begin(); ///< With the titles of the project that was imported, if one was.

Q_SIGNALS:
    void previewed(const TitleTemplate &look); ///< What is looked at now.
    void chosen(const TitleTemplate &look);
    void left(); ///< Nothing was chosen.

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeFoot();
    void follow();
    void choose();

    LintoraModel &m_model;
    TitleListModel m_titles;
    QLabel *m_source;
    QListView *m_list;
    QLabel *m_status;
    QPushButton *m_other = nullptr;
    QPushButton *m_choose = nullptr;
};
