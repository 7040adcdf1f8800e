#pragma once

#include <QList>
#include <QString>

class JsonReader;
class JsonWriter;

/// One cue: what is shown, and when.
///
/// Times count from the beginning of the timeline. The interval is half-open, [start, end): neighbours may touch. A
/// valid cue has end > start; a list of cues is in display and export order and need not be sorted by time.
struct Subtitle
{
    qint64 id = 0;    ///< Cue number. Readers count from 1; most tools keep it.
    qint64 start = 0; ///< Milliseconds.
    qint64 end = 0;   ///< Milliseconds.
    QString text;     ///< Lines separated by a single line feed.

    friend bool operator==(const Subtitle &, const Subtitle &) = default;
};

Q_DECLARE_TYPEINFO(Subtitle, Q_RELOCATABLE_TYPE);

/// Reads one cue object with the keys "id", "start", "end" and "text", all required.
/// @throws PlatformError naming the key path that is missing or of another type.
Subtitle readSubtitle(JsonReader &json);

/// Writes the object that readSubtitle reads, keys sorted.
void writeSubtitle(JsonWriter &json, const Subtitle &cue);

/// The same for an array of cues.
QList<Subtitle> readSubtitles(JsonReader &json);
void writeSubtitles(JsonWriter &json, const QList<Subtitle> &cues);
