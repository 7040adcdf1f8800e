#pragma once

#include "app/Lintora/cues/CueTable.h"

#include <QWidget>

class FilterField;
class QLabel;
class QPushButton;
class QToolButton;

/// What stands above the table: the language groups, and which of the cues are shown, with their number.
class TableHeading : public QWidget
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    TableHeading(LintoraModel &model, CueTable &table, QWidget *parent = nullptr);

    void showAll(); ///< No cue is hidden any more.

private:
    void follow();

    LintoraModel &m_model;
    CueTable &m_table;
    QLabel *m_count;
    QPushButton *m_warnings;
    FilterField *m_filter;
    QToolButton *m_strip; ///< Unfolds the timing strip.
    QToolButton *m_fold;  ///< Folds the picture.
};
