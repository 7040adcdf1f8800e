#include "app/Lintora/ai/SpeechForm.h"

#include "ai/models/LocalModels.h"
#include "app/Lintora/ai/WorkerTexts.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/FieldRow.h"

#include <QFileInfo>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;
using SubtitleAI::SpeechLanguage;
using Source = Recognition::Source;

namespace {

// What the choices of who listens stand for beside the ids of models.
const QString ownFile = u"own"_s;
const QString service = u"service"_s;

} // namespace

SpeechForm::SpeechForm(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
{
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(VELTheme::gap);
    addSource();
    addLanguage();
    addListener();
}

FieldRow *SpeechForm::addRow(const QString &name)
{
    auto *const row = new FieldRow(name, this);
    layout()->addWidget(row);
    return row;
}

void SpeechForm::addSource()
{
    m_sourceRow = addRow(u"来源"_s);
    m_source = m_sourceRow->addChoice();
    QPushButton *const choosing = Controls::button(u"选择文件…"_s, m_sourceRow, u"选择要识别的音频或视频"_s);
    m_sourceRow->controls()->addWidget(choosing);
    m_leaveOut = new CheckBox(u"不含找不到的文件，识别其余音频"_s, this);
    m_leaveOut->setAccessibleName(m_leaveOut->text());
    layout()->addWidget(m_leaveOut);
    Recognition &recognition = m_model.recognition();
    connect(choosing, &QPushButton::clicked, &m_model, &LintoraModel::chooseMedia);
    connect(m_source, &QComboBox::activated, this,
            [this, &recognition] { recognition.setSource(m_source->currentData().value<Source>()); });
    connect(m_leaveOut, &CheckBox::clicked, &recognition, &Recognition::setLeavesOutMissing);
}

void SpeechForm::addLanguage()
{
    m_language = addRow(u"语言"_s)->addChoice();
    for (const auto language : {SpeechLanguage::automatic, SpeechLanguage::chinese, SpeechLanguage::english})
        m_language->addItem(SubtitleAI::title(language), QVariant::fromValue(language));
    connect(m_language, &QComboBox::activated, this,
            [this] { m_model.recognition().setLanguage(m_language->currentData().value<SpeechLanguage>()); });
}

void SpeechForm::addListener()
{
    m_listenerRow = addRow(u"识别方式"_s);
    m_listener = m_listenerRow->addChoice();
    connect(m_listener, &QComboBox::activated, this, &SpeechForm::chooseListener);
}

WindowState::AISettingsTab SpeechForm::settingsTab() const
{
    return m_model.aiSettings().choices().aiUseCloudSpeech ? WindowState::AISettingsTab::speech
                                                           : WindowState::AISettingsTab::models;
}

void SpeechForm::follow()
{
    m_language->setCurrentIndex(m_language->findData(QVariant::fromValue(m_model.recognition().aiLanguage())));
    showSource();
    showListener();
}

void SpeechForm::showSource()
{
    const Recognition &recognition = m_model.recognition();
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

void SpeechForm::showListener()
{
    const AIChoices &choices = m_model.aiSettings().choices();
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

void SpeechForm::chooseListener(int row)
{
    const QString chosen = m_listener->itemData(row).toString();
    AIChoices choices = m_model.aiSettings().choices();
    choices.aiUseCloudSpeech = chosen == service;
    if (chosen != service && chosen != ownFile)
        choices.aiSpeechModelID = chosen;
    m_model.aiSettings().choose(choices);
}
