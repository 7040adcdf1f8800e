#include "fcp/titles/PlacedTracks.h"

#include "core/ConversionError.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace PlacedTracks {

namespace {

/// Final Cut Pro takes overlapping captions of a language, and shows them as faulty.
void refuseOverlap(const std::vector<TitleGrid::Title> &titles)
{
    for (size_t i = 1; i < titles.size(); ++i) {
        if (titles[i].startFrame < titles[i - 1].endFrame)
            throw ConversionError::aboutCue(titles[i].cueID, u" 条字幕与前一条重叠，同一语言的说明字幕不能重叠。",
                                            u"前一条是第 %1 条。"_s.arg(titles[i - 1].cueID));
    }
}

void refuseSecond(const CaptionRole &role, const std::vector<PlacedTrack> &before)
{
    if (std::ranges::any_of(before, [&](const PlacedTrack &each) { return each.track.captions == role; }))
        throw ConversionError(u"有两条说明字幕轨的语言相同：%1。"_s.arg(role.language));
}

} // namespace

std::vector<PlacedTrack> place(const std::vector<TitleTrack> &tracks, const Check &check)
{
    std::vector<PlacedTrack> placed;
    for (const TitleTrack &track : tracks) {
        if (track.options.rate != tracks.front().options.rate)
            throw ConversionError(u"各条字幕轨的帧率不一致。"_s);
        if (track.captions)
            refuseSecond(*track.captions, placed);
        placed.push_back({.track = track, .titles = {}});
        PlacedTrack &added = placed.back();
        added.titles = TitleGrid::place(added.track.cues, added.track.options, check);
        if (track.captions)
            refuseOverlap(added.titles);
    }
    return placed;
}

const TitleGrid::Title &last(const std::vector<PlacedTrack> &tracks)
{
    const TitleGrid::Title *last = &tracks.front().titles.front();
    for (const PlacedTrack &track : tracks) {
        for (const TitleGrid::Title &title : track.titles) {
            if (title.endFrame > last->endFrame)
                last = &title;
        }
    }
    return *last;
}

} // namespace PlacedTracks
