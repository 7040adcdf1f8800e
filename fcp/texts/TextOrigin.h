#pragma once

#include <QList>
#include <QString>

class JsonReader;
class JsonWriter;

/// Where a cue came from: a title or caption of a project.
struct TextOrigin
{
    qint64 cue = 0;    ///< The cue's id.
    qint64 number = 0; ///< Of the title among the titles and captions of the document, from 0 in document order.
    QString text = {}; ///< What it said, by which another version of the document is told.

    friend bool operator==(const TextOrigin &, const TextOrigin &) = default;
};

/// Reads an array of objects with the keys "cue", "number" and "text", all required.
/// @throws PlatformError naming the key path that is missing or of another type.
QList<TextOrigin> readTextOrigins(JsonReader &json);

/// Writes what readTextOrigins reads.
void writeTextOrigins(JsonWriter &json, const QList<TextOrigin> &origins);
