#include "fcp/timeline/StoryElement.h"

#include "core/ConversionError.h"
#include "fcp/audio/AudioComponents.h"
#include "fcp/audio/ClipVolume.h"
#include "fcp/timeline/ConformRate.h"
#include "fcp/timeline/DocumentTime.h"
#include "fcp/timeline/MediaResources.h"

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Kind = StoryElement::Kind;

struct KindName
{
    QByteArrayView name;
    Kind kind;
};

std::optional<Kind> kindOf(QByteArrayView name)
{
    static constexpr std::array kinds{
        KindName{"asset-clip", Kind::reference}, KindName{"video", Kind::picture},
        KindName{"audio", Kind::reference},      KindName{"clip", Kind::container},
        KindName{"ref-clip", Kind::reference},   KindName{"sync-clip", Kind::container},
        KindName{"gap", Kind::picture},          KindName{"title", Kind::picture},
        KindName{"caption", Kind::picture},      KindName{"live-drawing", Kind::picture},
        KindName{"mc-clip", Kind::picture},      KindName{"spine", Kind::storyline},
        KindName{"audition", Kind::audition},
    };
    for (const KindName &each : kinds) {
        if (each.name == name)
            return each.kind;
    }
    return std::nullopt;
}

/// Something that plays a resource for a while, in a form that is not among the known ones.
bool isUnknownClip(const xmlNode *element, QByteArrayView name)
{
    return name.endsWith("clip") && Xml::attribute(element, "enabled") != "0";
}

/// Whether a child of a clip tells how the clip sounds. Projects hold a hundred times as many that do not.
bool isAdjustment(QByteArrayView name)
{
    static constexpr std::array<QByteArrayView, 7> names{"adjust-volume", "conform-rate",         "timeMap",
                                                         "filter-audio",  "audio-channel-source", "audio-role-source",
                                                         "sync-source"};
    return std::ranges::find(names, name) != names.end();
}

/// A title, say, on which nothing hangs that could sound.
bool isSilentLeaf(const xmlNode *element, Kind kind)
{
    if (kind != Kind::picture || Xml::isElement(element, "mc-clip"))
        return false;
    const auto canSound = [](const xmlNode *child) {
        const QByteArrayView name = Xml::elementName(child);
        return kindOf(name) || isUnknownClip(child, name);
    };
    const xmlNode *child = Xml::firstElement(element->children);
    while (child && !canSound(child))
        child = Xml::firstElement(child->next);
    return !child;
}

bool isConnected(const xmlNode *element)
{
    const auto lane = Xml::attribute(element, "lane");
    return lane && lane->toLongLong() != 0;
}

std::optional<Rational> lenientTime(const xmlNode *element, QByteArrayView attribute)
{
    const auto text = Xml::attribute(element, attribute);
    return text ? Rational::parseTime(*text) : std::nullopt;
}

/// Fills the children that can carry sound, and returns those that adjust the element's own.
std::vector<const xmlNode *> readChildren(StoryElement &story)
{
    // In a storyline and in an audition even a silent one says where, or what, its neighbours are.
    const bool isOrdered = story.kind == Kind::storyline || story.kind == Kind::audition;
    std::vector<const xmlNode *> adjustments;
    for (const xmlNode *const child : Xml::Children(story.element)) {
        const QByteArrayView name = Xml::elementName(child);
        if (const auto kind = kindOf(name)) {
            if (isOrdered)
                story.content.push_back(child);
            else if (!isSilentLeaf(child, *kind))
                (isConnected(child) ? story.connected : story.content).push_back(child);
        } else if (isAdjustment(name)) {
            adjustments.push_back(child);
        } else if (isUnknownClip(child, name)) {
            throw ConversionError(u"此复合或多机位结构暂不能直接读取，请先在 FCP 导出音频。"_s,
                                  u"见%1。"_s.arg(Xml::place(child)));
        }
    }
    return adjustments;
}

void readTimes(StoryElement &story)
{
    story.offset = DocumentTime::read(story.element, "offset");
    story.start = DocumentTime::read(story.element, "start").value_or(0);
    story.duration = DocumentTime::read(story.element, "duration");
    story.soundStart = DocumentTime::read(story.element, "audioStart");
    story.soundDuration = DocumentTime::read(story.element, "audioDuration");
    story.contentStart = DocumentTime::read(story.element, "tcStart");
}

/// A "sync-source" lists the components of the storyline of a synchronized clip, or of what is connected to it.
void readSource(StoryElement &story, const xmlNode *source, const TimeRange &sound)
{
    const AudioComponents components(source);
    const QSet<QByteArray> off = components.rolesOff();
    const bool muted = components.areMuted();
    story.hasEffects |= components.haveEffects();
    const auto id = Xml::attribute(source, "sourceID");
    story.storylineMuted |= muted && id == "storyline";
    story.connectedMuted |= muted && id == "connected";
    if (id == "storyline") {
        story.storylineVolume = components.volume(sound);
        story.contentRolesOff |= off;
    } else if (id == "connected") {
        story.connectedVolume = components.volume(sound);
        story.connectedRolesOff |= off;
    }
}

QSet<QByteArray> statedRole(const xmlNode *element)
{
    const auto role = Xml::attribute(element, Xml::isElement(element, "audio") ? "role" : "audioRole");
    return role ? QSet<QByteArray>{AudioComponents::full(*role)} : QSet<QByteArray>();
}

void readAdjustments(StoryElement &story, const std::vector<const xmlNode *> &adjustments)
{
    const Rational begin = story.soundStart.value_or(story.start);
    const auto length = story.soundDuration ? story.soundDuration : story.duration;
    const TimeRange sound{.begin = begin, .end = length ? std::optional(begin + *length) : std::nullopt};
    for (const xmlNode *const each : adjustments) {
        if (Xml::isElement(each, "timeMap"))
            story.retimed = true;
        else if (Xml::isElement(each, "filter-audio"))
            story.hasEffects |= Xml::attribute(each, "enabled") != "0";
        else if (Xml::isElement(each, "conform-rate"))
            story.sourceRate = ConformRate::sourceRate(each);
        else if (Xml::isElement(each, "sync-source"))
            readSource(story, each, sound);
    }
    const AudioComponents components(adjustments);
    story.muted |= components.areMuted();
    story.roles = components.rolesOn().isEmpty() ? statedRole(story.element) : components.rolesOn();
    story.contentRolesOff |= components.rolesOff();
    story.connectedRolesOff |= components.rolesOff();
    story.hasEffects |= components.haveEffects();
    story.volume = std::min(ClipVolume::product(adjustments, sound) * components.volume(sound),
                            std::numeric_limits<double>::max());
}

} // namespace

StoryElement StoryElement::readPlace(const xmlNode *element, const MediaResources &resources)
{
    return {.element = element,
            .kind = kindOf(Xml::elementName(element)).value_or(Kind::picture),
            .enabled = false,
            .isConnected = ::isConnected(element),
            .offset = lenientTime(element, "offset"),
            .duration = lenientTime(element, "duration"),
            // Where no duration is stated, what follows it begins after the asset's.
            .resource = resources.find(element, "ref")};
}

StoryElement StoryElement::read(const xmlNode *element, const MediaResources &resources, OwnSound sound)
{
    if (Xml::attribute(element, "enabled") == "0")
        return readPlace(element, resources);
    StoryElement story{.element = element,
                       .kind = kindOf(Xml::elementName(element)).value_or(Kind::picture),
                       .isConnected = ::isConnected(element)};
    story.muted = sound == OwnSound::off || Xml::attribute(element, "srcEnable") == "video";
    if (!story.muted && Xml::isElement(element, "mc-clip"))
        throw ConversionError(u"多机位片段请先在 FCP 导出音频，再生成字幕。"_s, u"见%1。"_s.arg(Xml::place(element)));
    const auto adjustments = readChildren(story);
    readTimes(story);
    story.frameDuration = resources.frameDuration(element);
    story.resource = resources.find(element, "ref");
    readAdjustments(story, adjustments);
    return story;
}

bool StoryElement::isStory(const xmlNode *element)
{
    return kindOf(Xml::elementName(element)).has_value();
}

QString StoryElement::name() const
{
    return QString::fromUtf8(Xml::attribute(element, "name").value_or(QByteArray()));
}
