#include "app/Lintora/ai/ScriptSpeechView.h"

#include "app/Lintora/ai/SpeechForm.h"
#include "app/Lintora/ai/WorkView.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/MarkedTextDelegate.h"
#include "app/Lintora/controls/ValueField.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QListView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

ScriptSpeechView::ScriptSpeechView(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_speech(model.scriptSpeech())
    , m_rows(m_speech)
    , m_form(new SpeechForm(model, this))
    , m_columns(new ValueField(
          {.name = u"每条宽度"_s, .lowest = ScriptSpeech::narrowest, .highest = ScriptSpeech::widest, .unit = u"字"_s},
          {.lowest = ScriptSpeech::narrowest, .highest = 40}, this))
    , m_work(new WorkView(model.aiWork(), this))
{
    m_work->hide();
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_form);
    layout->addWidget(m_columns);
    layout->addWidget(m_work);
    layout->addWidget(makeRows(), 1);
    layout->addWidget(makeButtons());

    connect(m_columns, &ValueField::edited, &m_speech, [this](double value) { m_speech.setColumns(qRound(value)); });
    connect(m_work, &WorkView::cancelRequested, &model, &LintoraModel::cancelAI);
    for (const auto signal :
         {&ScriptSpeech::columnsChanged, &ScriptSpeech::resultChanged, &ScriptSpeech::statusChanged})
        connect(&m_speech, signal, this, &ScriptSpeechView::follow);
    connect(&m_speech, &ScriptSpeech::runningChanged, this, [this] {
        m_isSettingUp = !m_speech.isRunning() && !m_speech.hasHeard();
        follow();
    });
    connect(&m_speech, &ScriptSpeech::done, &model, [&model] { model.window().setScriptMatchPresented(false); });
    for (const auto signal : {&Recognition::sourceChanged, &Recognition::languageChanged})
        connect(&model.recognition(), signal, this, &ScriptSpeechView::follow);
    connect(&model, &LintoraModel::aiBusyChanged, this, &ScriptSpeechView::follow);
    connect(&model.aiSettings(), &AISettings::choicesChanged, this, &ScriptSpeechView::follow);
}

QWidget *ScriptSpeechView::makeRows()
{
    m_results = new QWidget(this);
    m_onlyUnsure = new CheckBox(u"仅看待核对的字幕"_s, m_results);
    m_onlyUnsure->setAccessibleName(m_onlyUnsure->text());
    m_list = new QListView(m_results);
    m_list->setModel(&m_rows);
    MarkedTextDelegate::install(*m_list);
    m_list->setAccessibleName(u"定时结果"_s);
    auto *const layout = new QVBoxLayout(m_results);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::step);
    layout->addWidget(m_onlyUnsure);
    layout->addWidget(m_list, 1);
    connect(m_onlyUnsure, &CheckBox::clicked, &m_rows, &ScriptCueRows::setShowsOnlyUnsure);
    return m_results;
}

QWidget *ScriptSpeechView::makeButtons()
{
    auto *const row = new QWidget(this);
    m_status = new ElidedLabel(row);
    m_status->setFont(VELTheme::smallFont());
    m_status->setProperty("secondary", true);
    m_status->setAccessibleName(u"状态"_s);
    m_settings = Controls::quietButton(u"AI 设置…"_s, row);
    m_turn = Controls::button({}, row);
    m_start = Controls::primaryButton(u"开始识别"_s, row);
    m_apply = Controls::primaryButton(u"应用"_s, row);
    m_apply->setToolTip(u"成为新的语言组，可撤销"_s);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, VELTheme::step, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_settings);
    layout->addWidget(m_status, 1);
    layout->addWidget(m_turn);
    layout->addWidget(m_start);
    layout->addWidget(m_apply);
    connect(m_settings, &QPushButton::clicked, &m_model, [this] { m_model.showAISettings(m_form->settingsTab()); });
    connect(m_turn, &QPushButton::clicked, this, [this] {
        m_isSettingUp = !m_isSettingUp;
        follow();
    });
    connect(m_start, &QPushButton::clicked, &m_speech, &ScriptSpeech::start);
    connect(m_apply, &QPushButton::clicked, &m_speech, &ScriptSpeech::apply);
    return row;
}

void ScriptSpeechView::showEvent(QShowEvent * /*event*/)
{
    follow();
}

void ScriptSpeechView::follow()
{
    if (!isVisible())
        return;
    const bool isRunning = m_speech.isRunning();
    const bool setsUp = m_isSettingUp && !isRunning;
    const QWidget *const focus = QApplication::focusWidget();
    const bool couldApply = m_apply->isEnabled();
    m_form->follow();
    m_columns->setValue(m_speech.columns());
    m_form->setVisible(setsUp);
    m_work->setVisible(isRunning);
    m_settings->setVisible(setsUp);
    m_start->setVisible(setsUp);
    m_start->setEnabled(!m_model.aiBusy() && m_model.recognition().source() != Recognition::Source::none);
    m_turn->setVisible(!isRunning && m_speech.hasHeard());
    m_turn->setText(setsUp ? u"查看结果"_s : u"识别设置"_s);
    m_turn->setAccessibleName(m_turn->text());
    m_apply->setVisible(!setsUp && !isRunning);
    m_apply->setEnabled(m_speech.canApply());
    followRows();
    followStatus();
    const bool isGone = isAncestorOf(focus) && !(focus->isVisible() && focus->isEnabled());
    const bool isAwaited = focus == m_turn && !couldApply && m_apply->isEnabled();
    if (isGone || isAwaited)
        takeKeyboard();
}

void ScriptSpeechView::followRows()
{
    const bool areSeen = !m_isSettingUp && !m_speech.isRunning() && m_rows.rowCount() > 0;
    m_results->setVisible(areSeen);
    m_onlyUnsure->setVisible(m_speech.result().unsureCount() > 0);
    m_onlyUnsure->setChecked(m_rows.showsOnlyUnsure());
    // What is above, the script, has the room that a list does not need.
    QSizePolicy policy = sizePolicy();
    policy.setVerticalStretch(areSeen ? 3 : 0);
    setSizePolicy(policy);
}

void ScriptSpeechView::followStatus()
{
    const bool isBusy = m_model.aiBusy();
    if (m_speech.isRunning())
        m_status->setText(u"可以关闭此页，识别会继续。"_s);
    else
        m_status->setText(isBusy ? u"请等待当前任务完成。"_s : m_speech.status());
    Controls::showAsFailure(m_status, m_speech.isRefused() && !isBusy);
}

/// To what there is to be done next.
void ScriptSpeechView::takeKeyboard()
{
    for (QWidget *const next : {static_cast<QWidget *>(m_apply), static_cast<QWidget *>(m_start),
                                static_cast<QWidget *>(m_work), static_cast<QWidget *>(m_turn)}) {
        if (next->isVisible() && next->isEnabled()) {
            next->setFocus();
            return;
        }
    }
}
