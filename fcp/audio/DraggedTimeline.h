#pragma once

#include "fcp/xml/XmlDocument.h"

#include <vector>

/// What a dragged document asks to be planned: one project, or the clips of a selection.
struct DraggedTimeline
{
    const xmlNode *project = nullptr;        ///< Null for a selection.
    const xmlNode *sequence = nullptr;       ///< Of the project. It has a storyline.
    std::vector<const xmlNode *> clips = {}; ///< Of a selection, in document order; not empty then.

    /// @throws ConversionError when it is no document of Final Cut Pro, when it asks for too much, or for nothing.
    static DraggedTimeline find(const XmlDocument &document);
};
