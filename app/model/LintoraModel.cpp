#include "app/model/LintoraModel.h"

#include "app/model/SessionTracks.h"
#include "store/Locations.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

LintoraSession firstSession(const QString &font)
{
    LintoraSession session;
    session.options.font = font;
    return session;
}

Options picture(const LintoraSession &session)
{
    return session.look ? TitleLooks::drawn(*session.look, session.options) : session.options;
}

} // namespace

LintoraModel::LintoraModel(Surroundings surroundings, QObject *parent)
    : QObject(parent)
    , m_dialogs(std::move(surroundings.dialogs))
    , m_aiSettings(surroundings.settings, std::move(surroundings.keys))
    , m_modelDownloads(m_aiSettings, std::move(surroundings.models))
    , m_preferences(std::move(surroundings.settings))
    , m_stylePresets(surroundings.stylePresetsURL ? StylePresetStore(*surroundings.stylePresetsURL)
                                                  : StylePresetStore())
    , m_keeper(surroundings.draftURL.value_or(Locations::draft()))
    , m_recent(m_keeper.beside(u"Recent"_s))
    , m_recentWork(m_recent.list())
    , m_session(m_keeper.takeUp(firstSession(surroundings.font)))
    , m_pictured(picture(m_session.state()))
{
    try {
        m_stylePresets.load();
    } catch (const std::exception &error) {
        m_message = u"样式预设未能读取："_s + QString::fromUtf8(error.what());
    }
    const auto refuse = qOverload<const Failure &>(&LintoraModel::reportFailure);
    for (const BackgroundTask *const task : m_tasks)
        connect(task, &BackgroundTask::progressChanged, this, &LintoraModel::activityChanged);
    connect(&m_stylePresets, &StylePresets::done, this, &LintoraModel::report);
    connect(&m_stylePresets, &StylePresets::refused, this, refuse);
    m_keeper.follow(m_session);
    connect(&m_session, &EditedSession::aboutToLoad, this, &LintoraModel::makeRoomFor);
    connect(&m_session, &EditedSession::changed, this, &LintoraModel::tell);
    connect(&m_session, &EditedSession::historyChanged, this, &LintoraModel::historyChanged);
    connect(&m_owner, &CueOwnership::refused, this, refuse);
    connect(&m_owner, &CueOwnership::busyChanged, this, &LintoraModel::aiBusyChanged);
    connect(&m_owner, &CueOwnership::busyChanged, this, &LintoraModel::historyChanged);
    connect(&m_owner, &CueOwnership::released, this, [this] {
        if (quitStopsWork())
            answerQuit(false); // for there is nothing to stop any more
    });
    connect(&m_scriptMatching, &ScriptMatching::aboutToApply, this, [this] { keepSession(u"文稿匹配前_"_s); });
    connect(&m_scriptMatching, &ScriptMatching::done, this, &LintoraModel::report);
    connect(&m_review, &Review::aboutToApply, this, [this] { keepSession(u"AI 校对前_"_s); });
    connect(&m_review, &Review::done, this, &LintoraModel::report);
    connect(&m_recognition, &Recognition::proofreadChanged, &m_review, [this] {
        if (const auto &proofread = m_recognition.proofread())
            m_review.show(proofread->trackID, proofread->recognised, proofread->reviewed);
    });
    connect(&m_aiServices, &AIServices::done, this, &LintoraModel::report);
    connect(&m_modelDownloads, &ModelDownloads::done, this, &LintoraModel::report);
    connect(&m_modelDownloads, &ModelDownloads::refused, this, refuse);
    connect(&m_textTools, &TextTools::done, this, &LintoraModel::report);
    connect(&m_textTools, &TextTools::refused, this, refuse);
    connect(&m_cueTiming, &CueTiming::refused, this, refuse);
    connect(&m_cueTiming, &CueTiming::done, this,
            [this] { publish(m_failure, std::optional<Failure>(), &LintoraModel::failureChanged); });
    connect(&m_cueTools, &CueTools::done, this, &LintoraModel::report);
    connect(&m_titleWriting, &TitleWriting::done, this, &LintoraModel::report);
    connect(&m_titleWriting, &TitleWriting::refused, this, refuse);
    connect(&m_session, &EditedSession::changed, &m_titleWriting, &TitleWriting::close);
    connect(&m_versions, &Versions::done, this, &LintoraModel::report);
    connect(&m_versions, &Versions::refused, this, refuse);
    connect(&m_fileRepairing, &FileRepairing::accepted, this, &LintoraModel::takeRepaired);
    connect(this, &LintoraModel::failureChanged, &m_fileRepairing, &FileRepairing::withdraw);
    connect(&m_link, &SessionLink::opened, this, [this] { report(source().isEmpty() ? QString() : u"已载入"_s); });
    connect(&m_link, &SessionLink::freed, this, &LintoraModel::schedulePersist);
    connect(&m_recognition, &Recognition::timelineChanged, this, &LintoraModel::aiTimelinePlanChanged);
    connect(&m_recognition, &Recognition::done, this, &LintoraModel::report);
    connect(&m_recognition, &Recognition::offerTaken, this,
            [this](const FCPAudioPlan &plan) { receiveFCP({.settings = plan.settings, .plan = plan}); });
    connect(&m_recognition, &Recognition::refused, this, refuse);
    connect(&m_scriptSpeech, &ScriptSpeech::done, this, &LintoraModel::report);
    connect(&m_translation, &Translation::done, this, &LintoraModel::report);
    connect(&m_glossary, &GlossaryTerms::done, this, &LintoraModel::report);
    connect(&m_glossary, &GlossaryTerms::refused, this, refuse);
    connect(&m_suspects, &SuspectMarks::done, this, &LintoraModel::report);
    connect(&m_keeper, &SessionKeeper::failureChanged, this, &LintoraModel::reportUnsaved);
    connect(&m_keeper, &SessionKeeper::draftSaved, this, &LintoraModel::followSaving);
}

/// What is under way ends while all that its end concerns is there.
LintoraModel::~LintoraModel()
{
    for (BackgroundTask *const task : m_tasks)
        task->finish();
}

QList<SubtitleTrack> LintoraModel::visibleTracks() const
{
    QList<SubtitleTrack> shown = tracks();
    if (shown.size() > 1)
        shown.removeIf([&](const SubtitleTrack &track) { return track.id == m_session.state().splitOriginal; });
    return shown;
}

bool LintoraModel::isInUse() const
{
    if (std::ranges::any_of(visibleTracks(), [](const SubtitleTrack &each) { return !each.items.isEmpty(); }))
        return true;
    // Cleaned away, kept from before a separation, or deleted.
    const auto isCleaned = [](const SubtitleTrack &each) { return each.previousItems.has_value(); };
    return splitOriginal() || std::ranges::any_of(tracks(), isCleaned) ||
           (!tracks().isEmpty() && m_session.history().canUndo());
}

void LintoraModel::apply(const LintoraSession &session)
{
    if (!m_owner.refuses(u"任务处理中，请先取消再切换文件"_s))
        m_session.replace(SessionTracks::normalized(session), u"载入字幕"_s, EditStep::load);
}

// What is said

void LintoraModel::report(const QString &message)
{
    reportWithDetail(message, {});
}

void LintoraModel::reportWithDetail(const QString &message, const QString &detail)
{
    withdrawOffers();
    publish(m_failure, std::optional<Failure>(), &LintoraModel::failureChanged);
    setMessage(message, detail);
}

/// They stood beside what was said before.
void LintoraModel::withdrawOffers()
{
    m_recognition.offer(std::nullopt);
    m_keptProject.withdraw();
}

void LintoraModel::setMessage(const QString &message, const QString &detail)
{
    if (message == m_message && detail == m_messageDetail)
        return;
    m_message = message;
    m_messageDetail = detail;
    Q_EMIT messageChanged();
}

std::optional<QString> LintoraModel::failure() const
{
    return m_failure ? std::optional(m_failure->sentence) : m_unsaved;
}

QString LintoraModel::failureDetail() const
{
    return m_failure ? m_failure->detail : QString();
}

void LintoraModel::reportFailure(const Failure &failure)
{
    withdrawOffers();
    publish(m_failure, std::optional(failure), &LintoraModel::failureChanged);
}

// The session

/// Work that another session is about to take the place of can be had back after the end of the program too.
void LintoraModel::makeRoomFor(const LintoraSession &next)
{
    Q_EMIT aboutToLoad();
    if (hasCues() && !(m_sessionAsLoaded && m_sessionAsLoaded->tracks == m_session.state().tracks))
        keepSession();
    m_sessionAsLoaded = next;
}

/// Says and saves what has changed.
void LintoraModel::tell(const LintoraSession &before, bool isLoaded)
{
    schedulePersist();
    if (isLoaded)
        Q_EMIT loaded();
    emitChanges(before);
    Q_EMIT historyChanged();
}

void LintoraModel::emitChanges(const LintoraSession &before)
{
    // A receiver may change the session again; it then hears of that first, which is the newer state anyway.
    const LintoraSession now = m_session.state();
    const bool haveCuesChanged = before.items != now.items;
    // The selected track has the cues too, which need not be compared again. Another one may be selected now.
    const bool isSameTrack = before.selectedTrackID == now.selectedTrackID;
    const bool haveTracksChanged = (haveCuesChanged && isSameTrack) || before.tracks != now.tracks;
    if (haveTracksChanged) // What was said of the step before is over.
        setMessage({}, {});
    if (haveCuesChanged)
        Q_EMIT itemsChanged();
    if (before.source != now.source)
        Q_EMIT sourceChanged();
    if (before.options != now.options || before.look != now.look)
        publish(m_pictured, picture(m_session.state()), &LintoraModel::picturedChanged);
    if (before.options != now.options)
        Q_EMIT optionsChanged();
    if (before.look != now.look)
        Q_EMIT lookChanged();
    if (before.removeFillers != now.removeFillers)
        Q_EMIT removeFillersChanged();
    if (before.removePunctuation != now.removePunctuation)
        Q_EMIT removePunctuationChanged();
    if (before.previousItems != now.previousItems)
        Q_EMIT previousItemsChanged();
    if (before.cleaned != now.cleaned)
        Q_EMIT cleanedChanged();
    if (haveTracksChanged)
        Q_EMIT tracksChanged();
    if (before.selectedTrackID != now.selectedTrackID)
        Q_EMIT selectedTrackIDChanged();
    if (before.splitOriginal != now.splitOriginal)
        Q_EMIT splitOriginalChanged();
}

// History

void LintoraModel::asOneStep(const std::function<void()> &changes)
{
    m_session.asOneStep(changes);
}

const QString &LintoraModel::undoTitle() const
{
    return m_session.history().undoTitle();
}

QString LintoraModel::redoTitle() const
{
    return m_session.history().redoTitle();
}

bool LintoraModel::canUndo() const
{
    return m_session.history().canUndo() && !aiBusy();
}

bool LintoraModel::canRedo() const
{
    return m_session.history().canRedo() && !aiBusy();
}

void LintoraModel::undo()
{
    if (canUndo())
        step(&EditedSession::undo, u"已撤销"_s);
}

void LintoraModel::redo()
{
    if (canRedo())
        step(&EditedSession::redo, u"已重做"_s);
}

void LintoraModel::step(void (EditedSession::*direction)(), const QString &message)
{
    const LintoraSession before = snapshot();
    (m_session.*direction)();
    report(message);
    if (const auto cue = SessionTracks::changedCue(before, snapshot()))
        Q_EMIT stepped(*cue);
}

// Long work

std::optional<Progress> LintoraModel::activity() const
{
    const BackgroundTask *const shown = shownTask();
    return shown ? shown->progress() : std::nullopt;
}

void LintoraModel::cancelActivity()
{
    if (BackgroundTask *const shown = shownTask())
        shown->cancel();
}

/// What ends soon is shown first.
BackgroundTask *LintoraModel::shownTask() const
{
    const auto *const shown = std::ranges::find_if(m_tasks, &BackgroundTask::isRunning);
    return shown == m_tasks.end() ? nullptr : *shown;
}

void LintoraModel::showAI(WindowState::AIMode mode)
{
    m_aiSettings.loadKeys();
    m_recognition.findMissing();
    m_glossary.load();
    m_window.showAI(mode);
}

void LintoraModel::showAISettings()
{
    m_aiSettings.loadKeys();
    m_modelDownloads.refresh();
    m_window.setAISettingsPresented(true);
}

void LintoraModel::showAISettings(WindowState::AISettingsTab tab)
{
    m_window.setAISettingsTab(tab);
    showAISettings();
}

void LintoraModel::cancelAI()
{
    m_owner.cancel();
}

// Window

void LintoraModel::showScriptMatch()
{
    m_recognition.findMissing();
    if (items().isEmpty())
        m_window.setScriptWay(WindowState::ScriptWay::timing); // there is no wording to be corrected
    m_window.setScriptMatchPresented(true);
}

void LintoraModel::toggleFloating()
{
    m_window.toggleFloating();
}
