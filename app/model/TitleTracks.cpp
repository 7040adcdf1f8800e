#include "app/model/TitleTracks.h"

#include "app/model/TrackHeights.h"
#include "core/ConversionError.h"

using namespace Qt::StringLiterals;

namespace TitleTracks {

namespace {

QList<SubtitleTrack> filled(QList<SubtitleTrack> tracks)
{
    tracks.removeIf([](const SubtitleTrack &track) { return track.items.isEmpty(); });
    return tracks;
}

Options framed(Options options, const Options &first)
{
    if (options.height != first.height)
        options.fontSize = options.fontSize * (double(first.height) / double(options.height));
    options.width = first.width;
    options.height = first.height;
    options.name = first.name;
    return options;
}

} // namespace

std::vector<TitleTrack> of(const QList<SubtitleTrack> &tracks)
{
    const QList<SubtitleTrack> written = filled(tracks);
    if (written.isEmpty())
        throw ConversionError(u"请先打开 SRT。"_s);
    const SubtitleTrack &first = written.first();
    std::vector<TitleTrack> made;
    for (const SubtitleTrack &track : written) {
        if (track.options.rate != first.options.rate)
            throw ConversionError(u"各条字幕轨的帧率不一致。"_s,
                                  u"“%1”每秒 %2 帧，“%3”每秒 %4 帧。"_s.arg(first.label, first.options.rate.label,
                                                                            track.label, track.options.rate.label));
        made.push_back({.cues = track.items, .options = framed(track.options, first.options), .look = track.look});
    }
    return made;
}

QString covering(const QList<SubtitleTrack> &tracks)
{
    const auto found = TrackHeights::overlapping(tracks);
    if (!found)
        return {};
    return u"“%1”与“%2”位置重叠，可在样式中错开"_s.arg(tracks[found->first].label, tracks[found->second].label);
}

} // namespace TitleTracks
