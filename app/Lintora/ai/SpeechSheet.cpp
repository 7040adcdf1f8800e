#include "app/Lintora/ai/SpeechSheet.h"

#include "app/Lintora/ai/SpeechForm.h"
#include "app/Lintora/ai/WorkerTexts.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"

#include <QLayout>

using namespace Qt::StringLiterals;

SpeechSheet::SpeechSheet(LintoraModel &model, QWidget *content)
    : WorkSheet(model, content,
                {.heading = u"语音识别"_s,
                 .about = u"识别结果成为新的语言组，已有字幕不变，可撤销。"_s,
                 .start = u"开始识别"_s,
                 .going = u"可以关闭此页，识别会继续。"_s})
    , m_speech(new SpeechForm(model, form()))
{
    form()->layout()->addWidget(m_speech);
    addReview();
    const Recognition &recognition = model.recognition();
    connect(startButton(), &QPushButton::clicked, &recognition, [&model] { model.recognition().start(); });
    for (const auto signal : {&Recognition::runningChanged, &Recognition::sourceChanged, &Recognition::languageChanged})
        connect(&recognition, signal, this, &SpeechSheet::follow);
    connect(&recognition, &Recognition::done, this, &SpeechSheet::closeWhenDone);
}

void SpeechSheet::addReview()
{
    m_review = new CheckBox(u"识别后自动校对"_s, form());
    m_review->setAccessibleName(m_review->text());
    m_reviewNote = Controls::note({}, form());
    m_reviewNote->setIndent(7 * VELTheme::step); // below the words of the box
    form()->layout()->addWidget(m_review);
    form()->layout()->addWidget(m_reviewNote);
    connect(m_review, &CheckBox::clicked, this,
            [this](bool on) { change([on](AIChoices &choices) { choices.aiAutomaticReview = on; }); });
}

void SpeechSheet::showChoices()
{
    m_speech->follow();
    showReview();
}

void SpeechSheet::showReview()
{
    const AIChoices &choices = model().aiSettings().choices();
    m_review->setChecked(choices.aiAutomaticReview);
    m_reviewNote->setVisible(choices.aiAutomaticReview);
    m_reviewNote->setText(WorkerTexts::textWorker(choices));
}

WindowState::AISettingsTab SpeechSheet::settingsTab() const
{
    return m_speech->settingsTab();
}
