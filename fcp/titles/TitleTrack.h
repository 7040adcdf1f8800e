#pragma once

#include "core/Subtitle.h"
#include "fcp/Options.h"
#include "fcp/texts/CaptionRole.h"
#include "fcp/titles/TitleTemplate.h"

#include <optional>

/// Cues, and what they are to become in a document.
struct TitleTrack
{
    QList<Subtitle> cues;
    Options options = {}; ///< All tracks of one document have one frame rate; size and name are those of the first.
    std::optional<CaptionRole> captions = std::nullopt; ///< Native captions of this role instead of titles.
    std::optional<TitleTemplate> look = std::nullopt;   ///< In the place of Basic Title and the options' style.
};
