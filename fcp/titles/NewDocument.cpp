#include "fcp/titles/NewDocument.h"

#include "fcp/titles/TitleConnection.h"
#include "fcp/titles/TitleEffects.h"

namespace NewDocument {

namespace {

// The two documents share their head and their sequence. What depends on the options is filled in; blanks stand as
// written.

constexpr QByteArrayView head = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE fcpxml>
<fcpxml version="1.10">
    <resources>
        <format id="r1" frameDuration="" width="" height="" colorSpace="1-1-1 (Rec. 709)"/>
)xml";

constexpr QByteArrayView sequence =
    R"xml(            <sequence format="r1" duration="" tcStart="0s" tcFormat="NDF" audioLayout="stereo" audioRate="48k">
                <spine>
                    <gap name="字幕底层" offset="0s" start="0s" duration=""/>
                </spine>
            </sequence>
)xml";

/// Blanks before a title, which stands inside the gap.
constexpr int titleIndentation = 24;

QByteArray projectFrame()
{
    return head.toByteArray() + R"xml(    </resources>
    <event name="Lintora">
        <project name="">
)xml" + sequence.toByteArray() +
           R"xml(        </project>
    </event>
</fcpxml>)xml";
}

QByteArray clipFrame()
{
    return head.toByteArray() + R"xml(        <media id="lintoraMedia" name="">
)xml" + sequence.toByteArray() +
           R"xml(        </media>
    </resources>
    <ref-clip name="" ref="lintoraMedia" start="0s" duration=""/>
</fcpxml>)xml";
}

/// Fills in the options and the length, and finds the storyline.
const xmlNode *complete(const XmlDocument &tree, const Options &options, qint64 frames)
{
    const QByteArray length = options.rate.time(frames);
    const xmlNode *spine = nullptr;
    for (xmlNode *element = tree.root(); element; element = Xml::nextElement(element, tree.root())) {
        const QByteArrayView name = Xml::elementName(element);
        if (name == "format") {
            Xml::setAttribute(element, "frameDuration", options.rate.time(1));
            Xml::setAttribute(element, "width", QByteArray::number(options.width));
            Xml::setAttribute(element, "height", QByteArray::number(options.height));
        } else if (name == "project" || name == "media" || name == "ref-clip") {
            Xml::setAttribute(element, "name", options.name.toUtf8());
        } else if (name == "spine") {
            spine = element;
        }
        if (name == "sequence" || name == "gap" || name == "ref-clip")
            Xml::setAttribute(element, "duration", length);
    }
    return spine;
}

TitleDocument build(const QByteArray &frame, std::vector<PlacedTrack> tracks, const Check &check)
{
    XmlDocument tree = XmlDocument::parse(frame, {});
    const xmlNode *const spine = complete(tree, tracks.front().track.options, PlacedTracks::last(tracks).endFrame);
    const Identifiers ids(tree);
    xmlNode *const resources = Xml::child(tree.root(), "resources");
    auto effectIDs = TitleEffects::add(resources, Xml::child(resources, "format"), tracks, ids);
    return TitleConnection::connect({.tree = std::move(tree),
                                     .spine = spine,
                                     .projectStart = 0,
                                     .styles = ids.counter("substyle"),
                                     .effectIDs = std::move(effectIDs),
                                     .indentation = titleIndentation},
                                    std::move(tracks), check);
}

} // namespace

TitleDocument project(const std::vector<TitleTrack> &tracks, const Check &check)
{
    return build(projectFrame(), PlacedTracks::place(tracks, check), check);
}

TitleDocument clip(const std::vector<TitleTrack> &tracks, const Check &check)
{
    return build(clipFrame(), PlacedTracks::place(tracks, check), check);
}

} // namespace NewDocument
