#pragma once

#include "core/Subtitle.h"
#include "fcp/render/SpeechRanges.h"

#include <QList>

/// The cues of a recording of which ranges were recognised one by one, where two of them heard the same phrase.
class RangeCues
{
public:
    /// Adds the cues of the next range. Their times count from what was heard of it.
    void add(const SpeechRange &range, const QList<Subtitle> &cues);

    /// All cues on the recording's time, in its order, numbered from 1. None ends after `durationMS`.
    ///
    /// A phrase is the range's in which its middle lies. Two recognitions do not quite agree on times, nor on where a
    /// phrase ends: what both took for the other's is kept all the same, what both took for theirs is kept once, as the
    /// longer of the two.
    QList<Subtitle> merged(qint64 durationMS) const;

private:
    struct Heard
    {
        Subtitle cue;
        qsizetype range;
        bool isOwn;  ///< Its middle lies in its range.
        bool isNear; ///< It comes close to a border at which its range meets another.
    };

    QList<Heard> m_heard;
    qsizetype m_ranges = 0;
};
