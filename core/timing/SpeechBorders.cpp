#include "core/timing/SpeechBorders.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <numeric>

namespace {

constexpr qsizetype shortestPause = 10; ///< Frames; a stop within a word is shorter.
constexpr qsizetype shortestSpeech = 5; ///< Frames; a click is shorter.
constexpr quint16 leastLoud = 64;       ///< 54 dB below full scale.
constexpr int leastContrast = 4;        ///< Between loud and quiet, at least: 12 dB.

using Pieces = std::vector<std::span<const quint16>>;

/// How often there is each peak. Of a day as of a minute it takes the same memory.
class PeakCounts
{
public:
    explicit PeakCounts(const Pieces &peaks)
    {
        for (const auto &piece : peaks) {
            m_total += piece.size();
            for (const quint16 peak : piece)
                ++m_counts[peak];
        }
    }

    bool isEmpty() const { return m_total == 0; }

    /// The peak that `percent` of all, less than 100, stand before in their order by size.
    int quantile(size_t percent) const
    {
        const size_t place = m_total * percent / 100;
        size_t before = 0;
        size_t peak = 0;
        while (before + m_counts[peak] <= place)
            before += m_counts[peak++];
        return int(peak);
    }

private:
    size_t m_total = 0;
    std::vector<quint32> m_counts = std::vector<quint32>(size_t(std::numeric_limits<quint16>::max()) + 1);
};

/// The peak above which a recording is loud; absent when it is not quiet anywhere, or silent throughout.
std::optional<quint16> threshold(const Pieces &peaks)
{
    const PeakCounts counts(peaks);
    if (counts.isEmpty())
        return std::nullopt;
    const int quiet = counts.quantile(10);
    const int loud = counts.quantile(95);
    if (loud < leastLoud || loud < quiet * leastContrast)
        return std::nullopt;
    return std::max(leastLoud, quint16(quiet + (loud - quiet) / 10));
}

/// Frames, half-open.
struct Stretch
{
    qsizetype begin;
    qsizetype end;
};

} // namespace

SpeechBorders::SpeechBorders(const QList<quint16> &peaks)
    : SpeechBorders(Pieces{std::span(peaks)})
{}

SpeechBorders::SpeechBorders(const Pieces &peaks)
{
    const auto loud = threshold(peaks);
    if (!loud)
        return;
    Stretch last = {.begin = 0, .end = 0};
    const auto end = [&] {
        if (last.end - last.begin < shortestSpeech)
            return;
        m_onsets.push_back(last.begin * frameMS);
        m_ends.push_back(last.end * frameMS);
    };
    qsizetype frame = 0;
    for (const auto &piece : peaks) {
        for (const quint16 peak : piece) {
            const qsizetype place = frame++;
            if (peak < *loud)
                continue;
            if (last.end == last.begin || place - last.end >= shortestPause) {
                end();
                last.begin = place;
            }
            last.end = place + 1;
        }
    }
    end();
}

qint64 SpeechBorders::totalMS() const
{
    return std::reduce(m_ends.begin(), m_ends.end()) - std::reduce(m_onsets.begin(), m_onsets.end());
}

bool SpeechBorders::isSpeech(qint64 startMS, qint64 endMS) const
{
    const auto end = std::ranges::upper_bound(m_ends, startMS);
    return end != m_ends.end() && m_onsets[size_t(end - m_ends.begin())] < endMS;
}

std::optional<qint64> SpeechBorders::nearest(const std::vector<qint64> &sorted, qint64 nearMS, qint64 withinMS)
{
    const auto above = std::ranges::lower_bound(sorted, nearMS);
    std::optional<qint64> best;
    if (above != sorted.end() && *above - nearMS <= withinMS)
        best = *above;
    if (above != sorted.begin() && nearMS - *(above - 1) <= withinMS &&
        (!best || nearMS - *(above - 1) < *best - nearMS))
        best = *(above - 1);
    return best;
}

std::optional<qint64> SpeechBorders::clear(const std::vector<qint64> &sorted, qint64 nearMS, qint64 withinMS)
{
    const auto found = nearest(sorted, nearMS, withinMS);
    if (!found)
        return std::nullopt;
    const qint64 reach = 2 * std::abs(*found - nearMS);
    const auto first = std::ranges::lower_bound(sorted, nearMS - reach);
    const auto last = std::ranges::upper_bound(sorted, nearMS + reach);
    return last - first == 1 ? found : std::nullopt;
}

namespace TimedCues {

QList<TimedCue> snapped(QList<TimedCue> cues, const SpeechBorders &borders, const FrameGrid &grid)
{
    for (qsizetype i = 0; i < cues.size(); ++i) {
        if (cues[i].isUnsure)
            continue;
        Subtitle &cue = cues[i].cue;
        const qint64 earliest = i > 0 ? cues[i - 1].cue.end : 0;
        if (const auto onset = borders.onset(cue.start, snapMS)) {
            const qint64 start = std::max(grid.snapped(*onset), earliest);
            cue.start = start < cue.end ? start : cue.start;
        }
        if (const auto end = borders.end(cue.end, snapMS)) {
            qint64 last = grid.snapped(*end);
            if (i + 1 < cues.size())
                last = std::min(last, cues[i + 1].cue.start);
            cue.end = last > cue.start ? last : cue.end;
        }
    }
    return cues;
}

} // namespace TimedCues
