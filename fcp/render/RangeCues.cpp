#include "fcp/render/RangeCues.h"

#include <algorithm>

namespace {

/// Two recognitions of the same phrase differ by less. Milliseconds.
constexpr qint64 toleranceMS = 1'000;

bool comesNear(const Subtitle &cue, qint64 border)
{
    return cue.start <= border + toleranceMS && cue.end >= border - toleranceMS;
}

/// Whether they are one phrase, as two recognitions place it: they share more than half of the shorter.
bool areSamePhrase(const Subtitle &a, const Subtitle &b)
{
    const qint64 shared = std::min(a.end, b.end) - std::max(a.start, b.start);
    return shared * 2 > std::min(a.end - a.start, b.end - b.start);
}

} // namespace

void RangeCues::add(const SpeechRange &range, const QList<Subtitle> &cues)
{
    for (Subtitle cue : cues) {
        cue.start += range.heardBegin;
        cue.end += range.heardBegin;
        const qint64 middle = (cue.start + cue.end) / 2;
        const bool isNear = (range.heardBegin < range.begin && comesNear(cue, range.begin)) ||
                            (range.heardEnd > range.end && comesNear(cue, range.end));
        // At an end that is no border, nobody else could own it.
        const bool isOwn = (middle >= range.begin || range.heardBegin == range.begin) &&
                           (middle < range.end || range.heardEnd == range.end);
        if (isOwn || isNear)
            m_heard.append({.cue = cue, .range = m_ranges, .isOwn = isOwn, .isNear = isNear});
    }
    ++m_ranges;
}

QList<Subtitle> RangeCues::merged(qint64 durationMS) const
{
    QList<Heard> candidates = m_heard;
    // A phrase's owner first, then the longer one.
    std::ranges::stable_sort(candidates, [](const Heard &a, const Heard &b) {
        const qint64 longA = a.cue.end - a.cue.start;
        const qint64 longB = b.cue.end - b.cue.start;
        return a.isOwn != b.isOwn ? a.isOwn : longA > longB;
    });
    QList<Heard> kept;
    for (const Heard &each : candidates) {
        const bool isKnown = each.isNear && std::ranges::any_of(kept, [&](const Heard &other) {
                                 return other.isNear && other.range != each.range && areSamePhrase(other.cue, each.cue);
                             });
        if (!isKnown)
            kept.append(each);
    }
    std::ranges::stable_sort(kept, {}, [](const Heard &each) { return each.cue.start; });
    QList<Subtitle> cues;
    for (qsizetype i = 0; i < kept.size(); ++i) {
        Subtitle cue = kept[i].cue;
        cue.end = std::min(cue.end, durationMS);
        // One recogniser's cues do not overlap; those of two runs of it must not either.
        if (i + 1 < kept.size() && kept[i + 1].range != kept[i].range && kept[i + 1].cue.start > cue.start)
            cue.end = std::min(cue.end, kept[i + 1].cue.start);
        if (cue.start >= cue.end)
            continue;
        cue.id = cues.size() + 1;
        cues.append(cue);
    }
    return cues;
}
