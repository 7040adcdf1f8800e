#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/Lintora/tools/ComparedRows.h"
#include "app/model/LintoraModel.h"

class ElidedLabel;
class QListView;
class QPushButton;

/// The states of the session that were kept: which there are, how the chosen one differs from now, and bringing it
/// back.
class VersionsWorkspace : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    VersionsWorkspace(LintoraModel &model, QWidget *content);

    void present();

private:
    QListView *makeList(const QString &name, ComparedRows &rows);
    QWidget *makeButtons();
    void follow();
    void followStatus();
    void showDifference();
    qsizetype chosen() const; ///< The version; -1 when there is none.

    Versions &m_versions;
    ComparedRows m_rows;
    ComparedRows m_changes;
    QListView *m_list;
    QListView *m_difference;
    ElidedLabel *m_status;
    QPushButton *m_restore;
};
