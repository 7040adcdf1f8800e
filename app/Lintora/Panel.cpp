#include "app/Lintora/Panel.h"

#include "app/Lintora/Actions.h"
#include "app/Lintora/Header.h"
#include "app/Lintora/HeightBar.h"
#include "app/Lintora/KeysSheet.h"
#include "app/Lintora/ProjectTag.h"
#include "app/Lintora/QuitQuestion.h"
#include "app/Lintora/RecentList.h"
#include "app/Lintora/SoundDesk.h"
#include "app/Lintora/StatusLine.h"
#include "app/Lintora/ai/AISettingsSheet.h"
#include "app/Lintora/ai/ReviewSheet.h"
#include "app/Lintora/ai/ScriptSpeechView.h"
#include "app/Lintora/ai/SpeechSheet.h"
#include "app/Lintora/ai/TranslateSheet.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/QuestionSheet.h"
#include "app/Lintora/cues/CueTable.h"
#include "app/Lintora/cues/Inspector.h"
#include "app/Lintora/cues/SuspectBar.h"
#include "app/Lintora/cues/TableHeading.h"
#include "app/Lintora/drag/CardRow.h"
#include "app/Lintora/drag/FileDropArea.h"
#include "app/Lintora/drag/UnifiedImportArea.h"
#include "app/Lintora/drag/WindowDrop.h"
#include "app/Lintora/look/StyleWorkspace.h"
#include "app/Lintora/sound/TimingStrip.h"
#include "app/Lintora/tools/CleanupWorkspace.h"
#include "app/Lintora/tools/CueToolWorkspace.h"
#include "app/Lintora/tools/FindReplaceWorkspace.h"
#include "app/Lintora/tools/RepairWorkspace.h"
#include "app/Lintora/tools/ScriptMatchWorkspace.h"
#include "app/Lintora/tools/TimeShiftSheet.h"
#include "app/Lintora/tools/TitleWritingSheet.h"
#include "app/Lintora/tools/VersionsWorkspace.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize smallest(560, 650);

} // namespace

LintoraPanel::LintoraPanel(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
{
    VELTheme::configure(*this);
    setAttribute(Qt::WA_StyledBackground);
    setMinimumSize(smallest);

    // In the order of the eye, which the Tab key follows.
    m_stage = new QWidget(this);
    auto *const header = new Header(model, m_stage);
    m_import = new UnifiedImportArea(model, m_stage);
    auto *const project = new ProjectTag(model, m_stage);
    const auto mayAct = [this] { return m_table->commitEdit(); };
    auto *const actions = new MainActions(model, mayAct, m_stage);
    auto *const note = Controls::note(u"导入素材后，在这里编辑字幕。"_s, this);
    note->setAlignment(Qt::AlignCenter);
    m_emptyNote = new QWidget(this);
    auto *const empty = new QVBoxLayout(m_emptyNote);
    empty->setContentsMargins(0, 0, 0, 0);
    empty->addWidget(note);
    empty->addWidget(new RecentList(model, m_emptyNote));
    m_workspace = makeWorkspace();

    auto *const content = new QVBoxLayout;
    content->setContentsMargins(VELTheme::margin, 3 * VELTheme::step, VELTheme::margin, 3 * VELTheme::step);
    content->setSpacing(VELTheme::gap);
    m_material = new QBoxLayout(QBoxLayout::TopToBottom);
    m_material->setSpacing(VELTheme::gap);
    m_material->addWidget(m_import, 3);
    m_material->addWidget(project, 2);
    content->addLayout(m_material);
    connect(project, &ProjectTag::keyboardFreed, this, &LintoraPanel::returnKeyboard);
    content->addWidget(actions);
    content->addWidget(m_emptyNote);
    content->addWidget(m_workspace, 1);

    auto *const above = new QVBoxLayout(m_stage);
    above->setContentsMargins(0, 0, 0, 0);
    above->setSpacing(0);
    above->addWidget(header);
    above->addWidget(Controls::rule(this));
    above->addLayout(content, 1);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_stage, 1);
    layout->addWidget(Controls::rule(this));
    auto *const status = new StatusLine(model, this);
    layout->addWidget(status);
    connect(status, &StatusLine::keyboardFreed, this, &LintoraPanel::returnKeyboard);

    model.window().keepTyped = mayAct;
    connect(&model, &LintoraModel::stepped, this, &LintoraPanel::bringCue);
    connect(&model, &LintoraModel::itemsChanged, this, &LintoraPanel::followCues);
    connect(&model, &LintoraModel::tracksChanged, this, &LintoraPanel::followCues);
    for (const auto signal : {&WindowState::cleanupSettingsVisibleChanged, &WindowState::findReplaceVisibleChanged,
                              &WindowState::scriptMatchPresentedChanged, &WindowState::settingsVisibleChanged,
                              &WindowState::fcpImportVisibleChanged, &WindowState::aiPresentedChanged,
                              &WindowState::aiSettingsPresentedChanged, &WindowState::keysVisibleChanged})
        connect(&model.window(), signal, this, &LintoraPanel::followSheets);
    connect(&model, &LintoraModel::splitOriginalChanged, this, &LintoraPanel::followCues);
    connect(&model, &LintoraModel::previousItemsChanged, this, &LintoraPanel::followCues);
    connect(&model.cueTools(), &CueTools::toolChanged, this, &LintoraPanel::followTools);
    connect(&model.fileRepairing(), &FileRepairing::shownChanged, this, &LintoraPanel::followTools);
    connect(&model.titleWriting(), &TitleWriting::shownChanged, this, &LintoraPanel::followTools);
    connect(&model.versions(), &Versions::shownChanged, this, &LintoraPanel::followTools);
    connect(&model.scriptSpeech(), &ScriptSpeech::done, this, [this] {
        // What is to be looked at now are the cues, the unsure ones first.
        bringCue(m_model.suspects().next(-1).value_or(0));
        returnKeyboard();
    });
    new QuitQuestion(model, m_stage);
    new WindowDrop(model, *this);
    connect(&model.window(), &WindowState::appearanceChanged, this, &LintoraPanel::dress);
    if (model.window().appearance() != WindowState::Appearance::system)
        dress();
    foldInspector();
    followCues();
    followSheets();
}

LintoraPanel::~LintoraPanel()
{
    m_model.window().keepTyped = nullptr;
}

void LintoraPanel::dress()
{
    using Appearance = WindowState::Appearance;
    const Appearance wanted = m_model.window().appearance();
    const auto chosen = wanted == Appearance::dark ? VELTheme::Appearance::dark : VELTheme::Appearance::light;
    VELTheme::choose(*this, wanted == Appearance::system ? std::nullopt : std::optional(chosen));
}

QWidget *LintoraPanel::makeWorkspace()
{
    const auto mayAct = [this] { return m_table->commitEdit(); };
    auto *const workspace = new QWidget(this);
    auto *const editing = new EditingActions(m_model, mayAct, workspace);
    connect(editing, &EditingActions::restoreRequested, this, &LintoraPanel::confirmRestore);
    m_table = new CueTable(m_model, workspace);
    m_heading = new TableHeading(m_model, *m_table, workspace);
    m_inspector = new Inspector(m_model, m_table->cues(), workspace);
    connect(m_table, &CueTable::currentCueChanged, m_inspector, [this] { m_inspector->show(m_table->currentCue()); });
    connect(m_table, &CueTable::currentCueChanged, this, &LintoraPanel::showStyle);
    connect(m_table, &CueTable::timesRequested, this, &LintoraPanel::askForTimes);

    auto *const layout = new QVBoxLayout(workspace);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    auto *const suspects = new SuspectBar(m_model, *m_table, workspace);
    connect(suspects, &SuspectBar::cueRequested, this, &LintoraPanel::bringCue);
    layout->addWidget(editing);
    layout->addWidget(m_heading);
    layout->addWidget(suspects);
    auto *const heights = new HeightBar(m_model, mayAct, workspace);
    connect(heights, &HeightBar::keyboardFreed, this, &LintoraPanel::returnKeyboard);
    layout->addWidget(heights);
    layout->addWidget(m_table, 3);
    m_sound = new SoundDesk(m_model, *m_table, *m_inspector, workspace);
    layout->addWidget(&m_sound->strip());
    connect(m_sound, &SoundDesk::cueRequested, this, &LintoraPanel::bringCue);
    connect(m_sound, &SoundDesk::keyboardFreed, this, &LintoraPanel::returnKeyboard);
    layout->addWidget(m_inspector, 1);
    connect(&m_model.window(), &WindowState::inspectorShownChanged, this, &LintoraPanel::foldInspector);
    layout->addWidget(new CardRow(m_model, mayAct, workspace));
    return workspace;
}

/// In a low window the picture makes room for the strip, and comes back when that is folded.
void LintoraPanel::foldInspector()
{
    const bool isWanted = m_model.window().inspectorShown();
    const int folded = m_inspector->isHidden() ? m_inspector->minimumHeight() + VELTheme::gap : 0;
    const bool hasRoom = !m_model.window().stripShown() || layout()->minimumSize().height() + folded <= height();
    m_inspector->setVisible(isWanted && hasRoom);
}

bool LintoraPanel::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    const bool isMeasured = event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize;
    if (isMeasured && m_inspector)
        foldInspector();
    return isHandled;
}

void LintoraPanel::followCues()
{
    const bool isInUse = m_model.isInUse();
    const auto form = isInUse ? UnifiedImportArea::Form::oneLine : UnifiedImportArea::Form::large;
    if (m_import->form() != form)
        m_import->setForm(form);
    m_material->setDirection(isInUse ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_material->setStretch(1, isInUse ? 2 : 0);
    const bool begins = isInUse && !m_isInUse;
    m_isInUse = isInUse;
    m_workspace->setVisible(isInUse);
    m_emptyNote->setVisible(!isInUse);
    if (begins)
        m_table->goTo(0);
    if (begins || !isInUse)
        returnKeyboard();
}

/// To what there is to be done next.
void LintoraPanel::returnKeyboard()
{
    giveKeyboard(m_isInUse ? static_cast<QWidget *>(m_table) : m_import);
}

/// A window that is put together around the panel knows nothing of who had the keyboard before.
void LintoraPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous() && !isAncestorOf(window()->focusWidget()))
        returnKeyboard();
}

/// Now, or when the sheet that is open closes: nothing behind a sheet has the keyboard.
void LintoraPanel::giveKeyboard(QWidget *widget)
{
    const QList<Sheet *> sheets = findChildren<Sheet *>();
    const auto open = std::ranges::find_if(sheets, [](const Sheet *sheet) { return !sheet->isHidden(); });
    if (open == sheets.end())
        widget->setFocus();
    else
        (*open)->returnTo(widget);
}

template <class Workspace>
void LintoraPanel::showSheet(Workspace *&workspace, bool visible)
{
    if (visible && !workspace)
        workspace = new Workspace(m_model, m_stage);
    if (visible)
        workspace->present();
    else if (workspace)
        workspace->dismiss();
}

void LintoraPanel::followSheets()
{
    const WindowState &window = m_model.window();
    showFCPImport(window.fcpImportVisible());
    showSheet(m_cleanup, window.cleanupSettingsVisible());
    const bool isFirst = !m_findReplace;
    showSheet(m_findReplace, window.findReplaceVisible());
    if (isFirst && m_findReplace) {
        connect(m_findReplace, &FindReplaceWorkspace::cueRequested, this, &LintoraPanel::showCue);
        connect(m_findReplace, &FindReplaceWorkspace::queryChanged, m_table, &CueTable::setSearch);
    }
    if (window.scriptMatchPresented() && !m_scriptMatch) {
        m_scriptMatch = new ScriptMatchWorkspace(m_model, m_stage);
        m_scriptMatch->addTiming(new ScriptSpeechView(m_model, m_scriptMatch));
    }
    showSheet(m_scriptMatch, window.scriptMatchPresented());
    showSheet(m_style, window.settingsVisible());
    showSheet(m_speech, window.aiPresented() && window.aiMode() == WindowState::AIMode::speech);
    showSheet(m_translate, window.aiPresented() && window.aiMode() == WindowState::AIMode::translation);
    showSheet(m_review, window.aiPresented() && window.aiMode() == WindowState::AIMode::review);
    showSheet(m_aiSettings, window.aiSettingsPresented());
    showSheet(m_keys, window.keysVisible());
    showStyle();
}

void LintoraPanel::showTool(CueToolWorkspace *&sheet, CueTools::Tool tool)
{
    const bool visible = m_model.cueTools().tool() == tool;
    if (visible && !sheet) {
        sheet = new CueToolWorkspace(m_model, tool, m_stage);
        connect(sheet, &CueToolWorkspace::cueRequested, this, &LintoraPanel::showCue);
    }
    if (visible)
        sheet->present();
    else if (sheet)
        sheet->dismiss();
}

void LintoraPanel::followTools()
{
    showTool(m_breaking, CueTools::Tool::breaking);
    showTool(m_checking, CueTools::Tool::checking);
    showTool(m_script, CueTools::Tool::script);
    showSheet(m_repair, m_model.fileRepairing().isShown());
    showSheet(m_titleWriting, m_model.titleWriting().isShown());
    showSheet(m_versions, m_model.versions().isShown());
}

/// A style is decided on the cue that is looked at.
void LintoraPanel::showStyle()
{
    if (m_style)
        m_style->showCue(m_table->currentCue());
}

void LintoraPanel::showFCPImport(bool visible)
{
    if (visible && !m_fcpImport) {
        m_fcpImport = new Sheet(Sheet::Extent::compact, m_stage);
        m_fcpImport->addHeading(u"从 FCP 导入"_s);
        QVBoxLayout &body = *m_fcpImport->body();
        body.addWidget(
            Controls::note(u"从 FCP 浏览器将项目拖到下方，读取时间线音轨；也可拖入单个片段或 FCPXML。"_s, m_fcpImport));
        auto *const area = new FileDropArea(m_model, FileDropArea::Form::large, {}, m_fcpImport);
        area->setMinimumHeight(area->sizeHint().height());
        body.addWidget(area);
        connect(m_fcpImport, &Sheet::closeRequested, this, [this] { m_model.window().setFCPImportVisible(false); });
    }
    if (visible)
        m_fcpImport->open();
    else if (m_fcpImport)
        m_fcpImport->dismiss();
}

/// Makes it the current one, also when the filter hides it.
void LintoraPanel::bringCue(qsizetype cue)
{
    m_table->goTo(cue);
    if (m_table->currentCue() != cue) {
        m_heading->showAll();
        m_table->goTo(cue);
    }
}

/// Brings a cue that a tool has found before the eye.
void LintoraPanel::showCue(qsizetype cue)
{
    m_model.window().setFindReplaceVisible(false);
    m_model.cueTools().close();
    bringCue(cue);
    m_table->setFocus();
}

void LintoraPanel::confirmRestore()
{
    if (!m_confirmation) {
        m_confirmation = new QuestionSheet(m_stage);
        // The question may answer itself: the separation is undone, another session comes in.
        connect(&m_model, &LintoraModel::splitOriginalChanged, m_confirmation, &Sheet::dismiss);
    }
    m_confirmation->ask({.title = u"恢复分离前原稿？"_s,
                         .text = u"分离后对各语言的修改将被原稿替换。"_s,
                         .answer = u"恢复原稿"_s,
                         .losesWork = true},
                        [this] { m_model.textTools().restoreOriginal(); });
}

void LintoraPanel::askForTimes(const QList<qsizetype> &selected)
{
    if (!m_times)
        m_times = new TimeShiftSheet(m_model, m_stage);
    m_times->present(selected);
}

void LintoraPanel::keyPressEvent(QKeyEvent *event)
{
    // Where there is no menu bar with these keys.
    if (event->matches(QKeySequence::Undo))
        m_model.undo();
    else if (event->matches(QKeySequence::Redo))
        m_model.redo();
    else if (event->matches(QKeySequence::Find))
        m_model.window().setFindReplaceVisible(true);
    else
        QWidget::keyPressEvent(event);
}
