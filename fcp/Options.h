#pragma once

#include "fcp/FrameRate.h"

#include <QString>

#include <optional>

/// Everything that shapes a title document.
///
/// Colours are kept as Final Cut Pro writes them: red, green, blue and alpha from 0 to 1, four decimal numbers
/// separated by single blanks. Limits are checked when a document is written, not here: an editor may hold a value on
/// its way.
struct Options
{
    FrameRate rate = FrameRate::all()[4];         ///< Frame grid of the document; 30 at first.
    qint64 width = 3840;                          ///< Pixels, at least 1.
    qint64 height = 2160;                         ///< Pixels, at least 1.
    QString font = QStringLiteral("PingFang SC"); ///< Family name.
    double fontSize = 48;                         ///< Points, as Final Cut Pro's title text size; above 0.
    QString fontColor = QStringLiteral("1 1 1 1");
    bool strokeEnabled = false;
    QString strokeColor = QStringLiteral("0 0 0 1");
    double strokeWidth = 2; ///< 0 to 20, checked even when no stroke is written.
    bool shadowEnabled = false;
    QString shadowColor = QStringLiteral("0 0 0 0.65");
    double shadowBlur = 4;                 ///< Radius, 0 to 30, checked even when no shadow is written.
    double bottomPercent = 10;             ///< Distance from the bottom edge in percent of the frame height, 0 to 40.
    qint64 shiftMS = 0;                    ///< Milliseconds added to every cue before it is placed; may be negative.
    QString name = QStringLiteral("字幕"); ///< Project name.
    std::optional<QString> titleRole = std::nullopt; ///< Role of the titles; absent means "titles.字幕".
    std::optional<QString> fontFace = std::nullopt;  ///< Face name; absent means "Regular".

    friend bool operator==(const Options &, const Options &) = default;
};

/// Reads an object whose keys are the field names. All are required but "titleRole" and "fontFace", which may be null.
/// @throws PlatformError naming the key path that is missing or of another type.
Options readOptions(JsonReader &json);

/// Writes the object that readOptions reads, keys sorted, absent fields left out.
void writeOptions(JsonWriter &json, const Options &options);
