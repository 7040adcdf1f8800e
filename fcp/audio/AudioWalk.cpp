#include "fcp/audio/AudioWalk.h"

#include "core/ConversionError.h"
#include "fcp/timeline/ConformRate.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Kind = StoryElement::Kind;

/// A piece shorter than this is a leftover of rounding, not sound. Seconds.
const Rational shortestPiece(1, 10'000);

/// Where a person finds what is wrong.
QString at(const xmlNode *element)
{
    return u"见%1。"_s.arg(Xml::place(element));
}

[[noreturn]] void throwStructure(const xmlNode *element)
{
    throw ConversionError(u"此复合或多机位结构暂不能直接读取，请先在 FCP 导出音频。"_s, at(element));
}

[[noreturn]] void throwSourceRange(const xmlNode *element)
{
    throw ConversionError(u"FCP 媒体的源时间范围无法准确读取，请先导出音频。"_s, at(element));
}

bool isTooShort(const TimeRange &piece)
{
    return piece.isEmpty() || (piece.end && *piece.end - piece.begin < shortestPiece);
}

/// "00:01:02.500"
QString clockTime(const Rational &seconds)
{
    const qint64 ms = std::llround(std::max(0.0, seconds.toDouble()) * 1'000);
    return u"%1:%2:%3.%4"_s.arg(ms / 3'600'000, 2, 10, QLatin1Char('0'))
        .arg(ms / 60'000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms / 1'000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms % 1'000, 3, 10, QLatin1Char('0'));
}

/// Gains of nested clips multiply; no number of them makes what a record cannot hold.
double multiplied(double a, double b)
{
    return std::min(a * b, std::numeric_limits<double>::max());
}

Rational absolute(const Rational &value)
{
    return value < 0 ? -value : value;
}

/// What the asset's file holds, on the plan.
TimeRange assetRange(const MediaAsset &asset, const TimeMap &own)
{
    TimeRange range{.begin = own.toPlan(asset.start)};
    if (asset.duration)
        range.end = own.toPlan(asset.start + *asset.duration);
    return range;
}

} // namespace

AudioWalk::AudioWalk(MediaResources &resources, UnreadableClips unreadable, const Check &check)
    : m_resources(resources)
    , m_unreadable(unreadable)
    , m_check(check)
{}

void AudioWalk::walkSequence(const StorySequence &sequence, const TimeRange &window)
{
    const Place place{.times = {.local = sequence.start}, .window = window, .frameDuration = sequence.frameDuration};
    forEachItem(sequence.spine, sequence.start,
                [&](const xmlNode *item, const Rational &offset) { visit(item, offset, place); });
}

void AudioWalk::walkClip(const xmlNode *clip, const Rational &offset, const Rational &origin, const TimeRange &window)
{
    visit(clip, offset, {.times = {.local = origin}, .window = window});
}

const StoryElement &AudioWalk::story(const xmlNode *element)
{
    const auto known = m_stories.find(element);
    if (known != m_stories.end())
        return known->second;
    const bool isLenient = m_unreadable == UnreadableClips::leaveOut;
    return m_stories.emplace(element, isLenient ? readLeniently(element) : StoryElement::read(element, m_resources))
        .first->second;
}

/// An element or, where it cannot be read, as much of it as can: all but its own sound, or its place alone.
StoryElement AudioWalk::readLeniently(const xmlNode *element)
{
    try {
        return StoryElement::read(element, m_resources);
    } catch (const ConversionError &) {
        leaveOut(element);
    }
    try {
        return StoryElement::read(element, m_resources, StoryElement::OwnSound::off);
    } catch (const ConversionError &) {
        return StoryElement::readPlace(element, m_resources);
    }
}

void AudioWalk::leaveOut(const xmlNode *element)
{
    const QString name = StoryElement{.element = element}.name();
    if (m_unread.insert(element).second)
        m_found.skippedUnreadable.append(name.isEmpty() ? u"未命名片段"_s : name);
}

std::optional<Rational> AudioWalk::length(const StoryElement &story)
{
    if (story.kind == Kind::audition)
        return story.content.empty() ? std::nullopt : length(this->story(story.content.front()));
    if (story.duration || !story.resource)
        return story.duration;
    if (Xml::isElement(story.resource, "asset"))
        return m_resources.asset(story.resource).duration;
    return Xml::isElement(story.resource, "media") ? m_resources.compound(story.resource).duration : std::nullopt;
}

Rational AudioWalk::storylineEnd(const StorySequence &sequence)
{
    Rational end;
    forEachItem(sequence.spine, sequence.start, [&](const xmlNode *item, const Rational &offset) {
        end = std::max(end, offset + length(story(item)).value_or(0) - sequence.start);
    });
    return end;
}

/// Whether an element has sound of its own that is not switched off by its role, as far as it and its resource tell.
/// One whose resource is missing might have.
bool AudioWalk::canSound(const StoryElement &story, const Place &place)
{
    if (story.kind != Kind::reference || !story.resource)
        return story.kind != Kind::picture;
    if (Xml::isElement(story.resource, "asset"))
        return m_resources.asset(story.resource).hasSound &&
               (story.roles.isEmpty() || !place.rolesOff.contains(story.roles));
    // An "audio" of an effect is a generated tone, which nobody speaks.
    return !Xml::isElement(story.resource, "effect") || !Xml::isElement(story.element, "audio");
}

/// Calls `visitor` with each item of a storyline and its offset. An item that states none begins where the one before
/// it ends.
template <class Visitor>
void AudioWalk::forEachItem(const xmlNode *spine, const Rational &begin, Visitor &&visitor)
{
    Rational offset = begin;
    const StoryElement *previous = nullptr;
    for (const xmlNode *const item : story(spine).content) {
        const StoryElement &current = story(item);
        if (current.offset)
            offset = *current.offset;
        else if (previous)
            offset = offset + length(*previous).value_or(0);
        visitor(item, offset);
        previous = &current;
    }
}

void AudioWalk::visit(const xmlNode *element, const Rational &offset, const Place &place)
{
    m_check();
    if (++m_visits > mostVisits || place.nesting > deepestNesting)
        throwStructure(element);
    const StoryElement &story = this->story(element);
    if (!story.enabled)
        return;
    if (story.kind == Kind::storyline)
        return visitStoryline(story, offset, place);
    if (story.kind == Kind::audition) {
        Place active = place;
        ++active.nesting;
        if (!story.content.empty())
            visit(story.content.front(), offset, active);
        return;
    }
    const Rational begin = place.times.toPlan(offset);
    bool sounds = false;
    canRead(story, begin, [&] { sounds = !story.muted && !place.muted && canSound(story, place); });
    if (!sounds && story.content.empty() && story.connected.empty())
        return;
    m_found.hasAudioEffects |= sounds && story.hasEffects;
    if (sounds && story.retimed) {
        // A clip that compounds show again and again counts once.
        if (m_retimed.insert(element).second)
            m_found.skippedRetimedAudio.append(story.name());
        if (story.connected.empty())
            return;
    }
    TimeMap own;
    if (!canRead(story, begin, [&] { own = ownTimes(story, offset, place); }))
        return;
    if (sounds && !story.retimed)
        play(story, own, place);
    else if (!story.muted && !story.retimed && (story.kind == Kind::picture || !place.muted))
        visitContent(story, own, place);
    visitConnected(story, own, place);
}

void AudioWalk::visitStoryline(const StoryElement &spine, const Rational &offset, const Place &place)
{
    Place inner = place;
    inner.times = {.plan = place.times.toPlan(offset), .scale = place.scale};
    ++inner.nesting;
    if (spine.frameDuration)
        inner.frameDuration = spine.frameDuration;
    forEachItem(spine.element, 0,
                [&](const xmlNode *item, const Rational &itemOffset) { visit(item, itemOffset, inner); });
}

/// What hangs on an element keeps its own pace, level and length: only where it begins is told by the element.
void AudioWalk::visitConnected(const StoryElement &story, const TimeMap &own, const Place &place)
{
    Place outer = place;
    outer.times = own;
    outer.muted = place.connectedMuted;
    outer.rolesOff = place.connectedRolesOff;
    outer.gain = place.connectedGain;
    ++outer.nesting;
    for (const xmlNode *const child : story.connected)
        visit(child, this->story(child).offset.value_or(0), outer);
}

void AudioWalk::visitContent(const StoryElement &story, const TimeMap &own, const Place &place)
{
    if (story.content.empty())
        return;
    Place inner;
    if (!canRead(story, own.plan, [&] { inner = inside(story, own, place); }))
        return;
    for (const xmlNode *const child : story.content) {
        const StoryElement &content = this->story(child);
        const Rational begin = content.kind == Kind::storyline ? story.contentStart.value_or(0) : Rational(0);
        visit(child, content.offset.value_or(begin), inner);
    }
}

void AudioWalk::play(const StoryElement &story, const TimeMap &own, const Place &place)
{
    if (story.kind == Kind::container)
        return visitContent(story, own, place);
    // What is in a compound clip speaks for itself.
    if (story.resource && Xml::isElement(story.resource, "media"))
        playCompound(story, own, place);
    else
        canRead(story, own.plan, [&] { playAsset(story, own, place); });
    visitContent(story, own, place);
}

/// Whether `read` could place what sounds of a clip; where not, the clip is left out if that was asked for.
bool AudioWalk::canRead(const StoryElement &story, const Rational &begin, const std::function<void()> &read)
{
    try {
        read();
        return true;
    } catch (ConversionError &error) {
        if (m_unreadable == UnreadableClips::leaveOut) {
            leaveOut(story.element);
            return false;
        }
        error.addDetail(u"时间线 %1。"_s.arg(clockTime(begin)));
        throw;
    }
}

void AudioWalk::playAsset(const StoryElement &story, const TimeMap &own, const Place &place)
{
    if (!story.resource)
        throw ConversionError(u"FCP 片段缺少媒体资源，请重新拖入。"_s, at(story.element));
    if (!Xml::isElement(story.resource, "asset"))
        throwStructure(story.element);
    const MediaAsset &asset = m_resources.asset(story.resource);
    const TimeRange sound = soundRange(story, own, place);
    const TimeRange audible = sound.cutTo(place.window);
    if (isTooShort(audible))
        return;
    if (!asset.file)
        throw ConversionError(u"找不到片段原始音视频，请先在 FCP 重新连接媒体。"_s, at(story.element));
    const TimeRange held = assetRange(asset, own);
    // A clip that shows nothing of its file has its times from somewhere else.
    if (sound.cutTo(held).isEmpty())
        throwSourceRange(story.element);
    TimeRange piece = audible.cutTo(held);
    if (isTooShort(piece))
        return;
    // The file is played at its own pace; what that is off by the end must stay below a frame.
    const Rational length = *piece.end - piece.begin;
    const Rational drift = absolute(length / own.scale - length);
    if (drift > place.frameDuration.value_or(0))
        throwSourceRange(story.element);
    // Played at its own pace, a piece may reach past the file's end by what it is off.
    if (asset.duration)
        piece.end = std::min(*piece.end, piece.begin + (asset.start + *asset.duration - own.toLocal(piece.begin)));
    add(asset, piece, own, multiplied(place.gain, story.volume), place.clip);
}

void AudioWalk::playCompound(const StoryElement &story, const TimeMap &own, const Place &place)
{
    StorySequence sequence;
    Place inner;
    const bool isRead = canRead(story, own.plan, [&] {
        if (place.compounds == deepestCompound)
            throw ConversionError(u"复合片段嵌套过深，请先在 FCP 导出音频。"_s, at(story.element));
        sequence = m_resources.compound(story.resource);
        if (!sequence.spine)
            throwStructure(story.element);
        inner = inside(story, own, place);
    });
    if (!isRead)
        return;
    ++inner.compounds;
    inner.frameDuration = sequence.frameDuration;
    inner.clip = 0;
    forEachItem(sequence.spine, sequence.start,
                [&](const xmlNode *item, const Rational &offset) { visit(item, offset, inner); });
}

/// A clip of several parts may hold one for each channel of its file: together they are its sound, as loud as the
/// loudest. A file is played whole.
void AudioWalk::add(const MediaAsset &asset, const TimeRange &piece, const TimeMap &own, double gain, int clip)
{
    if (m_found.segments.size() > mostSegments)
        return;
    const FCPAudioSegment segment{.url = *asset.file,
                                  .fileStart = (own.toLocal(piece.begin) - asset.start).toDouble(),
                                  .offset = piece.begin.toDouble(),
                                  .duration = (*piece.end - piece.begin).toDouble(),
                                  .gain = gain};
    // The parts of a clip are visited one after another.
    for (size_t i = m_clips.size(); clip != 0 && i > 0 && m_clips[i - 1] == clip; --i) {
        FCPAudioSegment &other = m_found.segments[qsizetype(i) - 1];
        if (other.offset != segment.offset || other.fileStart != segment.fileStart ||
            other.duration != segment.duration || other.url != segment.url)
            continue;
        other.gain = std::max(other.gain, gain);
        return;
    }
    m_found.segments.append(segment);
    m_clips.push_back(clip);
}

TimeMap AudioWalk::ownTimes(const StoryElement &story, const Rational &offset, const Place &place)
{
    TimeMap own{.local = story.start, .plan = place.times.toPlan(offset), .scale = place.scale};
    if (!story.sourceRate)
        return own;
    if (!place.frameDuration)
        throwSourceRange(story.element);
    own.scale = place.scale / ConformRate::pace(*story.sourceRate, *place.frameDuration);
    return own;
}

/// Where a clip, or what it contains, sounds on the plan. Never open.
TimeRange AudioWalk::soundRange(const StoryElement &story, const TimeMap &own, const Place &place)
{
    const auto duration = length(story);
    const Rational soundDuration = story.soundDuration.value_or(0);
    if (!duration || *duration <= 0 || soundDuration < 0)
        throw ConversionError(u"片段时长无效。"_s, at(story.element));
    const Rational begin = own.toPlan(story.soundStart.value_or(story.start));
    const Rational planDuration = story.soundDuration ? soundDuration * own.scale : *duration * place.scale;
    return {.begin = begin, .end = begin + planDuration};
}

/// The place of what a clip contains.
AudioWalk::Place AudioWalk::inside(const StoryElement &story, const TimeMap &own, const Place &place)
{
    Place inner = place;
    inner.times = own;
    inner.scale = own.scale;
    inner.window = soundRange(story, own, place).cutTo(place.window);
    inner.gain = multiplied(multiplied(place.gain, story.volume), story.storylineVolume);
    const double outside = story.kind == Kind::picture ? place.connectedGain : place.gain;
    inner.connectedGain = multiplied(multiplied(outside, story.volume), story.connectedVolume);
    if (story.kind == Kind::container && inner.clip == 0)
        inner.clip = ++m_clipCount;
    ++inner.nesting;
    if (story.frameDuration)
        inner.frameDuration = story.frameDuration;
    if (story.kind != Kind::picture) {
        inner.muted = story.storylineMuted;
        inner.connectedMuted = story.connectedMuted;
        inner.rolesOff = place.rolesOff | story.contentRolesOff;
        inner.connectedRolesOff = place.rolesOff | story.connectedRolesOff;
    }
    return inner;
}
