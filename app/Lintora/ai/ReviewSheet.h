#pragma once

#include "app/Lintora/ai/ReviewRowsModel.h"
#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

class CheckBox;
class ElidedLabel;
class QLabel;
class QListView;
class QPushButton;
class QStackedWidget;
class WorkView;

/// Proofreading the selected track, and taking what is proposed.
///
/// What is proposed is the model's: closing loses nothing, and the work goes on.
class ReviewSheet : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    ReviewSheet(LintoraModel &model, QWidget *content);

    void present();
    bool editsSession() const override { return true; }

private:
    QWidget *makeTask();
    QWidget *makeFilter();
    QWidget *makeRows();
    QWidget *makeButtons();
    void follow();
    void followTask();
    void followRows();

    LintoraModel &m_model;
    Review &m_review;
    ReviewRowsModel m_rows;
    QLabel *m_worker;
    CheckBox *m_reference;
    WorkView *m_work;
    QWidget *m_filter;
    CheckBox *m_onlyChanged;
    QStackedWidget *m_stage;
    QLabel *m_empty;
    QListView *m_list;
    ElidedLabel *m_status;
    QPushButton *m_undo;
    QPushButton *m_start;
    QPushButton *m_apply;
};
