#include "app/model/SessionChange.h"

#include "app/model/SessionTracks.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace SessionChange {

namespace {

/// The lists of cues of a session, by the numbers that a change knows them by.
class CueLists
{
public:
    explicit CueLists(const LintoraSession &session)
        : m_tracks(*session.tracks)
    {}

    /// Null when there is none of that number.
    const QList<Subtitle> *find(qint64 number) const
    {
        static const QList<Subtitle> none;
        if (number == -1)
            return &none;
        if (number < 0 || number / 2 >= m_tracks.size())
            return nullptr;
        const SubtitleTrack &track = m_tracks.at(number / 2);
        if (number % 2 == 0)
            return &track.items;
        return track.previousItems ? &*track.previousItems : nullptr;
    }

    /// The number of the list that shares its data with `cues`; absent when none does.
    std::optional<qint64> numberOf(const QList<Subtitle> &cues) const
    {
        for (qint64 number = -1; number < 2 * m_tracks.size(); ++number) {
            const QList<Subtitle> *const list = find(number);
            if (list && list->constData() == cues.constData() && list->size() == cues.size())
                return number;
        }
        return std::nullopt;
    }

private:
    const QList<SubtitleTrack> m_tracks;
};

std::vector<CueEdit> editsBetween(const QList<Subtitle> &before, const QList<Subtitle> &after)
{
    const auto front = std::mismatch(after.begin(), after.end(), before.begin(), before.end());
    const auto back = std::mismatch(after.rbegin(), std::make_reverse_iterator(front.first), before.rbegin(),
                                    std::make_reverse_iterator(front.second));
    auto at = front.second;
    auto put = front.first;
    const auto end = back.second.base();
    const auto putEnd = back.first.base();
    std::vector<CueEdit> edits;
    if (end - at != putEnd - put) {
        edits.push_back({at - before.begin(), end - at, QList<Subtitle>(put, putEnd)});
        return edits;
    }
    // As many as before: changed in some places, perhaps far from each other.
    while (at != end) {
        auto stop = at;
        auto putStop = put;
        for (; stop != end && *stop != *putStop; ++stop)
            ++putStop;
        edits.push_back({at - before.begin(), stop - at, QList<Subtitle>(put, putStop)});
        std::tie(at, put) = std::mismatch(stop, end, putStop, putEnd);
    }
    return edits;
}

void writeCues(JsonWriter &json, const CueLists &lists, qint64 likely, const QList<Subtitle> &cues)
{
    json.beginObject();
    const std::optional<qint64> same = lists.numberOf(cues);
    if (!same) {
        json.key("edits");
        json.beginArray();
        for (const CueEdit &edit : editsBetween(*lists.find(likely), cues)) {
            json.beginObject();
            json.key("at").integer(edit.at);
            json.key("cut").integer(edit.cut);
            json.key("put");
            writeSubtitles(json, edit.put);
            json.endObject();
        }
        json.endArray();
    }
    json.key("of").integer(same.value_or(likely));
    json.endObject();
}

void writeTrack(JsonWriter &json, const LintoraSession &before, const CueLists &lists, const SubtitleTrack &track)
{
    const auto from = SessionTracks::indexOf(before, track.id);
    const SubtitleTrack former = from ? before.tracks->at(*from) : SubtitleTrack();
    json.beginObject();
    if (from)
        json.key("from").integer(*from);
    if (track.items != former.items) {
        json.key("items");
        writeCues(json, lists, from ? 2 * *from : -1, track.items);
    }
    if (!track.previousItems) {
        if (former.previousItems)
            json.key("noPreviousItems").boolean(true);
    } else if (track.previousItems != former.previousItems) {
        json.key("previousItems");
        writeCues(json, lists, from ? 2 * *from : -1, *track.previousItems);
    }
    if (const SubtitleTrack rest = SessionTracks::withoutCues(track); rest != SessionTracks::withoutCues(former)) {
        json.key("rest");
        writeSubtitleTrack(json, rest);
    }
    json.endObject();
}

CueEdit readEdit(JsonReader &json)
{
    CueEdit edit;
    json.readObject({"at", "cut", "put"}, [&](QByteArrayView key) {
        if (key == "at")
            edit.at = json.readInteger();
        else if (key == "cut")
            edit.cut = json.readInteger();
        else if (key == "put")
            edit.put = readSubtitles(json);
    });
    return edit;
}

Cues readCues(JsonReader &json)
{
    Cues cues;
    json.readObject({"of"}, [&](QByteArrayView key) {
        if (key == "edits")
            json.readArray([&] { cues.edits.push_back(readEdit(json)); });
        else if (key == "of")
            cues.of = json.readInteger();
    });
    return cues;
}

Track readTrack(JsonReader &json)
{
    Track track;
    json.readObject({}, [&](QByteArrayView key) {
        if (key == "from")
            track.from = json.readInteger();
        else if (key == "items")
            track.items = readCues(json);
        else if (key == "previousItems")
            track.previousItems = readCues(json);
        else if (key == "noPreviousItems")
            track.hasNoPreviousItems = json.readBoolean();
        else if (key == "rest")
            track.rest = readSubtitleTrack(json);
    });
    return track;
}

} // namespace

void write(JsonWriter &json, const LintoraSession &before, const LintoraSession &after)
{
    const CueLists lists(before);
    json.beginObject();
    if (const LintoraSession rest = SessionTracks::withoutCues(after); rest != SessionTracks::withoutCues(before)) {
        json.key("rest");
        writeLintoraSession(json, rest);
    }
    if (before.tracks != after.tracks) {
        json.key("tracks");
        json.beginArray();
        for (const SubtitleTrack &track : *after.tracks)
            writeTrack(json, before, lists, track);
        json.endArray();
    }
    json.endObject();
}

Change read(JsonReader &json)
{
    Change change;
    json.readObject({}, [&](QByteArrayView key) {
        if (key == "rest")
            change.rest = readLintoraSession(json);
        else if (key == "tracks")
            json.readArray([&, &tracks = change.tracks.emplace()] { tracks.push_back(readTrack(json)); });
    });
    return change;
}

} // namespace SessionChange
