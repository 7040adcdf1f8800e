#pragma once

#include "core/Check.h"
#include "core/Subtitle.h"
#include "fcp/texts/TextOrigin.h"

#include <QByteArray>
#include <QString>

/// Puts the texts of cues back into the titles and captions of a project that they came from.
namespace Retext {

enum class Scope
{
    texts,     ///< Only what titles say changes; all else is listed.
    everything ///< Titles are moved, made and removed too.
};

struct Request
{
    QString project = {};           ///< A project's name, empty for the only one.
    QString track = {};             ///< A track's label, empty for the only one.
    QList<Subtitle> cues = {};      ///< What the titles of the track are to say.
    QList<TextOrigin> origins = {}; ///< Where cues came from, as far as that is known.
    Scope scope = Scope::texts;
};

struct Changed
{
    qint64 cue;
    QString before;
    QString after;
    bool styles; ///< The title had several styles where it changed; the new words have one of them.
};

struct Moved
{
    Subtitle cue;
    qint64 start; ///< Where its title stands in the project, in milliseconds.
    qint64 end;
};

struct Refused
{
    qint64 cue; ///< Of the cues, or of the title's own number where it should go.
    QString reason;
};

/// All lists are in the order of the cues, or of the track.
struct Receipt
{
    QList<Changed> changed;
    QList<Moved> moved;      ///< Done, or only listed, as the scope says.
    QList<Subtitle> added;   ///< Cues that no title matches; as above.
    QList<Subtitle> removed; ///< Titles that no cue matches; as above.
    QList<Refused> refused;  ///< What could not be done of the above.
};

struct Result
{
    QByteArray document; ///< The same bytes but for the changes.
    Receipt receipt;
};

/// Cues are matched to titles by their origins, then by the frame on which they start, then by order.
/// The result is read again and compared before it is returned. Calls `check` while it reads and compares.
/// @throws ConversionError when there is no such project or track, or more than one, or the document cannot be read;
/// PlatformError when it is no XML.
Result apply(const QByteArray &bytes, const Request &request, const Check &check = {});

} // namespace Retext
