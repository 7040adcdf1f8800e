#pragma once

#include <QUrl>

/// A piece of a media file and where it sounds. Times are seconds, exact to the last bit of a double.
struct FCPAudioSegment
{
    QUrl url;             ///< A file URL. Whether the file exists is for the renderer to find out.
    double fileStart = 0; ///< Where in the file the piece begins, not negative.
    double offset = 0;    ///< Where on the plan's timeline it begins, not negative.
    double duration = 0;  ///< Above 0.
    double gain = 1;      ///< Linear volume factor; 1 leaves the sound as it is.

    friend bool operator==(const FCPAudioSegment &, const FCPAudioSegment &) = default;
};
