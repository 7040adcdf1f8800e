#pragma once

#include "fcp/FrameRate.h"
#include "fcp/xml/XmlDocument.h"

#include <vector>

/// The clips of a primary storyline as places where titles can be connected. Gaps count as clips, transitions do not,
/// and an audition is the clip that it has picked.
///
/// ```
///   timeline frame   0         100          250      frames from the project's start, on the rate's grid
///                    |-- clip --|-- gap -----|
///   clip's own time  start      .                    localFrame() maps a timeline frame into it
/// ```
class Storyline
{
public:
    struct Clip
    {
        xmlNode *element;
        qint64 firstFrame; ///< First timeline frame that starts inside the clip.
        qint64 endFrame;   ///< First timeline frame after it.
        Rational origin;   ///< The clip's own time at timeline frame 0, in frames.
        Rational pace;     ///< Frames of the clip's own time that pass in a timeline frame.
        bool retimed;      ///< Has a speed change, so that its own time is no straight line.

        /// The clip's own time at a timeline frame, in frames of the rate, to the nearest one.
        /// @throws RationalOverflow
        qint64 localFrame(qint64 timelineFrame) const;
    };

    /// Reads the clips of `spine`. `projectStart` is the time of the timeline's frame 0 in seconds.
    /// @throws ConversionError "项目 XML 缺少必要结构。" when a time cannot be read, "项目主时间线没有可连接的片段。"
    /// when there is no clip.
    Storyline(const xmlNode *spine, const Rational &projectStart, const FrameRate &rate);

    /// The clip in which `timelineFrame` starts, the later one at a cut. Null when there is none.
    const Clip *clipAt(qint64 timelineFrame) const;

private:
    Q_DISABLE_COPY_MOVE(Storyline)

    /// A part of the timeline that one clip holds, up to where the next stretch begins.
    struct Stretch
    {
        qint64 firstFrame;
        const Clip *clip; ///< In m_clips; null where there is none.
    };

    void coverTimeline();

    std::vector<Clip> m_clips;        ///< In document order.
    std::vector<Stretch> m_stretches; ///< Ascending.
};
