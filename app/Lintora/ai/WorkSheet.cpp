#include "app/Lintora/ai/WorkSheet.h"

#include "app/Lintora/ai/WorkView.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/FieldRow.h"

#include <QApplication>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

WorkSheet::WorkSheet(LintoraModel &model, QWidget *content, const Texts &texts)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_going(texts.going)
    , m_form(new QWidget(this))
    , m_work(new WorkView(model.aiWork(), this))
    , m_note(Controls::note({}, this))
    , m_start(Controls::primaryButton(texts.start, this))
{
    m_work->hide();
    addHeading(texts.heading);
    auto *const rows = new QVBoxLayout(m_form);
    rows->setContentsMargins(0, VELTheme::gap, 0, 0);
    rows->setSpacing(VELTheme::gap);
    body()->addWidget(Controls::note(texts.about, this));
    body()->addWidget(m_form);
    body()->addWidget(m_work);
    body()->addStretch(1);
    body()->addWidget(makeFooter());
    connect(this, &Sheet::closeRequested, &model, [&model] { model.window().setAIPresented(false); });
    connect(m_work, &WorkView::cancelRequested, &model, &LintoraModel::cancelAI);
    connect(&model, &LintoraModel::aiBusyChanged, this, &WorkSheet::follow);
    connect(&model.aiSettings(), &AISettings::choicesChanged, this, &WorkSheet::follow);
}

QWidget *WorkSheet::makeFooter()
{
    auto *const row = new QWidget(this);
    m_note->setAccessibleName(u"状态"_s);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, VELTheme::step, 0, 0);
    layout->setSpacing(VELTheme::gap);
    QPushButton *const settings = Controls::quietButton(u"AI 设置…"_s, row);
    connect(settings, &QPushButton::clicked, &m_model, [this] { m_model.showAISettings(settingsTab()); });
    layout->addWidget(settings);
    layout->addWidget(m_note, 1);
    layout->addWidget(m_start);
    return row;
}

FieldRow *WorkSheet::addRow(const QString &name)
{
    auto *const row = new FieldRow(name, m_form);
    m_form->layout()->addWidget(row);
    return row;
}

void WorkSheet::change(const std::function<void(AIChoices &)> &change)
{
    AIChoices choices = m_model.aiSettings().choices();
    change(choices);
    m_model.aiSettings().choose(choices);
}

void WorkSheet::present()
{
    if (isVisible())
        return;
    open();
    follow();
    takeKeyboard();
}

/// To what there is to be done next.
void WorkSheet::takeKeyboard()
{
    if (isRunning() || m_start->isEnabled()) {
        (isRunning() ? static_cast<QWidget *>(m_work) : m_start)->setFocus();
        return;
    }
    const QList<QWidget *> controls = m_form->findChildren<QWidget *>();
    const auto takes = [this](const QWidget *each) {
        return each->isEnabled() && each->isVisibleTo(this) && (each->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
    };
    if (const auto first = std::ranges::find_if(controls, takes); first != controls.end())
        (*first)->setFocus();
}

void WorkSheet::closeWhenDone()
{
    if (isVisible())
        close();
}

void WorkSheet::follow()
{
    if (!isVisible())
        return;
    const bool isOther = m_model.aiBusy() && !isRunning();
    QWidget *const focus = QApplication::focusWidget();
    const bool startsOrEnds = m_work->isVisible() != isRunning() && isAncestorOf(focus);
    m_start->setEnabled(!m_model.aiBusy() && canStart());
    (isRunning() ? static_cast<QWidget *>(m_work) : m_start)->show();
    if (startsOrEnds)
        takeKeyboard(); // before what has it goes, and it with that
    m_form->setEnabled(!isRunning());
    m_work->setVisible(isRunning());
    m_start->setVisible(!isRunning());
    m_note->setText(isRunning() ? m_going : isOther ? u"请等待当前任务完成。"_s : QString());
    showChoices();
}
