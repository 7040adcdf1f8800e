#include "fcp/audio/ClipSelection.h"

#include "core/ConversionError.h"
#include "fcp/audio/AudioWalk.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Span
{
    Rational begin;
    Rational end;
};

/// Browser clips carry no offsets, or all the same one: they tell nothing about a timeline.
[[noreturn]] void throwUnplaced()
{
    throw ConversionError(u"请一次拖入一个项目或片段，以保持音轨时间对应。"_s);
}

bool overlap(std::vector<Span> spans)
{
    static const Rational tolerance(1, 10'000); // seconds
    std::ranges::sort(spans, {}, &Span::begin);
    const auto clash = [](const Span &a, const Span &b) { return b.begin + tolerance < a.end; };
    return std::ranges::adjacent_find(spans, clash) != spans.end();
}

} // namespace

ClipSelection ClipSelection::lay(const std::vector<const xmlNode *> &elements, AudioWalk &walk)
{
    ClipSelection selection;
    std::vector<Span> storyline;
    std::optional<Rational> end;
    for (const xmlNode *const element : elements) {
        const StoryElement &story = walk.story(element);
        if (elements.size() > 1 && !story.offset)
            throwUnplaced();
        const Rational offset = story.offset.value_or(0);
        const auto length = walk.length(story);
        if (!length || *length <= 0)
            throw ConversionError(u"片段时长无效。"_s, u"见%1。"_s.arg(Xml::place(element)));
        selection.origin = selection.clips.empty() ? offset : std::min(selection.origin, offset);
        end = std::max(end.value_or(offset), offset + *length);
        selection.clips.push_back({.element = element, .offset = offset});
        if (!story.isConnected)
            storyline.push_back({.begin = offset, .end = offset + *length});
    }
    if (overlap(std::move(storyline)))
        throwUnplaced();
    selection.duration = *end - selection.origin;
    return selection;
}
