#pragma once

#include "fcp/xml/XmlDocument.h"

#include <QList>

#include <optional>
#include <vector>

/// The look of a title that somebody has made in Final Cut Pro: its effect, all that is set on it, the styles of its
/// text and its place in the picture; without its text, its time and what hangs on it.
struct TitleTemplate
{
    struct Effect
    {
        QByteArray name; ///< UTF-8, as are the others.
        QByteArray uid;  ///< By which Final Cut Pro finds it.
        QByteArray src;  ///< Where the user's own lie; mostly empty.

        friend bool operator==(const Effect &, const Effect &) = default;
    };

    QList<Effect> effects; ///< The first is the title's own, the others are those of its filters. Never empty.

    /// The title, valid XML without a declaration. Effects are named by their index, as are text styles; the one
    /// "text-style" that is empty takes the text. Lane, offset, start, duration and name are not there.
    QByteArray xml;

    qint64 styleCount() const; ///< How many text styles it has.

    QString name() const; ///< Of the title's effect, for people.

    /// What stands in the title besides its text, before it and behind.
    struct Surroundings
    {
        QString before;
        QString after;
    };
    Surroundings surroundings() const;

    /// Seconds from a title's beginning to its last keyframe; 0 when nothing moves. What is shorter is cut off.
    double lastKeyframe() const;

    friend bool operator==(const TitleTemplate &, const TitleTemplate &) = default;
};

class JsonReader;
class JsonWriter;

/// Reads the object {"effects":[{"name","src"?,"uid"}…],"xml"}.
/// @throws PlatformError naming the key path, also for what makes no title
TitleTemplate readTitleTemplate(JsonReader &json);

/// Writes what readTitleTemplate reads.
void writeTitleTemplate(JsonWriter &json, const TitleTemplate &look);

namespace TitleTemplates {

/// The look of the first title of `project` that has text; with a `text`, of the first one that shows it or bears it
/// as its name. `project` may be null for a document that holds clips instead. What later versions than `minorVersion`
/// brought is left out.
/// @throws ConversionError when there is no such title, its effect is missing, or the document cannot be read
TitleTemplate read(const XmlDocument &document, const xmlNode *project, const QString &text, int minorVersion);

/// The look of that title of the document. @throws ConversionError when it has no text or its effect is missing
TitleTemplate read(const XmlDocument &document, const xmlNode *project, const xmlNode *title, int minorVersion);

} // namespace TitleTemplates
