#pragma once

#include "app/Lintora/look/FontListModel.h"

#include <QWidget>

class ChoiceBox;
class FontRowDelegate;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QToolButton;

/// Where a font is looked for: what is typed searches by Chinese name, English name, pinyin and initials; the arrow
/// keys go through what is found, Return chooses, Escape leaves.
class FontPicker : public QWidget
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    FontPicker(FontCatalogue &catalogue, Preferences &preferences, QWidget *parent = nullptr);

    /// Begins a search, with `family` and `face` as what is chosen so far.
    void begin(const QString &family, const QString &face);

Q_SIGNALS:
    void previewed(const QString &family, const QString &face); ///< What is looked at now.
    void chosen(const QString &family, const QString &face);
    void left(); ///< Nothing was chosen.

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeFoot();
    void search();
    void followCatalogue();
    void followCurrent();
    void followCount();
    void toggleFavorite(const QModelIndex &index);
    void choose();

    FontCatalogue &m_catalogue;
    FontListModel m_fonts;
    QLineEdit *m_query;
    QListView *m_list;
    FontRowDelegate *m_rows;
    QLabel *m_count;
    ChoiceBox *m_face;
    QToolButton *m_favorite;
    QPushButton *m_choose;
    QString m_family; ///< What is looked at; empty before the first.
    QString m_wantedFace;
    QString m_firstFamily; ///< What was chosen when the search began.
    QString m_firstFace;
    bool m_isRefreshing = false;
};
