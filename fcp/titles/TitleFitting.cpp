#include "fcp/titles/TitleFitting.h"

#include "core/ConversionError.h"
#include "fcp/titles/Storyline.h"

using namespace Qt::StringLiterals;

namespace TitleFitting {

namespace {

/// A project's length in whole frames, absent when it does not tell.
std::optional<qint64> lengthInFrames(const xmlNode *sequence, const FrameRate &rate)
{
    static const Rational tolerance(1, 1'000); // seconds, as where the length is checked
    const auto text = Xml::attribute(sequence, "duration");
    const auto duration = text ? Rational::parseTime(*text) : std::nullopt;
    if (!duration)
        return std::nullopt;
    // The last frame that ends in time: a ceiling of the negative is a floor.
    return -(-((*duration + tolerance) / rate.frameDuration())).ceiling();
}

/// The earliest whole millisecond that lies on `frame`.
qint64 milliseconds(qint64 frame, const FrameRate &rate)
{
    return (Rational(frame) * rate.frameDuration() * Rational(1'000)).rounded();
}

} // namespace

Fitted fit(const QList<Subtitle> &cues, const xmlNode *project, const Options &options, const Choice &choice)
{
    const xmlNode *const sequence = Xml::child(project, "sequence");
    const xmlNode *const spine = sequence ? Xml::child(sequence, "spine") : nullptr;
    const auto start =
        sequence ? Rational::parseTime(Xml::attribute(sequence, "tcStart").value_or("0s")) : std::nullopt;
    if (!spine || !start)
        return {.cues = cues, .leftOut = {}};
    try {
        const Storyline storyline(spine, *start, options.rate);
        const auto length = lengthInFrames(sequence, options.rate);
        Fitted fitted;
        for (const Subtitle &cue : cues) {
            const auto first = options.rate.frame(cue.start + options.shiftMS);
            const auto end = options.rate.frame(cue.end + options.shiftMS);
            const bool isPast = first && end && length && std::max(*end, *first + 1) > *length;
            const Storyline::Clip *const clip = first ? storyline.clipAt(*first) : nullptr;
            if (choice.skipRetimed && clip && clip->retimed) {
                fitted.leftOut.append({.cue = cue, .reason = u"位于变速片段上"_s});
            } else if (isPast && choice.pastEnd == PastEnd::cut && *first < *length) {
                fitted.cues.append(cue);
                fitted.cues.last().end = milliseconds(*length, options.rate) - options.shiftMS;
                ++fitted.cut;
            } else if (isPast && choice.pastEnd != PastEnd::refuse) {
                fitted.leftOut.append({.cue = cue, .reason = u"超出项目时长"_s});
            } else {
                fitted.cues.append(cue);
            }
        }
        return fitted;
    } catch (const RationalOverflow &) {
        throw ConversionError(u"项目 XML 缺少必要结构。"_s);
    }
}

} // namespace TitleFitting
