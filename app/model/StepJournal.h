#pragma once

#include "app/model/HistoryRecords.h"
#include "store/RecordLog.h"
#include "store/RoundThread.h"

#include <mutex>
#include <variant>
#include <vector>

/// Keeps the history of a session beside its draft, so that undoing and redoing go on after the end of the program,
/// whatever the end was.
///
/// ```
///   note ── note ── point 7 ──────────── note ── point 8          main thread: hands over, waits for nothing
///                     └─ written            └─ written            thread of the journal
///                          └─ aboutToSave 7 ── saved 7            thread of the draft, around its replacement
/// ```
/// The journal is never behind the draft: what a draft holds is in it, and on the disk, before the draft is replaced.
/// So the end of the journal is the newest durable state. It counts only if the draft is one of the two that the
/// journal expects, state for state; a draft that another program has written wins, and the history is dropped.
///
/// A history is worth less than the work: a journal that cannot be written is removed and begun anew with the next
/// step, and nobody is told. A second program on the same draft has no journal.
///
/// Bounded: when its steps are more than twice the limits, it is rewritten with the newest ones.
class StepJournal
{
public:
    explicit StepJournal(const QString &path, HistoryRecords::Limits limits = {});
    ~StepJournal(); ///< Writes what still waits.

    /// The history that the last run left, if it fits `draft`: with the newest durable state, which may be newer than
    /// the draft. Otherwise one that begins with `draft`. Called once, before anything else. In the order of
    /// SessionTracks. `isSaved`: whether it was read from the draft file; else what is left fits nothing.
    EditHistory takeUp(const LintoraSession &draft, bool isSaved);

    /// The history has gone on. Returns at once, and nothing is written before the next point.
    void note(HistoryMove move, const QString &title, const LintoraSession &state);

    quint64 point(); ///< The number of the state as it stands. Returns at once.

    /// The draft is about to be replaced by the state of that point. Returns when the journal holds it for good, or
    /// cannot. From any thread but the journal's, like saved().
    void aboutToSave(quint64 point);
    void saved(quint64 point); ///< The draft has been replaced.

private:
    struct Step
    {
        HistoryMove move;
        QString title;
        LintoraSession state;
    };
    struct Point
    {
        quint64 number;
    };
    struct Saving
    {
        quint64 saved;
        quint64 saving;
    };
    using Item = std::variant<Step, Point, Saving>;

    bool joinWaiting(HistoryMove move, const QString &title, const LintoraSession &state);
    void write(const std::vector<Item> &items);
    void put(const QList<QByteArray> &records, bool isSaving);
    void giveUp(const std::vector<Item> &items);
    QList<QByteArray> recordsOf(const Step &step) const;
    void follow(const Step &step);
    void count(const QByteArray &record);
    void shrink();
    bool isTooLarge() const;

    const HistoryRecords::Limits m_limits;
    RecordLog m_log;                      ///< Used on the thread, once something was noted, like what follows.
    LintoraSession m_last;                ///< Before the next step to be written.
    std::optional<quint64> m_pointOfLast; ///< Its number, if it has one.
    qsizetype m_steps = 0;                ///< In the file, also those that were undone, and the undoing.
    qint64 m_bytes = 0;                   ///< Of what follows its first record.
    qsizetype m_past = 0;                 ///< Steps in the file that can be undone.
    qsizetype m_future = 0;               ///< Steps in the file that can be redone.

    std::mutex m_mutex; ///< Guards what follows. Not held while files are touched.
    std::vector<Item> m_waiting;
    quint64 m_point = 1;     ///< The newest.
    bool m_hasMoved = false; ///< Whether a step followed it.
    quint64 m_saved = 1;     ///< The point whose state the draft holds.

    RoundThread m_thread; ///< Last, so that it ends first.
};
