#include "app/Lintora/ai/SpeechSheet.h"

#include "ai/models/LocalModels.h"
#include "app/Lintora/ai/WorkerTexts.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/FieldRow.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using SubtitleAI::SpeechLanguage;
using Source = Recognition::Source;

namespace {

// What the choices of who listens stand for beside the ids of models.
const QString ownFile = u"own"_s;
const QString service = u"service"_s;

} // namespace

SpeechSheet::SpeechSheet(LintoraModel &model, QWidget *content)
    : WorkSheet(model, content,
                {.heading = u"语音识别"_s,
                 .about = u"识别结果成为新的语言组，已有字幕不变，可撤销。"_s,
                 .start = u"开始识别"_s,
                 .going = u"可以关闭此页，识别会继续。"_s})
{
    addSource();
    addLanguage();
    addListener();
    addReview();
    const Recognition &recognition = model.recognition();
    connect(startButton(), &QPushButton::clicked, &recognition, [&model] { model.recognition().start(); });
    for (const auto signal : {&Recognition::runningChanged, &Recognition::sourceChanged, &Recognition::languageChanged})
        connect(&recognition, signal, this, &SpeechSheet::follow);
    connect(&recognition, &Recognition::done, this, &SpeechSheet::closeWhenDone);
}

void SpeechSheet::addSource()
{
    m_sourceRow = addRow(u"来源"_s);
    m_source = addChoice(m_sourceRow, u"来源"_s);
    QPushButton *const choosing = Controls::button(u"选择文件…"_s, m_sourceRow, u"选择要识别的音频或视频"_s);
    m_sourceRow->controls()->addWidget(choosing);
    m_leaveOut = new CheckBox(u"不含找不到的文件，识别其余音频"_s, form());
    m_leaveOut->setAccessibleName(m_leaveOut->text());
    form()->layout()->addWidget(m_leaveOut);
    Recognition &recognition = model().recognition();
    connect(choosing, &QPushButton::clicked, &model(), &LintoraModel::chooseMedia);
    connect(m_source, &QComboBox::activated, this,
            [this, &recognition] { recognition.setSource(m_source->currentData().value<Source>()); });
    connect(m_leaveOut, &CheckBox::clicked, &recognition, &Recognition::setLeavesOutMissing);
}

void SpeechSheet::addLanguage()
{
    m_language = addChoice(addRow(u"语言"_s), u"语言"_s);
    for (const auto language : {SpeechLanguage::automatic, SpeechLanguage::chinese, SpeechLanguage::english})
        m_language->addItem(SubtitleAI::title(language), QVariant::fromValue(language));
    connect(m_language, &QComboBox::activated, this,
            [this] { model().recognition().setLanguage(m_language->currentData().value<SpeechLanguage>()); });
}

void SpeechSheet::addListener()
{
    m_listenerRow = addRow(u"识别方式"_s);
    m_listener = addChoice(m_listenerRow, u"识别方式"_s);
    connect(m_listener, &QComboBox::activated, this, &SpeechSheet::chooseListener);
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
    m_language->setCurrentIndex(m_language->findData(QVariant::fromValue(model().recognition().aiLanguage())));
    showSource();
    showListener();
    showReview();
}

void SpeechSheet::showSource()
{
    const Recognition &recognition = model().recognition();
    m_source->clear();
    for (const Source source : {Source::media, Source::timeline}) {
        if (const QString title = recognition.title(source); !title.isEmpty())
            m_source->addItem(title, QVariant::fromValue(source));
    }
    const bool isThere = recognition.source() != Source::none;
    if (!isThere)
        m_source->addItem(u"尚未选择音视频"_s);
    m_source->setEnabled(isThere);
    m_source->setCurrentIndex(std::max(0, m_source->findData(QVariant::fromValue(recognition.source()))));
    m_source->setToolTip(recognition.source() == Source::media ? recognition.aiMedia()->toLocalFile() : QString());
    m_sourceRow->setNote(isThere ? recognition.notices().join(u'\n') : u"拖入音视频，或接入 FCP 时间线。"_s);
    m_leaveOut->setVisible(recognition.source() == Source::timeline && !recognition.missingMedia().isEmpty());
    m_leaveOut->setToolTip(recognition.missingMedia().join(u'\n'));
    m_leaveOut->setChecked(recognition.leavesOutMissing());
}

void SpeechSheet::showListener()
{
    const AIChoices &choices = model().aiSettings().choices();
    m_listener->clear();
    if (choices.aiSpeechModelFile.isEmpty()) {
        for (const LocalModel &each : LocalModels::speechModels())
            m_listener->addItem(u"本机 · "_s + each.title, each.id);
    } else {
        m_listener->addItem(u"本机 · "_s + QFileInfo(choices.aiSpeechModelFile).fileName(), ownFile);
    }
    m_listener->addItem(u"在线服务 · "_s + choices.aiSpeechAPIModel, service);
    const LocalModel &local = LocalModels::speechModel(choices.aiSpeechModelID);
    const QString ofLocal = choices.aiSpeechModelFile.isEmpty() ? local.id : ownFile;
    const QString chosen = choices.aiUseCloudSpeech ? service : ofLocal;
    m_listener->setCurrentIndex(m_listener->findData(chosen));
    if (chosen == service)
        m_listenerRow->setNote(WorkerTexts::leaving(u"音频"_s, choices.aiSpeechBaseURL));
    else if (chosen == ownFile)
        m_listenerRow->setNote(u"自己的模型文件，不校验。"_s);
    else
        m_listenerRow->setNote(u"%1\n%2"_s.arg(WorkerTexts::status(local), local.summary));
}

void SpeechSheet::chooseListener(int row)
{
    const QString chosen = m_listener->itemData(row).toString();
    change([&chosen](AIChoices &choices) {
        choices.aiUseCloudSpeech = chosen == service;
        if (chosen != service && chosen != ownFile)
            choices.aiSpeechModelID = chosen;
    });
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
    return model().aiSettings().choices().aiUseCloudSpeech ? WindowState::AISettingsTab::speech
                                                           : WindowState::AISettingsTab::models;
}
