#pragma once

#include "core/FrameGrid.h"
#include "core/timing/TimedCues.h"

#include <QList>

#include <optional>
#include <span>
#include <vector>

/// Where speech begins and ends in a recording, by how loud it is.
///
/// Loud is what rises clearly over the recording's own quiet. A recording without quiet, music under every word, has no
/// borders.
class SpeechBorders
{
public:
    static constexpr qint64 frameMS = 10;

    SpeechBorders() = default; ///< Of a recording that nobody has heard: none.

    /// `peaks` are those of the recording, one for each frame of frameMS, the last one may be of less.
    explicit SpeechBorders(const QList<quint16> &peaks);

    /// The same where they lie in pieces, one after the other. Memory does not grow with them, but for the borders.
    explicit SpeechBorders(const std::vector<std::span<const quint16>> &peaks);

    /// The onset, or the end, of speech that is nearest to a time, no further than `withinMS`. Milliseconds.
    std::optional<qint64> onset(qint64 nearMS, qint64 withinMS) const { return nearest(m_onsets, nearMS, withinMS); }
    std::optional<qint64> end(qint64 nearMS, qint64 withinMS) const { return nearest(m_ends, nearMS, withinMS); }

    /// The same where there is no doubt: no other one is nearer than twice as far away.
    std::optional<qint64> clearOnset(qint64 nearMS, qint64 withinMS) const { return clear(m_onsets, nearMS, withinMS); }
    std::optional<qint64> clearEnd(qint64 nearMS, qint64 withinMS) const { return clear(m_ends, nearMS, withinMS); }

    bool isEmpty() const { return m_onsets.empty(); }
    qsizetype count() const { return qsizetype(m_onsets.size()); } ///< Stretches of speech ...
    qint64 totalMS() const;                                        ///< ... and how long they are together.
    bool isSpeech(qint64 startMS, qint64 endMS) const;             ///< Whether some of [startMS, endMS) is speech.

private:
    static std::optional<qint64> nearest(const std::vector<qint64> &sorted, qint64 nearMS, qint64 withinMS);
    static std::optional<qint64> clear(const std::vector<qint64> &sorted, qint64 nearMS, qint64 withinMS);

    std::vector<qint64> m_onsets; ///< Milliseconds, ascending.
    std::vector<qint64> m_ends;
};

namespace TimedCues {

constexpr qint64 snapMS = 200; ///< How far a border moves to speech.

/// The cues with their borders at the onsets and ends of speech near them, on `grid`. Order stays, and what is unsure
/// stays where it is. Nothing comes to overlap: where speech begins or ends within a neighbour, sure or not, the border
/// goes no further than to it.
QList<TimedCue> snapped(QList<TimedCue> cues, const SpeechBorders &borders, const FrameGrid &grid);

} // namespace TimedCues
