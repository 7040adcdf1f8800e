#pragma once

/// What a person asks of who plays the sound of the cues, whether by a menu, a button or a key.
enum class PlayCommand
{
    playOrStop,
    playCue,    ///< The current cue.
    playFirst,  ///< Its first half second.
    playLast,   ///< Its last half second.
    goBack,     ///< By a second.
    stop,       ///< Where nothing plays: back to the usual speed.
    playFaster, ///< Where nothing plays: begin.
    loop,       ///< Play stretches again and again, or no longer.
    review,     ///< Play each cue that becomes the current one, or no longer.
    startHere,  ///< The current cue's start to the playhead.
    endHere,    ///< Its end.
    cutHere
};
