#pragma once

#include "app/model/EditHistory.h"

/// A history written down as what happened to it, record by record, and made of such records again.
///
/// A record is a letter and, for most, a JSON object behind it:
///
/// ```
///   B {session}                      the first record: the state that the history begins with
///   R {"change": …, "title": ""}     recorded      what makes the new state out of the current one (SessionChange)
///   A {"change": …, "title": ""}     amended
///   I {"change": …, "title": ""}     inserted before the current state
///   U                                undone
///   Y                                redone
///   P {"point": 7}                   the current state is known by this number; numbers ascend
///   D {"saved": 6, "saving": 7}      the draft holds the state of point 6 and is about to hold that of 7
/// ```
namespace HistoryRecords {

/// Steps that are kept when older ones are forgotten.
struct Limits
{
    qsizetype steps = 1'000;
    qint64 bytes = 4'194'304; ///< Of their records.
};

QByteArray begin(const LintoraSession &first);

/// What `move` was, from the state `before` it, the current one; `state` and `title` where the move takes them.
QByteArray step(HistoryMove move, const LintoraSession &before, const LintoraSession &state, const QString &title);

QByteArray point(quint64 number);
QByteArray draft(quint64 saved, quint64 saving);

bool isBegin(QByteArrayView record);

/// What the record does to the history; absent when it is no step.
std::optional<HistoryMove> moveOf(QByteArrayView record);

/// What records tell.
struct Replayed
{
    EditHistory history;
    quint64 point = 0;            ///< The newest; 0 when there is none.
    std::optional<quint64> saved; ///< The point at which the state was that of the draft; absent: it never was.
};

/// The history at the end of `records`, of which any beginning of a valid list is one that holds at least its first.
/// `draft` is looked for at the points that the draft may hold according to them: with none told, the first one.
/// @throws PlatformError when a record makes no sense
Replayed replay(const QList<QByteArray> &records, const LintoraSession &draft);

/// Records that tell the same, but for the oldest steps beyond `limits`. Undone states are forgotten before others.
/// What lies behind the point `saved` stays as it is.
/// @throws PlatformError when a record makes no sense
QList<QByteArray> compacted(const QList<QByteArray> &records, quint64 saved, const Limits &limits);

} // namespace HistoryRecords
