#pragma once

#include "core/Check.h"
#include "fcp/titles/TitleDocument.h"

/// Title documents that stand on no project of the user's.
namespace NewDocument {

inline constexpr int minorVersion = 10; ///< Of its documents, 1.10.

/// One event with one project, whose storyline is a gap that carries the titles. @throws ConversionError
TitleDocument project(const std::vector<TitleTrack> &tracks, const Check &check = {});

/// The same sequence as a media resource "lintoraMedia" with a clip that refers to it. @throws ConversionError
TitleDocument clip(const std::vector<TitleTrack> &tracks, const Check &check = {});

} // namespace NewDocument
