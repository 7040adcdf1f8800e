#include "fcp/StoryElement.h"

#include "core/ConversionError.h"
#include "fcp/AudioComponents.h"
#include "fcp/ClipVolume.h"
#include "fcp/ConformRate.h"
#include "fcp/DocumentTime.h"
#include "fcp/MediaResources.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Kind = StoryElement::Kind;

struct KindName
{
    QByteArrayView name;
    Kind kind;
};

std::optional<Kind> kindOf(const xmlNode *element)
{
    static constexpr std::array kinds{
        KindName{"asset-clip", Kind::Reference}, KindName{"video", Kind::Picture},
        KindName{"audio", Kind::Reference},      KindName{"clip", Kind::Container},
        KindName{"ref-clip", Kind::Reference},   KindName{"sync-clip", Kind::Container},
        KindName{"gap", Kind::Picture},          KindName{"title", Kind::Picture},
        KindName{"caption", Kind::Picture},      KindName{"live-drawing", Kind::Picture},
        KindName{"mc-clip", Kind::Picture},      KindName{"spine", Kind::Storyline},
        KindName{"audition", Kind::Audition},
    };
    const QByteArrayView name = Xml::elementName(element);
    for (const KindName &each : kinds) {
        if (each.name == name)
            return each.kind;
    }
    return std::nullopt;
}

/// Something that plays a resource for a while, in a form that is not among the known ones.
bool isUnknownClip(const xmlNode *element)
{
    return Xml::attribute(element, "ref") && Xml::attribute(element, "duration") &&
           Xml::attribute(element, "enabled") != "0";
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

void readChildren(StoryElement &story)
{
    for (const xmlNode *const child : Xml::Children(story.element)) {
        if (kindOf(child))
            story.children.push_back(child);
        else if (Xml::isElement(child, "timeMap"))
            story.retimed = true;
        else if (Xml::isElement(child, "filter-audio"))
            story.hasEffects |= Xml::attribute(child, "enabled") != "0";
        else if (isUnknownClip(child))
            throw ConversionError(u"此复合或多机位结构暂不能直接读取，请先在 FCP 导出音频。"_s);
    }
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

void readVolume(StoryElement &story, const AudioComponents &components)
{
    const Rational begin = story.soundStart.value_or(story.start);
    const auto length = story.soundDuration ? story.soundDuration : story.duration;
    const TimeRange sound{.begin = begin, .end = length ? std::optional(begin + *length) : std::nullopt};
    story.volume = ClipVolume::product(story.element, sound) * components.volume(sound);
}

} // namespace

StoryElement StoryElement::read(const xmlNode *element, const MediaResources &resources)
{
    StoryElement story{
        .element = element, .kind = kindOf(element).value_or(Kind::Picture), .connected = isConnected(element)};
    if (Xml::attribute(element, "enabled") == "0") {
        story.enabled = false;
        story.offset = lenientTime(element, "offset");
        story.duration = lenientTime(element, "duration");
        return story;
    }
    story.muted = Xml::attribute(element, "srcEnable") == "video";
    if (!story.muted && Xml::isElement(element, "mc-clip"))
        throw ConversionError(u"多机位片段请先在 FCP 导出音频，再生成字幕。"_s);
    readChildren(story);
    readTimes(story);
    story.sourceRate = ConformRate::sourceRate(element);
    story.frameDuration = resources.frameDuration(element);
    story.resource = resources.find(element, "ref");
    const AudioComponents components(element);
    story.muted |= components.areMuted();
    story.storylineMuted = components.isSourceMuted("storyline");
    story.connectedMuted = components.isSourceMuted("connected");
    story.hasEffects |= components.haveEffects();
    readVolume(story, components);
    return story;
}

bool StoryElement::isStory(const xmlNode *element)
{
    return kindOf(element).has_value();
}

QString StoryElement::name() const
{
    return QString::fromUtf8(Xml::attribute(element, "name").value_or(QByteArray()));
}
