#include "fcp/audio/DraggedTimeline.h"

#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/timeline/StoryElement.h"

using namespace Qt::StringLiterals;

namespace {

using Clips = std::vector<const xmlNode *>;

Clips clipsIn(const xmlNode *parent)
{
    Clips clips;
    for (const xmlNode *const child : Xml::Children(parent)) {
        if (StoryElement::isStory(child) && !Xml::isElement(child, "spine"))
            clips.push_back(child);
    }
    return clips;
}

Clips clipsInEvents(const xmlNode *root)
{
    Clips clips;
    const auto addEvents = [&](const xmlNode *parent) {
        for (const xmlNode *const event : Xml::Children(parent)) {
            if (!Xml::isElement(event, "event"))
                continue;
            const Clips inside = clipsIn(event);
            clips.insert(clips.end(), inside.begin(), inside.end());
        }
    };
    addEvents(root);
    for (const xmlNode *const library : Xml::Children(root)) {
        if (Xml::isElement(library, "library"))
            addEvents(library);
    }
    return clips;
}

[[noreturn]] void throwNothing()
{
    throw ConversionError(u"没有找到可导入的 FCP 时间线内容。"_s);
}

} // namespace

DraggedTimeline DraggedTimeline::find(const XmlDocument &document)
{
    const xmlNode *const root = document.root();
    if (!Xml::isElement(root, "fcpxml"))
        throw ConversionError(u"请拖入 FCP 时间线片段或项目。"_s);
    const std::vector<xmlNode *> projects = FCPXML::projects(document);
    Clips clips = clipsIn(root);
    if (projects.size() > 1 || (!projects.empty() && !clips.empty()))
        throw ConversionError(u"请一次拖入一个 FCP 项目，或一组选中的片段。"_s);
    if (projects.empty()) {
        // An exported event holds its clips one level down. Beside a project they are only its material.
        if (clips.empty())
            clips = clipsInEvents(root);
        if (clips.empty())
            throwNothing();
        return {.clips = std::move(clips)};
    }
    const xmlNode *const sequence = Xml::child(projects.front(), "sequence");
    if (!sequence || !Xml::child(sequence, "spine"))
        throwNothing();
    return {.project = projects.front(), .sequence = sequence};
}
