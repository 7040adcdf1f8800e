#pragma once

#include "app/model/CueTiming.h"
#include "app/model/CueTools.h"
#include "app/model/FileDialogs.h"
#include "app/model/FileRepairing.h"
#include "app/model/KeptProject.h"
#include "app/model/OwnTitles.h"
#include "app/model/Preferences.h"
#include "app/model/RecentWork.h"
#include "app/model/ScriptMatching.h"
#include "app/model/SessionLink.h"
#include "app/model/Sound.h"
#include "app/model/StylePresets.h"
#include "app/model/TextTools.h"
#include "app/model/TitleWriting.h"
#include "app/model/Versions.h"
#include "app/model/WindowState.h"
#include "app/model/ai/AIServices.h"
#include "app/model/ai/AISettings.h"
#include "app/model/ai/AIWork.h"
#include "app/model/ai/ModelDownloads.h"
#include "app/model/ai/Recognition.h"
#include "app/model/ai/Review.h"
#include "app/model/ai/ScriptSpeech.h"
#include "app/model/ai/Translation.h"
#include "core/CueShift.h"
#include "fcp/validation/Problem.h"
#include "store/Locations.h"

#include <QMimeData>
#include <QObject>
#include <QUrl>

#include <array>
#include <memory>

/// Everything the window shows, and everything a person can do to it: the one live owner of the session.
///
/// Each published field has a signal of its own, emitted once the whole change is in place, and only when the field
/// has another value. Every operation says what became of it in `message` (in passing) or in `failure` (until the next
/// success), in the words that the person sees; none throws unless it says so. A refused operation changes nothing
/// else; nor does one that names a position or a track that is not there.
///
/// Every change of the session is one step of the history, and is saved to the draft and to the shared session, if
/// there is one, as soon as control is back in the event loop. Files are read and written on workers; their operations
/// return at once.
///
/// Lives on the main thread. Knows no widget and no file format.
class LintoraModel : public QObject
{
    Q_OBJECT

public:
    /// What the model finds outside itself, so that a test can put it elsewhere.
    struct Surroundings
    {
        std::optional<QString> draftURL = {};        ///< Path of the draft; absent: the user's own.
        std::optional<QString> stylePresetsURL = {}; ///< Path of the presets; absent: the user's own.
        std::shared_ptr<QSettings> settings = {};    ///< Where preferences are kept. Never null.
        FileDialogs dialogs = {};
        AIKeyStore keys = {}; ///< Where keys of services are kept; unless named: the user's own keychain.
        QList<LocalModel> models = LocalModels::catalog(); ///< Those that local engines can work with.
        QString font = Options().font;                     ///< The family that a first session begins with.
    };

    /// Takes up the session that the draft holds; an unreadable draft is as none.
    explicit LintoraModel(Surroundings surroundings, QObject *parent = nullptr);
    ~LintoraModel() override;

    // The session. Cues, options and switches are those of the selected track.

    const QList<Subtitle> &items() const { return snapshot().items; }
    const QString &source() const { return snapshot().source; } ///< Display name of where the cues came from.
    const Options &options() const { return snapshot().options; }
    bool removeFillers() const { return snapshot().removeFillers; }
    bool removePunctuation() const { return snapshot().removePunctuation; }
    const std::optional<QList<Subtitle>> &previousItems() const { return snapshot().previousItems; }
    bool cleaned() const { return snapshot().cleaned; }
    const QList<SubtitleTrack> &tracks() const { return *snapshot().tracks; } ///< All of them, up to date.
    std::optional<QUuid> selectedTrackID() const { return snapshot().selectedTrackID; }
    std::optional<QUuid> splitOriginal() const { return snapshot().splitOriginal; }

    /// The tracks that are shown as tabs and cards: all but the one kept from before separation.
    QList<SubtitleTrack> visibleTracks() const;

    /// The whole session as it stands. Shares its data.
    const LintoraSession &snapshot() const { return m_session.state(); }

    /// Puts `session` in the place of what stands, as one step.
    void apply(const LintoraSession &session);

    // What is said

    const QString &message() const { return m_message; }

    /// Shown in the message's place: why an operation was refused, else why the session cannot be saved, as long as it
    /// cannot.
    std::optional<QString> failure() const;
    QString failureDetail() const; ///< What goes with it, shown and copied on demand. Mostly empty.
    const QString &messageDetail() const { return m_messageDetail; } ///< The same for `message`.

    /// How far long work is; absent while there is none. cancelActivity() ends it, and leaves the session as it was.
    std::optional<Progress> activity() const;
    void cancelActivity();

    void report(const QString &message); ///< Puts `message` up and takes the refusal down.
    void reportWithDetail(const QString &message, const QString &detail);
    void reportFailure(const Failure &failure);
    void reportFailure(const QString &sentence) { reportFailure(Failure{.sentence = sentence}); }

    // Tracks

    void selectTrack(const QUuid &id); ///< No step of the history. An unknown track is none.

    /// Moves the cue at that position of the selected track to where it belongs by its start. A track that loses its
    /// last cue so is closed.
    void moveCue(qsizetype index, QUuid to);
    void moveCues(const QList<qsizetype> &indices, QUuid to); ///< The same for several, as one step.

    // Cues of the selected track, by position. The position of the cue to look at next is returned, -1 when none is
    // left, absent when the operation was refused.

    std::optional<qsizetype> setText(qsizetype index, const QString &text);
    std::optional<qsizetype> setTimes(qsizetype index, qint64 startMS, qint64 endMS);
    std::optional<qsizetype> insertCue(qsizetype after);             ///< -1: before the first.
    std::optional<qsizetype> pasteCues(const QList<Subtitle> &cues); ///< With their own times, under new numbers.
    std::optional<qsizetype> deleteCues(const QList<qsizetype> &indices);
    std::optional<qsizetype> splitCue(qsizetype index, qsizetype position); ///< In UTF-16 units of the text.
    std::optional<qsizetype> joinWithNext(qsizetype index);

    /// Moves times together, as one step: of the cues at `indices` of the selected track, or, where absent, of all cues
    /// of every track, also of the one kept from before separation. False when refused.
    bool moveTimes(const std::optional<QList<qsizetype>> &indices, const CueShift::Distance &distance);

    // History

    /// Calls `changes`, and makes one step of all that it changes.
    void asOneStep(const std::function<void()> &changes);

    bool canUndo() const;
    bool canRedo() const;
    void undo();
    void redo();
    const QString &undoTitle() const; ///< What undo() takes back; may be empty.
    QString redoTitle() const;        ///< What redo() does again; may be empty.

    /// Whether there are cues to be seen, or ways in the session to have some back.
    bool isInUse() const;

    // Titles' style, of the selected track

    /// Options set between these two are one step: the drag of a slider. Anything else that happens meanwhile ends it.
    void beginGesture();
    void endGesture();

    /// @throws nothing; options that cannot be written are refused by the export.
    void setOptions(const Options &options);
    void setCanvasHeight(qint64 pixels);

    /// The title of the user's own that the cues are written like, in the place of the options' style; absent for Basic
    /// Title.
    const std::optional<TitleTemplate> &look() const { return snapshot().look; }
    void setLook(const std::optional<TitleTemplate> &look);
    OwnTitles &ownTitles() { return m_ownTitles; }
    void showOwnTitles();   ///< Those of the kept project; none where there is no project.
    void chooseOwnTitles(); ///< Those of a project that is asked for.

    /// What a picture of a title is drawn by: the options, with what can be drawn of the look.
    const Options &pictured() const { return m_pictured; }

    StylePresets &stylePresets() { return m_stylePresets; }
    /// Whether titles of visible tracks would lie on top of each other, seen at once.
    bool areTracksOnTop() const;
    void stackTracks(); ///< Gives each a distance from the bottom edge, the first the highest place. One step.

    void saveStylePreset(const QString &named); ///< The selected track's style; replaces the one of that name.
    void applyStylePreset(const QUuid &id);     ///< To the selected track.

    // Import

    void receiveURL(const QUrl &url); ///< A file, or a link of the workflow extension.
    void load(const QUrl &file);

    /// Takes a drop. Whether it was taken; what it holds is judged later.
    bool receive(const QMimeData &pasteboard);

    void choose();
    void chooseImport();
    void chooseMedia(); ///< What speech is to be recognised in.
    void showFCPImport();

    /// The files that were opened of late, and the sessions that were edited when another took their place, newest
    /// first.
    const QList<RecentWork::Entry> &recentWork() const { return m_recentWork; }
    void openRecent(const RecentWork::Entry &entry); ///< Brings one of them back. A file that is gone is forgotten.

    const KeptProject &keptProject() const { return m_keptProject; }
    void releaseProject();    ///< Nothing goes into it any more. Cues and styles stay.
    void matchProject();      ///< Gives the selected track its settings again.
    void readProjectTitles(); ///< Brings in the titles that stand in it, in the session's place.
    /// What of the timeline can be heard; absent until one is imported.
    const std::optional<FCPAudioPlan> &aiTimelinePlan() const { return m_recognition.aiTimelinePlan(); }

    // Export of the selected track, or of all shown tracks: these lie in one document, each on its lane in its style.

    void exportSRT();
    void exportAllSRT();    ///< A file for each track, into a folder that is asked for. Files there stay as they are.
    void exportFCPXML();    ///< A document of its own.
    void exportToProject(); ///< Into the kept project; asks for one where there is none.
    void exportAllFCPXML();
    void exportAllToProject();
    void showTitleWriting(); ///< Of the selected track's words into the kept project, or one that is asked for.
    QString titleWritingName() const; ///< What the file is called that these are written into.

    /// The clip document for a drag of that track, or of the selected one. Absent when it was refused.
    std::optional<QByteArray> payload(std::optional<QUuid> trackID);
    std::optional<QByteArray> payloadOfAll();

    // Long work that owns the cues

    bool aiBusy() const { return m_owner.isBusy(); }

    /// Runs `operation(job, report)` on a worker, as CueOwnership::run does. A version of the shared session that had
    /// to wait is taken up last.
    template <class JobType = Job, class Operation, class Take>
    bool ownCues(const QString &first, Operation operation, Take take)
    {
        return m_owner.run<JobType>(first, std::move(operation), std::move(take));
    }

    void showAI(WindowState::AIMode mode);
    void showAISettings(); ///< As they were left.
    void showAISettings(WindowState::AISettingsTab tab);
    void cancelAI(); ///< Ends the work that owns the cues, and leaves them as they are.

    // Its parts

    AISettings &aiSettings() { return m_aiSettings; }
    AIServices &aiServices() { return m_aiServices; }
    ModelDownloads &modelDownloads() { return m_modelDownloads; }
    ScriptMatching &scriptMatching() { return m_scriptMatching; }
    Recognition &recognition() { return m_recognition; }
    Sound &sound() { return m_sound; }
    ScriptSpeech &scriptSpeech() { return m_scriptSpeech; }
    Translation &translation() { return m_translation; }
    Review &review() { return m_review; }
    GlossaryTerms &glossary() { return m_glossary; }
    SuspectMarks &suspects() { return m_suspects; }
    const AIWork &aiWork() const { return m_aiWork; }
    TextTools &textTools() { return m_textTools; }
    CueTiming &cueTiming() { return m_cueTiming; }
    CueTools &cueTools() { return m_cueTools; }
    FileRepairing &fileRepairing() { return m_fileRepairing; }
    const FileRepairing &fileRepairing() const { return m_fileRepairing; }
    TitleWriting &titleWriting() { return m_titleWriting; }
    Versions &versions() { return m_versions; }
    WindowState &window() { return m_window; }
    const WindowState &window() const { return m_window; }
    void showScriptMatch();
    void toggleFloating();

    Preferences &preferences() { return m_preferences; }
    const FileDialogs &dialogs() const { return m_dialogs; } ///< For files that are no part of the session.

    // Persistence

    const QString &draftURL() const { return m_keeper.draftURL(); }
    std::optional<QString> sessionURL() const { return m_keeper.sessionURL(); }

    /// Looks at the shared session now, instead of at the next of its regular looks.
    void refreshSession() { m_keeper.refreshSession(); }

    /// Saves what still waits, draft and session, before it returns. Failures are said in `message`.
    void saveDraft();
    void removeLeftovers(); ///< Removes, on a worker, what runs of engines have left that were killed. For the start.
    void shutdownAI();      ///< Cancels every long operation, and waits for its end, for reads no longer than
                            ///< BackgroundTask::patience.

    /// How far the newest state of the session is on its way to the disk.
    enum class Saving
    {
        done,
        underWay,
        failing ///< failure() says why. It is tried again.
    };
    Saving saving() const { return m_saving; }

    // End of the program

    /// Saves what waits. Whether the program can end without losing anything; otherwise `quitQuestion` is put up.
    bool requestQuit();
    bool quitStopsWork() const; ///< Whether the question is about work under way: everything else is saved.
    const std::optional<QString> &quitQuestion() const { return m_quitQuestion; } ///< Why it cannot; until answered.
    void answerQuit(bool quits);

Q_SIGNALS:
    void stepped(qsizetype cue); ///< Undone or redone: of the selected track this cue is the first that changed by it.
    void aboutToLoad(); ///< Another session is about to be brought in, or the program to end: the last moment to keep
                        ///< what is being typed.
    void loaded(); ///< Another session was brought in: a file, an opened session. Comes before the fields' own signals.
    void itemsChanged();
    void sourceChanged();
    void optionsChanged();
    void lookChanged();
    void picturedChanged();
    void removeFillersChanged();
    void removePunctuationChanged();
    void previousItemsChanged();
    void cleanedChanged();
    void tracksChanged();
    void selectedTrackIDChanged();
    void splitOriginalChanged();
    void messageChanged();
    void failureChanged();
    void activityChanged();
    void historyChanged();
    void recentWorkChanged();
    void savingChanged();
    void quitQuestionChanged();
    void quitConfirmed(); ///< The program is to end, whatever is lost.
    void aiTimelinePlanChanged();
    void aiBusyChanged();

private:
    // The session
    void makeRoomFor(const LintoraSession &next);
    void keepSession(const QString &prefix = {});
    void tell(const LintoraSession &before, bool isLoaded);
    void emitChanges(const LintoraSession &before);
    template <class Change>
    std::optional<qsizetype> editCues(const QString &title, const QList<qsizetype> &indices, qsizetype next,
                                      const Change &change);
    /// Sets a field and says so, unless it has that value already.
    template <class T, class Value>
    void publish(T &field, Value value, void (LintoraModel::*changed)())
    {
        if (field == value)
            return;
        field = std::move(value);
        Q_EMIT(this->*changed)();
    }
    void setStyle(const Options &options, const std::optional<TitleTemplate> &look, const QString &title);
    void setMessage(const QString &message, const QString &detail);
    void withdrawOffers();
    void step(void (EditedSession::*direction)(), const QString &message);

    // Import and export
    void importFrom(const QString &what, std::function<Imports::Imported(Job &)> read, std::function<void()> then);
    void takeImported(const Imports::Imported &imported);
    void takeCues(const Imports::ImportedCues &imported);
    Options forThese(const Options &options) const;
    void receiveFCP(const Imports::ImportedTimeline &timeline);
    void loadSubtitles(const QString &path);
    void noteOpened(const QString &path);
    void openKept(const QString &file);
    void offerRepair(const QString &path);
    void takeRepaired(const Imports::ImportedCues &cues, qsizetype repairs);
    void loadProject(const QString &path, std::function<void()> then);
    enum class Exported
    {
        selectedTrack,
        shownTracks
    };
    void exportIntoProject(Exported which);
    void exportTitles(Exported which, const std::optional<FCPProject> &project);
    void reportWritten(const QList<SubtitleTrack> &tracks, const QList<Problem> &problems);
    QList<SubtitleTrack> exportedTracks(Exported which) const;
    QString exportName(Exported which, const QString &of = {}) const;
    std::optional<QByteArray> clipOf(const QList<SubtitleTrack> &tracks);

    BackgroundTask *shownTask() const;

    // Persistence
    void openSession(const QUrl &link);
    void schedulePersist();
    void persistSession();
    void reportUnsaved();
    void followSaving();
    bool hasCues() const;
    std::optional<QString> save();
    void setUnsaved(const std::optional<QString> &why);

    FileDialogs m_dialogs;
    AISettings m_aiSettings;
    AIServices m_aiServices{m_aiSettings};
    ModelDownloads m_modelDownloads;
    Preferences m_preferences;
    StylePresets m_stylePresets;
    SessionKeeper m_keeper;

    RecentWork m_recent;
    QList<RecentWork::Entry> m_recentWork;

    EditedSession m_session;
    std::optional<LintoraSession> m_sessionAsLoaded; ///< As it was brought in; absent: in an earlier run.
    bool m_isPersisting = false;                     ///< Whether persistSession() is on its way.
    QString m_message;
    QString m_messageDetail;
    std::optional<Failure> m_failure;
    std::optional<QString> m_unsaved; ///< Why the newest session is not saved.
    Saving m_saving = Saving::done;
    std::optional<QString> m_quitQuestion;

    QString m_openFile; ///< The file that was taken in last; empty while none is known.

    CueOwnership m_owner{m_session};
    WindowState m_window{m_preferences, m_owner};
    SessionLink m_link{m_keeper, m_session, m_owner};
    ScriptMatching m_scriptMatching{m_session, m_owner};
    AIWork m_aiWork{m_owner};
    SuspectMarks m_suspects{m_session, m_owner};
    Recognition m_recognition{m_session, m_owner, m_suspects, m_aiSettings};
    ScriptSpeech m_scriptSpeech{m_session, m_owner, m_suspects, m_aiSettings, m_recognition, m_scriptMatching};
    Sound m_sound{m_recognition};
    GlossaryTerms m_glossary{Locations::glossary()};
    Translation m_translation{m_session, m_owner, m_aiSettings, m_glossary};
    Review m_review{m_session, m_owner, m_aiSettings};
    TextTools m_textTools{m_session, m_owner, m_preferences};
    CueTools m_cueTools{m_session, m_owner, m_preferences};
    CueTiming m_cueTiming{m_session, m_owner};
    FileRepairing m_fileRepairing;
    KeptProject m_keptProject;
    TitleWriting m_titleWriting;
    OwnTitles m_ownTitles;
    Versions m_versions{m_session, m_owner, m_keeper.beside(QStringLiteral("Versions"))};
    Options m_pictured;

    // The tasks come last, so that they end first.
    BackgroundTask m_import{BackgroundTask::Order::oneAfterAnother};
    BackgroundTask m_export{BackgroundTask::Order::oneAfterAnother, BackgroundTask::Effect::writes};
    BackgroundTask m_keeping{BackgroundTask::Order::oneAfterAnother, BackgroundTask::Effect::writes};
    BackgroundTask m_tidying{BackgroundTask::Order::oneAfterAnother};
    const std::array<BackgroundTask *, 12> m_tasks = {&m_import,
                                                      &m_export,
                                                      &m_scriptMatching.task(),
                                                      &m_cueTools.task(),
                                                      &m_cueTools.files(),
                                                      &m_fileRepairing.task(),
                                                      &m_titleWriting.task(),
                                                      &m_titleWriting.files(),
                                                      &m_ownTitles.task(),
                                                      &m_versions.task(),
                                                      &m_owner.task(),
                                                      &m_modelDownloads.task()}; ///< Those that are shown.
};
