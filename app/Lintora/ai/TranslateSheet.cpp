#include "app/Lintora/ai/TranslateSheet.h"

#include "app/Lintora/ai/GlossarySheet.h"
#include "app/Lintora/ai/WorkerTexts.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/FieldRow.h"

using namespace Qt::StringLiterals;
using SubtitleAI::Direction;

TranslateSheet::TranslateSheet(LintoraModel &model, QWidget *content)
    : WorkSheet(model, content,
                {.heading = u"翻译"_s,
                 .about = u"译文成为新的语言组，编号与时间码不变，可撤销。"_s,
                 .start = u"开始翻译"_s,
                 .going = u"可以关闭此页，翻译会继续。"_s})
    , m_content(content)
{
    addChoices();
    addGlossary();
    const Translation &translation = model.translation();
    connect(startButton(), &QPushButton::clicked, &translation, [&model] { model.translation().start(); });
    connect(&translation, &Translation::runningChanged, this, &TranslateSheet::follow);
    connect(&translation, &Translation::changed, this, &TranslateSheet::follow);
    connect(&translation, &Translation::done, this, &TranslateSheet::closeWhenDone);
    connect(&model.glossary(), &GlossaryTerms::changed, this, &TranslateSheet::follow);
}

void TranslateSheet::addChoices()
{
    m_track = addRow(u"字幕"_s)->addChoice();
    connect(m_track, &QComboBox::activated, this,
            [this] { model().translation().setTrackID(m_track->currentData().toUuid()); });

    m_direction = addRow(u"方向"_s)->addChoice();
    for (const auto direction : {Direction::chineseToEnglish, Direction::englishToChinese})
        m_direction->addItem(SubtitleAI::title(direction), QVariant::fromValue(direction));
    connect(m_direction, &QComboBox::activated, this,
            [this] { model().translation().setDirection(m_direction->currentData().value<Direction>()); });

    m_workerRow = addRow(u"翻译方式"_s);
    m_worker = m_workerRow->addChoice();
    m_worker->addItem(u"本机"_s, false);
    m_worker->addItem(u"在线服务"_s, true);
    connect(m_worker, &QComboBox::activated, this,
            [this] { change([this](AIChoices &choices) { choices.aiUseOnline = m_worker->currentData().toBool(); }); });
}

void TranslateSheet::addGlossary()
{
    auto *const row = new QWidget(form());
    m_useGlossary = new CheckBox(u"按术语表翻译"_s, row);
    m_useGlossary->setAccessibleName(m_useGlossary->text());
    m_glossaryNote = Controls::note({}, row);
    QPushButton *const editing = Controls::button(u"术语表…"_s, row, u"编辑、导入和导出术语"_s);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_useGlossary);
    layout->addWidget(m_glossaryNote, 1);
    layout->addWidget(editing);
    form()->layout()->addWidget(row);
    connect(editing, &QPushButton::clicked, this, &TranslateSheet::editGlossary);
    connect(m_useGlossary, &CheckBox::clicked, this,
            [this](bool on) { change([on](AIChoices &choices) { choices.aiUseGlossary = on; }); });
}

void TranslateSheet::editGlossary()
{
    if (!m_glossary)
        m_glossary = new GlossarySheet(model(), m_content);
    m_glossary->present();
}

/// A list of terms that is not read yet would be taken for an empty one.
bool TranslateSheet::canStart() const
{
    const bool isReady = !model().aiSettings().choices().aiUseGlossary || model().glossary().isLoaded();
    return isReady && model().translation().trackID().has_value();
}

void TranslateSheet::showChoices()
{
    const AIChoices &choices = model().aiSettings().choices();
    showTracks();
    m_worker->setCurrentIndex(m_worker->findData(choices.aiUseOnline));
    m_workerRow->setNote(WorkerTexts::textWorker(choices));
    m_useGlossary->setChecked(choices.aiUseGlossary);
    m_glossaryNote->setText(u"%1 条术语"_s.arg(model().glossary().all().size()));
}

void TranslateSheet::showTracks()
{
    m_track->clear();
    const QList<SubtitleTrack> tracks = model().visibleTracks();
    for (const SubtitleTrack &track : tracks)
        m_track->addItem(u"%1 · %2 条"_s.arg(track.label).arg(track.items.size()), track.id);
    const Translation &translation = model().translation();
    m_track->setCurrentIndex(m_track->findData(translation.trackID().value_or(QUuid())));
    m_direction->setCurrentIndex(m_direction->findData(QVariant::fromValue(translation.aiDirection())));
}

WindowState::AISettingsTab TranslateSheet::settingsTab() const
{
    return model().aiSettings().choices().aiUseOnline ? WindowState::AISettingsTab::text
                                                      : WindowState::AISettingsTab::models;
}
