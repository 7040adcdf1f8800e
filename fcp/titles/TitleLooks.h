#pragma once

#include "core/Check.h"
#include "fcp/Options.h"
#include "fcp/titles/TitleTemplate.h"

/// The titles of a document whose look can be taken, for a choice.
namespace TitleLooks {

struct Offer
{
    TitleTemplate look;
    QString text;         ///< What the first title of this look says, as a cue says it.
    QString name;         ///< What that title is called.
    qsizetype titles = 1; ///< How many look so.
};

/// Every look once, in the order of the projects and tracks in which they are first seen: what
/// TitleTemplates::read takes by default is the first. Titles that cannot be taken are left out. Calls `check` every
/// few milliseconds.
/// @throws ConversionError when the document is none of Final Cut Pro, or holds more than can be walked
QList<Offer> offered(const XmlDocument &document, int minorVersion, const Check &check = {});

/// `base` with what a drawing of plain text can show of a look: font, size, colour, stroke and shadow, and how high it
/// stands, where its title was moved as a Basic Title is. Anything else of it is not there.
Options drawn(const TitleTemplate &look, Options base);

} // namespace TitleLooks
