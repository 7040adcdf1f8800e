#pragma once

#include "fcp/audio/FCPAudioPlan.h"

/// Files of a plan that are not where the project says.
namespace MissingMedia {

/// Their paths, each once, in the order in which they sound.
QStringList find(const FCPAudioPlan &plan);

/// @throws ConversionError when there are some, with how many and the first as the detail
void refuse(const FCPAudioPlan &plan);

/// The plan without what would sound of them. Its length stays.
/// @throws NothingAudible when nothing is left
FCPAudioPlan leaveOut(FCPAudioPlan plan);

} // namespace MissingMedia
