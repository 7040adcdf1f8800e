#include "app/model/TrackHeights.h"

#include <algorithm>
#include <cmath>

namespace TrackHeights {

namespace {

constexpr double highest = 40;       // percent; where documents end to take it
constexpr double lineSpacing = 1.45; // in ems; a little more than fonts for Chinese have
constexpr qsizetype mostLines = 2;   // more are not meant to be seen

/// What a line takes, in percent of the frame's height.
double lineHeight(const Options &options)
{
    return options.height > 0 ? options.fontSize / double(options.height) * lineSpacing * 100 : 0;
}

double heightOf(const SubtitleTrack &track)
{
    qsizetype lines = 1;
    for (const Subtitle &cue : track.items)
        lines = std::max(lines, cue.text.count(u'\n') + 1);
    return double(std::min(lines, mostLines)) * lineHeight(track.options);
}

/// Whether a line of the one reaches into a line of the other.
bool cover(const Options &one, const Options &other)
{
    const bool isBelow = one.bottomPercent <= other.bottomPercent;
    const Options &below = isBelow ? one : other;
    const Options &above = isBelow ? other : one;
    return above.bottomPercent < below.bottomPercent + lineHeight(below);
}

} // namespace

std::optional<std::pair<qsizetype, qsizetype>> overlapping(const QList<SubtitleTrack> &tracks)
{
    const auto isKnown = [](const SubtitleTrack &track) { return !track.items.isEmpty() && !track.look; };
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        for (qsizetype j = 0; j < i; ++j) {
            if (isKnown(tracks[i]) && isKnown(tracks[j]) && cover(tracks[j].options, tracks[i].options))
                return std::pair(j, i);
        }
    }
    return std::nullopt;
}

std::optional<QList<double>> stacked(const QList<SubtitleTrack> &tracks)
{
    QList<double> distances(tracks.size());
    double free = tracks.isEmpty() ? 0 : tracks.last().options.bottomPercent;
    for (qsizetype i = tracks.size() - 1; i >= 0; --i) {
        distances[i] = free;
        free = std::ceil(free + heightOf(tracks.at(i))); // whole percents are what a slider shows
    }
    if (!distances.isEmpty() && !(distances.first() <= highest))
        return std::nullopt;
    return distances;
}

} // namespace TrackHeights
