#include "fcp/titles/Storyline.h"

#include "core/ConversionError.h"
#include "fcp/timeline/ConformRate.h"

#include <algorithm>
#include <set>

using namespace Qt::StringLiterals;

namespace {

/// A frame that lies this close before a cut belongs to the clip after it. Seconds.
const Rational tolerance(1, 1'000'000);

Rational requireTime(const xmlNode *element, QByteArrayView attribute)
{
    const auto time = Rational::parseTime(Xml::attribute(element, attribute).value_or(QByteArray("0s")));
    if (!time)
        throw ConversionError(u"项目 XML 缺少必要结构。"_s,
                              u"%1 的 %2 无法读取。"_s.arg(Xml::place(element), QString::fromLatin1(attribute)));
    return *time;
}

/// What a child of a storyline shows: of an audition, the choice in use, which comes first.
xmlNode *shownClip(xmlNode *item)
{
    return Xml::isElement(item, "audition") ? Xml::firstElement(item->children) : item;
}

/// `item` says where the clip `element` lies; they differ for an audition only.
Storyline::Clip readClip(const xmlNode *item, xmlNode *element, const Rational &projectStart, const FrameRate &rate)
{
    const Rational framesPerSecond(rate.numerator, rate.denominator);
    const Rational offset = requireTime(item, "offset");
    const Rational duration = requireTime(element, "duration");
    const Rational start = requireTime(element, "start");
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
    for (xmlNode *const item : Xml::Children(spine)) {
        xmlNode *const element = shownClip(item);
        if (Xml::isElement(item, "transition") || !element || !Xml::attribute(item, "offset") ||
            !Xml::attribute(element, "duration"))
            continue;
        try {
            m_clips.push_back(readClip(item, element, projectStart, rate));
        } catch (const RationalOverflow &) {
            throw ConversionError(u"项目 XML 缺少必要结构。"_s, u"%1 的时间过大。"_s.arg(Xml::place(element)));
        }
    }
    if (m_clips.empty())
        throw ConversionError(u"项目主时间线没有可连接的片段。"_s);
    coverTimeline();
}

/// Sweeps over the clips' begins and ends. Overlapping clips do not come from Final Cut Pro; of those the first one in
/// the document holds the titles.
void Storyline::coverTimeline()
{
    struct Edge
    {
        qint64 frame;
        size_t clip;
        bool begins;
    };
    std::vector<Edge> edges;
    edges.reserve(m_clips.size() * 2);
    for (size_t i = 0; i < m_clips.size(); ++i) {
        if (m_clips[i].firstFrame < m_clips[i].endFrame) {
            edges.push_back({.frame = m_clips[i].firstFrame, .clip = i, .begins = true});
            edges.push_back({.frame = m_clips[i].endFrame, .clip = i, .begins = false});
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge &a, const Edge &b) { return a.frame < b.frame; });
    std::set<size_t> open;
    for (const Edge &edge : edges) {
        if (edge.begins)
            open.insert(edge.clip);
        else
            open.erase(edge.clip);
        const Clip *const holder = open.empty() ? nullptr : &m_clips[*open.begin()];
        if (!m_stretches.empty() && m_stretches.back().firstFrame == edge.frame)
            m_stretches.back().clip = holder;
        else
            m_stretches.push_back({.firstFrame = edge.frame, .clip = holder});
    }
}

const Storyline::Clip *Storyline::clipAt(qint64 timelineFrame) const
{
    const auto next = std::upper_bound(m_stretches.begin(), m_stretches.end(), timelineFrame,
                                       [](qint64 frame, const Stretch &each) { return frame < each.firstFrame; });
    return next == m_stretches.begin() ? nullptr : std::prev(next)->clip;
}
