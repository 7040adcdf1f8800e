#pragma once

#include "fcp/Rational.h"

#include <libxml/tree.h>

#include <vector>

class AudioWalk;

/// Clips that stand in no project, laid out as a timeline of their own that begins with the first of them.
struct ClipSelection
{
    struct Clip
    {
        const xmlNode *element;
        Rational offset; ///< Seconds of the time in which the document counts offsets.
    };

    std::vector<Clip> clips; ///< In document order.
    Rational origin;         ///< The earliest offset: the timeline's 0.
    Rational duration;       ///< Seconds to the end of the last clip, above 0.

    /// Lays out `elements`, of which there is one at least. Several keep the distances that their offsets state.
    /// @throws ConversionError "片段时长无效。"; "请一次拖入一个项目或片段，以保持音轨时间对应。" when several clips do
    /// not say where they lie, or lie on top of each other; as AudioWalk does.
    static ClipSelection lay(const std::vector<const xmlNode *> &elements, AudioWalk &walk);
};
