#pragma once

/// What becomes of a plan when the sound of a clip cannot be placed.
enum class UnreadableClips
{
    refuse,   ///< It is refused; the detail names the clip.
    leaveOut, ///< The rest is planned without the clip, which is named in the plan.
};
