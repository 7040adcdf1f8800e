#pragma once

#include "app/model/CueProposal.h"
#include "app/model/Preferences.h"
#include "app/model/ai/CueOwnership.h"

#include <memory>

/// Tools that go over all cues of the selected track: long ones broken, short ones joined, faults found and mended, the
/// Chinese script converted. What they would do is worked out on a worker and shown; nothing changes until it is asked
/// for, as one step of the history.
class CueTools : public QObject
{
    Q_OBJECT

public:
    enum class Tool
    {
        breaking, ///< And joining.
        checking,
        script
    };

    /// What becomes of cues that are too long, or too short.
    enum class Way
    {
        cues,  ///< Several cues.
        lines, ///< Several lines.
        joined ///< Short ones become one.
    };

    struct Settings
    {
        Way way = Way::cues;
        int columns = BreakableCues::Limits::landscapeColumns; ///< Of a broken or joined line.
        int lines = 1;                                         ///< Of a broken cue.
        CheckLimits limits = CheckLimits::builtIn().front();
        ChineseScript::Target script = ChineseScript::Target::simplified;
        QStringList kept; ///< Proper names that are not converted.

        friend bool operator==(const Settings &, const Settings &) = default;
    };

    /// Checks by the limits that `preferences` keeps, and keeps others there. All must live as long as this.
    CueTools(EditedSession &session, CueOwnership &owner, Preferences &preferences);

    const std::optional<Tool> &tool() const { return m_tool; } ///< Which one is open.
    void open(Tool tool);                                      ///< Refused while long work owns the cues.
    void close();

    const Settings &settings() const { return m_settings; }
    void setSettings(const Settings &settings);

    // The limits of checking as files, in the form that the command line takes.

    void readLimits(const QString &file);
    void writeLimits(const QString &file);

    const QList<CueProposal::Row> &rows() const { return m_proposal.rows; } ///< What would change or was found.
    bool isSelected(qsizetype row) const;                                   ///< Whether a finding is to be mended.
    qsizetype selectedCount() const { return qsizetype(m_selected.size()); }
    void setSelected(qsizetype row, bool selected);
    void selectAll(bool selected);

    const QString &status() const { return m_status; }
    bool isRefused() const { return m_isRefused; } ///< Whether the status says why something was not done.
    bool canApply() const;                         ///< Whether there is something to do, and it is worked out.
    void apply();                                  ///< Does what is shown.

    BackgroundTask &task() { return m_task; }
    BackgroundTask &files() { return m_files; }

Q_SIGNALS:
    void toolChanged();
    void settingsChanged();
    void rowsChanged();      ///< They are others.
    void selectionChanged(); ///< The same rows are chosen otherwise.
    void statusChanged();
    void done(const QString &message); ///< What has become of the cues.

private:
    /// What takes longest, and holds for all limits.
    struct Prepared
    {
        QList<Subtitle> items;
        QList<QStringList> terms;
        std::unique_ptr<const BreakableCues> breakable;
        std::unique_ptr<const CheckedCues> checked;
    };
    using SharedPrepared = std::shared_ptr<const Prepared>; ///< With a worker.

    struct Outcome
    {
        SharedPrepared prepared;
        CueProposal proposal;
    };

    static Outcome propose(Tool tool, const Settings &settings, const QList<Subtitle> &items, FrameGrid grid,
                           SharedPrepared prepared, const Check &check);

    FrameGrid grid() const;
    void update();
    void take(const Outcome &outcome);
    void mend();
    void put(const QList<Subtitle> &items, const QString &title, const QString &message);
    void setStatus(const QString &status, bool isRefused = false);
    QString summary() const;

    EditedSession &m_session;
    CueOwnership &m_owner;
    Preferences &m_preferences;
    std::optional<Tool> m_tool;
    Settings m_settings;
    SharedPrepared m_prepared; ///< May be null, or of other cues.
    CueProposal m_proposal;
    bool m_isCurrent = false; ///< Whether the proposal is about the cues and settings as they are.
    std::set<qsizetype> m_selected;
    QString m_status;
    bool m_isRefused = false;
    BackgroundTask m_task{BackgroundTask::Order::newestOnly};
    BackgroundTask m_files{BackgroundTask::Order::oneAfterAnother, BackgroundTask::Effect::writes};
};
