#include "fcp/audio/FCPAudioPlan.h"

#include "core/ConversionError.h"
#include "core/json/JsonWriter.h"
#include "fcp/FCPXML.h"
#include "fcp/audio/AudioWalk.h"
#include "fcp/audio/ClipSelection.h"
#include "fcp/audio/DraggedTimeline.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestPlan = 10'800; // seconds

/// Rounding to doubles must not look like sound beyond the limit.
constexpr double tolerance = 0.001; // seconds

/// What the walk brought in, before it is judged.
struct Draft
{
    QString name;
    const xmlNode *format = nullptr; ///< Null when it is not known.
    Rational duration;               ///< Seconds.
    bool durationStated = true;      ///< Otherwise sound may reach beyond it.
};

QString nameOf(const xmlNode *element, const QString &fallback)
{
    const auto name = Xml::attribute(element, "name");
    return name && !name->isEmpty() ? QString::fromUtf8(*name) : fallback;
}

Draft walkProject(const DraggedTimeline &timeline, const MediaResources &resources, AudioWalk &walk)
{
    const StorySequence sequence = resources.readSequence(timeline.sequence);
    walk.walkSequence(sequence, {.end = sequence.duration});
    return {.name = nameOf(timeline.project, u"项目"_s),
            .format = resources.find(timeline.sequence, "format"),
            .duration = sequence.duration ? *sequence.duration : walk.storylineEnd(sequence),
            .durationStated = sequence.duration.has_value()};
}

/// The format of a clip that stands alone: its own, else that of what it shows.
const xmlNode *clipFormat(const xmlNode *clip, const MediaResources &resources)
{
    if (const xmlNode *const own = resources.find(clip, "format"))
        return own;
    const xmlNode *const resource = resources.find(clip, "ref");
    const xmlNode *const sequence = resource ? Xml::child(resource, "sequence") : nullptr;
    if (sequence)
        return resources.find(sequence, "format");
    return resource ? resources.find(resource, "format") : nullptr;
}

/// The format that all clips share. Clips of several formats do not tell what timeline they come from.
const xmlNode *sharedFormat(const std::vector<const xmlNode *> &clips, const MediaResources &resources)
{
    const xmlNode *const first = clipFormat(clips.front(), resources);
    const bool shared =
        std::ranges::all_of(clips, [&](const xmlNode *clip) { return clipFormat(clip, resources) == first; });
    return shared ? first : nullptr;
}

Draft walkSelection(const DraggedTimeline &timeline, const MediaResources &resources, AudioWalk &walk)
{
    const ClipSelection selection = ClipSelection::lay(timeline.clips, walk);
    for (const ClipSelection::Clip &clip : selection.clips)
        walk.walkClip(clip.element, clip.offset, selection.origin, {.end = selection.duration});
    return {.name = nameOf(timeline.clips.front(), u"片段"_s),
            .format = sharedFormat(timeline.clips, resources),
            .duration = selection.duration};
}

/// Where the last segment ends, in seconds.
double reach(const QList<FCPAudioSegment> &segments)
{
    double end = 0;
    for (const FCPAudioSegment &segment : segments)
        end = std::max(end, segment.offset + segment.duration);
    return end;
}

/// The checks on the whole plan, in the order in which they are promised.
void check(const Draft &draft, const AudioWalk::Found &found)
{
    if (draft.duration <= 0 || draft.duration > longestPlan)
        throw ConversionError(u"请导入三小时以内的时间线范围。"_s);
    if (found.segments.size() > AudioWalk::mostSegments)
        throw ConversionError(u"本次超过 250 个音频片段，请分段导入。"_s);
    if (found.segments.isEmpty() && !found.skippedRetimedAudio.isEmpty())
        throw NothingAudible(
            u"没有找到正常速度的音轨；变速片段自身的音频暂不参与识别。请从 FCP 导出需要识别的人声音频后导入。"_s);
    if (found.segments.isEmpty())
        throw NothingAudible(u"所选 FCP 内容没有可读取的音轨。"_s);
    if (reach(found.segments) > longestPlan + tolerance)
        throw ConversionError(u"请将超过三小时的时间线分段识别。"_s);
}

std::optional<Options> matchedSettings(const Draft &draft)
{
    if (!draft.format)
        return std::nullopt;
    try {
        return FCPXML::settings(Options(), draft.format, draft.name);
    } catch (const ConversionError &) {
        // A rate that titles cannot have is no reason to leave the sound alone.
        return std::nullopt;
    }
}

FCPAudioPlan makePlan(const XmlDocument &document, UnreadableClips unreadable, const Check &goOn)
{
    const DraggedTimeline timeline = DraggedTimeline::find(document);
    MediaResources resources(document, timeline.project);
    AudioWalk walk(resources, unreadable, goOn);
    const Draft draft =
        timeline.project ? walkProject(timeline, resources, walk) : walkSelection(timeline, resources, walk);
    const AudioWalk::Found &found = walk.found();
    check(draft, found);
    QList<FCPAudioSegment> segments = found.segments;
    std::ranges::stable_sort(segments, {}, &FCPAudioSegment::offset);
    const double duration = draft.duration.toDouble();
    return {.name = draft.name,
            .segments = segments,
            .duration = draft.durationStated ? duration : std::max(duration, reach(segments)),
            .settings = matchedSettings(draft),
            .hasAudioEffects = found.hasAudioEffects,
            .skippedRetimedAudio = found.skippedRetimedAudio,
            .skippedUnreadable = found.skippedUnreadable};
}

void writeSegment(JsonWriter &json, const FCPAudioSegment &segment)
{
    json.beginObject();
    json.key("duration").number(segment.duration);
    json.key("fileStart").number(segment.fileStart);
    json.key("gain").number(segment.gain);
    json.key("offset").number(segment.offset);
    json.key("url").text(segment.url.toString(QUrl::FullyEncoded));
    json.endObject();
}

} // namespace

FCPAudioPlan FCPAudioPlan::parse(QByteArrayView data, UnreadableClips unreadable)
{
    return parse(FCPXML::draggedDocument(data), unreadable);
}

FCPAudioPlan FCPAudioPlan::parse(const XmlDocument &document, UnreadableClips unreadable, const Check &check)
{
    try {
        return makePlan(document, unreadable, check);
    } catch (const RationalOverflow &) {
        throw ConversionError(u"FCP 时间值无效。"_s);
    }
}

std::optional<QString> FCPAudioPlan::retimeNotice() const
{
    if (skippedRetimedAudio.isEmpty())
        return std::nullopt;
    return QString::number(skippedRetimedAudio.size()) + u" 段变速片段自身的音频，正常音轨照常识别。"_s;
}

std::optional<QString> FCPAudioPlan::unreadableNotice() const
{
    if (skippedUnreadable.isEmpty())
        return std::nullopt;
    return u"%1 段无法准确定位的片段，第一个是：%2。"_s.arg(QString::number(skippedUnreadable.size()),
                                                            skippedUnreadable.first());
}

void writeAudioPlan(JsonWriter &json, const FCPAudioPlan &plan)
{
    json.beginObject();
    json.key("duration").number(plan.duration);
    json.key("hasAudioEffects").boolean(plan.hasAudioEffects);
    json.key("name").text(plan.name);
    if (const auto notice = plan.retimeNotice())
        json.key("retimeNotice").text(*notice);
    json.key("segments").beginArray();
    for (const FCPAudioSegment &segment : plan.segments)
        writeSegment(json, segment);
    json.endArray();
    if (plan.settings) {
        json.key("settings");
        writeOptions(json, *plan.settings);
    }
    json.key("skippedRetimedAudio").beginArray();
    for (const QString &name : plan.skippedRetimedAudio)
        json.text(name);
    json.endArray();
    if (!plan.skippedUnreadable.isEmpty()) {
        json.key("skippedUnreadable").beginArray();
        for (const QString &name : plan.skippedUnreadable)
            json.text(name);
        json.endArray();
    }
    json.endObject();
}
