#include "app/Lintora/ai/ReviewSheet.h"

#include "app/Lintora/ai/WorkView.h"
#include "app/Lintora/ai/WorkerTexts.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/MarkedTextDelegate.h"

#include <QHBoxLayout>
#include <QListView>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

ReviewSheet::ReviewSheet(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_review(model.review())
    , m_rows(model.review())
{
    addHeading(u"AI 校对"_s);
    body()->addWidget(makeTask());
    m_work = new WorkView(model.aiWork(), this);
    connect(m_work, &WorkView::cancelRequested, &model, &LintoraModel::cancelAI);
    body()->addWidget(m_work);
    body()->addWidget(makeFilter());
    body()->addWidget(makeRows(), 1);
    body()->addWidget(makeButtons());

    connect(this, &Sheet::closeRequested, &model, [&model] { model.window().setAIPresented(false); });
    for (const auto signal : {&Review::rowsChanged, &Review::statusChanged, &Review::runningChanged})
        connect(&m_review, signal, this, &ReviewSheet::follow);
    for (const auto signal : {&LintoraModel::historyChanged, &LintoraModel::tracksChanged, &LintoraModel::itemsChanged,
                              &LintoraModel::selectedTrackIDChanged, &LintoraModel::aiBusyChanged})
        connect(&model, signal, this, &ReviewSheet::follow);
    connect(&model.aiSettings(), &AISettings::choicesChanged, this, &ReviewSheet::follow);
    connect(&model.modelDownloads(), &ModelDownloads::rowsChanged, this, &ReviewSheet::follow);
}

QWidget *ReviewSheet::makeTask()
{
    auto *const task = new QWidget(this);
    m_worker = Controls::note({}, task);
    m_worker->setAccessibleName(u"由谁校对"_s);
    QPushButton *const settings = Controls::quietButton(u"AI 设置…"_s, task);
    m_reference = new CheckBox(u"对照原文校对"_s, task);
    m_reference->setAccessibleName(m_reference->text());
    auto *const first = new QHBoxLayout;
    first->setSpacing(VELTheme::gap);
    first->addWidget(m_worker, 1);
    first->addWidget(settings, 0, Qt::AlignTop);
    auto *const layout = new QVBoxLayout(task);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::step);
    layout->addLayout(first);
    layout->addWidget(m_reference);
    connect(settings, &QPushButton::clicked, &m_model, [this] {
        m_model.showAISettings(m_model.aiSettings().choices().aiUseOnline ? WindowState::AISettingsTab::text
                                                                          : WindowState::AISettingsTab::models);
    });
    connect(m_reference, &CheckBox::clicked, this, [this](bool on) {
        AIChoices choices = m_model.aiSettings().choices();
        choices.aiUseReference = on;
        m_model.aiSettings().choose(choices);
    });
    return task;
}

QWidget *ReviewSheet::makeFilter()
{
    m_filter = new QWidget(this);
    m_onlyChanged = new CheckBox(u"仅看有修改"_s, m_filter);
    m_onlyChanged->setAccessibleName(m_onlyChanged->text());
    m_onlyChanged->setChecked(m_rows.showsOnlyChanged());
    QPushButton *const all = Controls::quietButton(u"全选"_s, m_filter);
    QPushButton *const none = Controls::quietButton(u"全不选"_s, m_filter);
    auto *const layout = new QHBoxLayout(m_filter);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_onlyChanged);
    layout->addStretch();
    layout->addWidget(all);
    layout->addWidget(none);
    connect(m_onlyChanged, &CheckBox::clicked, this, [this](bool on) {
        m_rows.setShowsOnlyChanged(on);
        followRows();
    });
    connect(all, &QPushButton::clicked, this, [this] { m_review.selectAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { m_review.selectAll(false); });
    return m_filter;
}

QWidget *ReviewSheet::makeRows()
{
    m_stage = new QStackedWidget(this);
    m_list = new QListView(m_stage);
    m_list->setModel(&m_rows);
    MarkedTextDelegate::install(*m_list);
    m_list->setAccessibleName(u"校对结果"_s);
    m_empty = Controls::note({}, m_stage);
    m_empty->setAlignment(Qt::AlignCenter);
    m_stage->addWidget(m_empty);
    m_stage->addWidget(m_list);
    return m_stage;
}

QWidget *ReviewSheet::makeButtons()
{
    auto *const row = new QWidget(this);
    m_status = new ElidedLabel(row);
    m_status->setFont(VELTheme::smallFont());
    m_status->setAccessibleName(u"状态"_s);
    m_undo = Controls::button(u"撤销应用"_s, row);
    m_start = Controls::button(u"开始校对"_s, row);
    m_apply = Controls::primaryButton({}, row);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, VELTheme::step, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_status, 1);
    layout->addWidget(m_undo);
    layout->addWidget(m_start);
    layout->addWidget(m_apply);
    connect(m_undo, &QPushButton::clicked, this, [this] {
        m_start->setFocus(); // before this button goes
        m_review.undo();
    });
    connect(m_start, &QPushButton::clicked, &m_review, &Review::start);
    connect(m_apply, &QPushButton::clicked, &m_review, &Review::apply);
    return row;
}

void ReviewSheet::present()
{
    if (isVisible())
        return;
    open(m_start);
    follow();
    if (!m_start->isEnabled())
        focusNextPrevChild(true);
}

void ReviewSheet::follow()
{
    if (!isVisible())
        return;
    followTask();
    followRows();
    m_status->setText(m_review.status());
    Controls::showAsFailure(m_status, m_review.isRefused());
}

void ReviewSheet::followTask()
{
    m_worker->setText(WorkerTexts::textWorker(m_model.aiSettings().choices()));
    const auto reference = m_review.reference();
    m_reference->setChecked(reference && m_model.aiSettings().choices().aiUseReference);
    m_reference->setEnabled(reference && !m_model.aiBusy());
    m_reference->setToolTip(reference ? u"把“%1”作为原文，一并交给校对"_s.arg(*reference)
                                      : u"没有与当前字幕逐条对应的原文"_s);
    m_reference->setAccessibleDescription(m_reference->toolTip());
    m_work->setVisible(m_review.isRunning());
    m_start->setEnabled(!m_model.aiBusy() && !m_model.items().isEmpty());
}

void ReviewSheet::followRows()
{
    const bool hasRows = !m_review.aiReviewRows().isEmpty();
    const bool isOutdated = hasRows && m_review.isOutdated();
    m_filter->setVisible(hasRows);
    m_stage->setCurrentWidget(m_rows.rowCount() > 0 ? static_cast<QWidget *>(m_list) : m_empty);
    m_empty->setText(hasRows ? u"没有需要修改的字幕"_s
                             : u"校对错别字、识别错误和标点，不改时间。\n结果先列在这里，勾选后才写入字幕。"_s);
    m_start->setText(hasRows ? u"重新校对"_s : u"开始校对"_s);
    m_start->setAccessibleName(m_start->text());
    m_apply->setText(u"应用勾选 · %1"_s.arg(m_review.selectedCount()));
    m_apply->setAccessibleName(m_apply->text());
    m_apply->setVisible(hasRows);
    m_apply->setEnabled(!m_model.aiBusy() && !isOutdated);
    m_apply->setToolTip(isOutdated ? u"字幕在校对后有改动，结果仅供对照"_s : QString());
    m_undo->setVisible(m_review.canUndo());
}
