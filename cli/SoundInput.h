#pragma once

#include "cli/ProjectAudio.h"
#include "core/sound/Waveform.h"

/// The waveform of what a command was given: a recording, or a project's timeline.
struct SoundInput
{
    std::string input;
    ProjectAudio audio; ///< Where it is a project.

    void add(CLI::App &command); ///< MEDIA|PROJECT and the switches of a project's sound

    /// Reads it, and tells how far that is and what there is to know of it. What was read before and has not
    /// changed since is known. @throws ConversionError, PlatformError, Cancelled
    Waveform waveform(const Arguments::Output &output) const;
};
