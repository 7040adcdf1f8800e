#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

#include <QStringListModel>

class CheckBox;
class ElidedLabel;
class QListView;
class QPushButton;

/// The words of a track on their way back into the titles of a project: what would change there, line by line, and
/// whether more than the words is to be written.
class TitleWritingSheet : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    TitleWritingSheet(LintoraModel &model, QWidget *content);

    void present();

private:
    QWidget *makeButtons();
    void follow();
    void write();

    LintoraModel &m_model;
    TitleWriting &m_writing;
    CheckBox *m_everything;
    QStringListModel m_lines;
    QListView *m_list;
    ElidedLabel *m_status;
    QPushButton *m_write;
};
