#include "fcp/Storyline.h"

#include "core/ConversionError.h"
#include "fcp/ConformRate.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// A frame that lies this close before a cut belongs to the clip after it. Seconds.
const Rational tolerance(1, 1'000'000);

Rational requireTime(const std::optional<QByteArray> &text)
{
    const auto time = Rational::parseTime(text.value_or(QByteArray("0s")));
    if (!time)
        throw ConversionError(u"项目 XML 缺少必要结构。"_s);
    return *time;
}

Storyline::Clip readClip(xmlNode *element, const Rational &projectStart, const FrameRate &rate)
{
    const Rational framesPerSecond(rate.numerator, rate.denominator);
    const Rational offset = requireTime(Xml::attribute(element, "offset"));
    const Rational duration = requireTime(Xml::attribute(element, "duration"));
    const Rational start = requireTime(Xml::attribute(element, "start"));
    const Rational pace = ConformRate::pace(element, rate.frameDuration());
    const Rational begin = offset - projectStart - tolerance;
    return {.element = element,
            .firstFrame = (begin * framesPerSecond).ceiling(),
            .endFrame = ((begin + duration) * framesPerSecond).ceiling(),
            .origin = (start + (projectStart - offset) * pace) * framesPerSecond,
            .pace = pace,
            .retimed = Xml::child(element, "timeMap") != nullptr};
}

} // namespace

qint64 Storyline::Clip::localFrame(qint64 timelineFrame) const
{
    // On the grid and at the timeline's own pace, as nearly always, frames are simply counted on.
    qint64 sum = 0;
    if (pace == Rational(1) && origin.denominator() == 1 &&
        !__builtin_add_overflow(origin.numerator(), timelineFrame, &sum))
        return sum;
    return (origin + Rational(timelineFrame) * pace).rounded();
}

Storyline::Storyline(const xmlNode *spine, const Rational &projectStart, const FrameRate &rate)
{
    for (xmlNode *const element : Xml::Children(spine)) {
        if (Xml::isElement(element, "transition") || !Xml::attribute(element, "offset") ||
            !Xml::attribute(element, "duration"))
            continue;
        try {
            m_clips.push_back(readClip(element, projectStart, rate));
        } catch (const RationalOverflow &) {
            throw ConversionError(u"项目 XML 缺少必要结构。"_s);
        }
    }
    if (m_clips.empty())
        throw ConversionError(u"项目主时间线没有可连接的片段。"_s);
    const auto overlaps = [](const Clip &a, const Clip &b) {
        return b.firstFrame < a.endFrame || a.endFrame < a.firstFrame;
    };
    m_ordered = std::adjacent_find(m_clips.begin(), m_clips.end(), overlaps) == m_clips.end();
}

const Storyline::Clip *Storyline::clipAt(qint64 timelineFrame) const
{
    const auto holds = [&](const Clip &clip) {
        return clip.firstFrame <= timelineFrame && timelineFrame < clip.endFrame;
    };
    auto clip = m_clips.begin();
    if (m_ordered) {
        clip = std::upper_bound(clip, m_clips.end(), timelineFrame,
                                [](qint64 frame, const Clip &each) { return frame < each.firstFrame; });
        if (clip != m_clips.begin())
            --clip;
        return clip != m_clips.end() && holds(*clip) ? &*clip : nullptr;
    }
    // Overlapping clips do not come from Final Cut Pro; the first one in the document holds the title.
    clip = std::find_if(clip, m_clips.end(), holds);
    return clip == m_clips.end() ? nullptr : &*clip;
}
