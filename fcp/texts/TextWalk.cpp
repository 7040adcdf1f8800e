#include "fcp/texts/TextWalk.h"

#include "core/ConversionError.h"
#include "fcp/timeline/ConformRate.h"
#include "fcp/timeline/SpeedMap.h"

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView unreadableTime = u"时间无法读取";

enum class Kind
{
    other,     ///< Holds and shows no text.
    text,      ///< "title", "caption".
    clip,      ///< Shows a file, or what it contains.
    compound,  ///< "ref-clip".
    multicam,  ///< "mc-clip".
    storyline, ///< "spine".
    audition
};

Kind kindOf(const xmlNode *element)
{
    static constexpr std::array<std::pair<QByteArrayView, Kind>, 14> kinds{{
        {"title", Kind::text},
        {"caption", Kind::text},
        {"asset-clip", Kind::clip},
        {"video", Kind::clip},
        {"audio", Kind::clip},
        {"clip", Kind::clip},
        {"gap", Kind::clip},
        {"sync-clip", Kind::clip},
        {"live-drawing", Kind::clip},
        {"ref-clip", Kind::compound},
        {"mc-clip", Kind::multicam},
        {"spine", Kind::storyline},
        {"audition", Kind::audition},
        {"mc-angle", Kind::other},
    }};
    const QByteArrayView name = Xml::elementName(element);
    for (const auto &[each, kind] : kinds) {
        if (each == name)
            return kind;
    }
    return Kind::other;
}

qint64 laneOf(const xmlNode *element)
{
    return Xml::integerAttribute(element, "lane").value_or(0);
}

std::optional<Rational> readTime(const xmlNode *element, QByteArrayView attribute, Rational absent)
{
    const auto text = Xml::attributeView(element, attribute);
    return text ? Rational::parseTime(*text) : std::optional(absent);
}

/// The first reason is the one that is told.
void hide(QString &obstacle, QStringView reason)
{
    if (obstacle.isEmpty())
        obstacle = reason.toString();
}

} // namespace

TextWalk::TextWalk(MediaResources &resources, const Check &check)
    : m_resources(resources)
    , m_check(check)
{}

bool TextWalk::passesOver(const xmlNode *parent, QByteArrayView name)
{
    if (name != "param" && name != "text-style-def" && !name.startsWith("adjust-") && !name.startsWith("filter-"))
        return false;
    // Elsewhere an element may count whatever its name: as the pick of an audition, or as a resource.
    const Kind kind = kindOf(parent);
    return kind == Kind::text || kind == Kind::clip || kind == Kind::compound || kind == Kind::multicam;
}

void TextWalk::walkSequence(const StorySequence &sequence)
{
    Place place{.times = {.local = sequence.start}, .frameDuration = sequence.frameDuration};
    m_frameDuration = sequence.frameDuration;
    // Some writers state a length of nothing for what is full.
    if (sequence.duration && *sequence.duration > 0)
        place.window.end = sequence.duration;
    if (sequence.spine)
        visitItems(sequence.spine, sequence.start, place);
}

void TextWalk::walkClip(const xmlNode *clip, const Rational &offset, const Rational &origin)
{
    const xmlNode *const resource = m_resources.find(clip, "ref");
    m_frameDuration = m_resources.frameDuration(clip);
    if (!m_frameDuration && resource)
        m_frameDuration = m_resources.frameDuration(resource);
    const xmlNode *const sequence = resource ? Xml::child(resource, "sequence") : nullptr;
    if (!m_frameDuration && sequence)
        m_frameDuration = m_resources.frameDuration(sequence);
    visit(clip, offset, {.times = {.local = origin}, .frameDuration = m_frameDuration});
}

std::optional<Rational> TextWalk::length(const xmlNode *element)
{
    if (kindOf(element) == Kind::audition) {
        const xmlNode *const picked = Xml::firstElement(element->children);
        return picked ? length(picked) : std::nullopt;
    }
    if (const auto text = Xml::attributeView(element, "duration"))
        return Rational::parseTime(*text);
    const xmlNode *const resource = m_resources.find(element, "ref");
    if (!resource)
        return std::nullopt;
    try {
        if (Xml::isElement(resource, "asset"))
            return m_resources.asset(resource).duration;
        return Xml::isElement(resource, "media") ? m_resources.compound(resource).duration : std::nullopt;
    } catch (const ConversionError &) {
        return std::nullopt;
    }
}

/// Visits each item of a storyline. One that states no offset begins where the one before it ends.
void TextWalk::visitItems(const xmlNode *parent, const Rational &begin, const Place &place)
{
    Rational offset = begin;
    bool known = true;
    const xmlNode *previous = nullptr;
    for (const xmlNode *const item : Xml::Children(parent)) {
        if (kindOf(item) == Kind::other)
            continue;
        Place here = place;
        if (const auto text = Xml::attributeView(item, "offset")) {
            const auto stated = Rational::parseTime(*text);
            known = stated.has_value();
            offset = stated.value_or(0);
        } else if (previous) {
            const auto passed = length(previous);
            known = known && passed;
            offset = offset + passed.value_or(0);
        }
        if (!known)
            hide(here.obstacle, unreadableTime);
        visit(item, offset, std::move(here));
        previous = item;
    }
}

void TextWalk::visit(const xmlNode *element, const Rational &offset, Place place)
{
    m_check();
    if (++m_visits > mostVisits || ++place.nesting > deepestNesting)
        throw ConversionError(u"项目中的复合片段展开后过多，无法读取其中的字幕。"_s);
    const Kind kind = kindOf(element);
    if (Xml::attributeView(element, "enabled") == "0")
        hide(place.obstacle, kind == Kind::text ? u"已停用" : u"所在片段已停用");
    if (const qint64 lane = laneOf(element))
        place.lane = lane;
    if (kind == Kind::audition)
        return visitAudition(element, offset, place);
    try {
        if (kind == Kind::storyline) {
            place.times = {.plan = place.times.toPlan(offset), .scale = place.scale};
            if (const auto frames = m_resources.frameDuration(element))
                place.frameDuration = frames;
            return visitItems(element, 0, place);
        }
        const TimeMap own = ownTimes(element, offset, place);
        if (kind == Kind::text)
            add(element, offset, own, place);
        else
            visitContent(element, own, place);
        visitConnected(element, own, place);
    } catch (const RationalOverflow &) {
        hide(place.obstacle, unreadableTime);
        if (kind == Kind::text)
            m_found.push_back({.element = element, .lane = place.lane, .obstacle = place.obstacle});
    }
}

/// The first choice is the one in use. It stands where the audition does.
void TextWalk::visitAudition(const xmlNode *audition, const Rational &offset, const Place &place)
{
    Place here = place;
    for (const xmlNode *const choice : Xml::Children(audition)) {
        if (kindOf(choice) == Kind::other)
            continue;
        visit(choice, offset, here);
        hide(here.obstacle, u"是试演中未选用的备选");
    }
}

/// What hangs on an element keeps its own pace and length: only where it begins is told by the element.
void TextWalk::visitConnected(const xmlNode *element, const TimeMap &own, const Place &place)
{
    Place outer = place;
    outer.times = own;
    for (const xmlNode *const child : Xml::Children(element)) {
        const Kind kind = kindOf(child);
        if (kind == Kind::other || laneOf(child) == 0)
            continue;
        const auto offset = readTime(child, "offset", 0);
        Place here = outer;
        if (!offset)
            hide(here.obstacle, unreadableTime);
        visit(child, offset.value_or(0), std::move(here));
    }
}

void TextWalk::visitContent(const xmlNode *element, const TimeMap &own, const Place &place)
{
    const Kind kind = kindOf(element);
    Place content = inside(element, own, place);
    if (Xml::attributeView(element, "srcEnable") == "audio")
        hide(content.obstacle, u"所在片段的画面已关闭");
    if (kind == Kind::compound)
        visitCompound(element, content);
    else if (kind == Kind::multicam)
        visitAngles(element, content);
    else
        visitChildContent(element, content);
}

void TextWalk::visitChildContent(const xmlNode *element, const Place &inside)
{
    for (const xmlNode *const child : Xml::Children(element)) {
        const Kind kind = kindOf(child);
        if (kind == Kind::other || laneOf(child) != 0)
            continue;
        const auto begin =
            kind == Kind::storyline ? readTime(element, "tcStart", 0) : std::optional<Rational>(Rational(0));
        const auto offset = begin ? readTime(child, "offset", *begin) : std::nullopt;
        Place here = inside;
        if (!offset)
            hide(here.obstacle, unreadableTime);
        visit(child, offset.value_or(0), std::move(here));
    }
}

void TextWalk::visitCompound(const xmlNode *clip, Place inside)
{
    const xmlNode *const media = m_resources.find(clip, "ref");
    if (!media || !Xml::isElement(media, "media"))
        return;
    try {
        const StorySequence &sequence = m_resources.compound(media);
        if (!sequence.spine)
            return;
        inside.frameDuration = sequence.frameDuration;
        visitItems(sequence.spine, sequence.start, inside);
    } catch (const ConversionError &) {
        // The sequence's own beginning is unreadable, but what stands in it is told of.
        const xmlNode *const sequence = Xml::child(media, "sequence");
        hide(inside.obstacle, unreadableTime);
        visitItems(Xml::child(sequence, "spine"), 0, inside);
    }
}

/// Of a multicam clip one angle is seen, the one whose picture a "mc-source" switches on.
void TextWalk::visitAngles(const xmlNode *clip, Place inside)
{
    const xmlNode *const media = m_resources.find(clip, "ref");
    const xmlNode *const multicam = media ? Xml::child(media, "multicam") : nullptr;
    if (!multicam)
        return;
    std::optional<QByteArray> seen;
    for (const xmlNode *const source : Xml::Children(clip)) {
        if (!Xml::isElement(source, "mc-source"))
            continue;
        const QByteArray enabled = Xml::attribute(source, "srcEnable").value_or("all");
        if (!seen && (enabled == "all" || enabled == "video"))
            seen = Xml::attribute(source, "angleID");
    }
    const auto begin = readTime(multicam, "tcStart", 0);
    if (!begin)
        hide(inside.obstacle, unreadableTime);
    if (const auto frames = m_resources.frameDuration(multicam))
        inside.frameDuration = frames;
    for (const xmlNode *const angle : Xml::Children(multicam)) {
        if (!Xml::isElement(angle, "mc-angle"))
            continue;
        Place here = inside;
        if (!seen || Xml::attribute(angle, "angleID") != seen)
            hide(here.obstacle, u"在未选用的机位上");
        visitItems(angle, begin.value_or(0), here);
    }
}

void TextWalk::add(const xmlNode *element, const Rational &offset, const TimeMap &own, const Place &place)
{
    Found found{.element = element, .lane = place.lane, .obstacle = place.obstacle};
    const auto duration = readTime(element, "duration", 0);
    if (!duration)
        hide(found.obstacle, unreadableTime);
    else if (*duration <= 0)
        hide(found.obstacle, u"时长为零");
    if (found.obstacle.isEmpty()) {
        const TimeRange whole{.begin = own.plan, .end = own.plan + *duration * place.scale};
        found.parentTimes = place.times;
        found.scale = place.scale;
        found.offset = offset;
        found.shown = whole.cutTo(place.window);
        found.cut = found.shown.begin != whole.begin || found.shown.end != whole.end;
        if (found.shown.isEmpty())
            hide(found.obstacle, u"不在看得见的时间里");
    }
    m_found.push_back(std::move(found));
}

/// Where the element's own time lies. What keeps it from being known goes to the place's obstacle.
TimeMap TextWalk::ownTimes(const xmlNode *element, const Rational &offset, Place &place)
{
    const auto start = readTime(element, "start", 0);
    if (!start)
        hide(place.obstacle, unreadableTime);
    TimeMap own{.local = start.value_or(0), .plan = place.times.toPlan(offset), .scale = place.scale};
    const xmlNode *const conform = Xml::child(element, "conform-rate");
    const auto source = conform ? ConformRate::sourceRate(conform) : std::nullopt;
    if (!source)
        return own;
    if (place.frameDuration)
        own.scale = place.scale / ConformRate::pace(*source, *place.frameDuration);
    else
        hide(place.obstacle, u"所在时间线的帧率不明");
    return own;
}

/// The place of what a clip contains.
TextWalk::Place TextWalk::inside(const xmlNode *element, const TimeMap &own, const Place &place)
{
    Place inner = place;
    inner.times = own;
    inner.scale = own.scale;
    inner.lane = 0;
    const auto duration = length(element);
    TimeRange whole{.begin = own.plan};
    if (duration)
        whole.end = own.plan + *duration * place.scale;
    inner.window = whole.cutTo(place.window);
    if (const xmlNode *const timeMap = Xml::child(element, "timeMap")) {
        const auto speed = SpeedMap::read(timeMap);
        // A conformed source has its pace from both, and documents do not tell how they work together.
        if (speed && own.scale == place.scale) {
            inner.times = {.local = speed->content, .plan = own.toPlan(speed->time), .scale = own.scale / speed->speed};
            inner.scale = inner.times.scale;
        } else {
            hide(inner.obstacle, u"所在片段变速，位置不明");
        }
    }
    if (const auto frames = m_resources.frameDuration(element))
        inner.frameDuration = frames;
    return inner;
}
