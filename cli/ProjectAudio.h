#pragma once

#include "cli/Arguments.h"
#include "fcp/audio/FCPAudioPlan.h"

/// The sound of a project's timeline, for the commands that work with it.
struct ProjectAudio
{
    bool withoutMissing = false; ///< What sounds of files that are not there is left out.

    bool skipUnreadable = false; ///< So are clips whose sound cannot be placed.

    void addSwitches(CLI::App &command); ///< --without-missing, --skip-unreadable

    /// The plan of a project or of selected clips. Standard input is data as a drag delivers it.
    /// @throws ConversionError, PlatformError, Cancelled
    FCPAudioPlan plan(const std::string &input) const;

    /// Says on standard error what the plan leaves out, unless nobody wants to hear it.
    static void tellNotices(const FCPAudioPlan &plan, const Arguments::Output &output);

    /// Whether an input is a project by its name, not a recording.
    static bool isProject(const std::string &input);
};
