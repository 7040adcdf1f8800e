#pragma once

#include <QByteArrayView>

#include <span>

/// What the published document types of FCPXML, versions 1.8 to 1.14, allow where: one table for all of them.
namespace DocumentRules {

inline constexpr int oldest = 8;  ///< The minor number of the first version that the table knows.
inline constexpr int newest = 14; ///< And of the last.

/// ```
///   name       "media-rep@9"      since version 1.9; "<10" behind it: until version 1.9
///   content    "note? spine metadata?"      what may stand inside, in this order: ? at most once, * any number, + one
///                                           at least, else exactly once
///              "marker|keyword*"            any of these
///              "#PCDATA"                    text
///   attributes "ref&! name enabled=0|1 id#" ! required, & refers to an id, # is an id, = one of these values
/// ```
/// Words with $ stand for others. Elements that a version does not have may not stand in its content either.
struct Element
{
    QByteArrayView name;
    QByteArrayView content; ///< Empty: nothing may stand inside.
    QByteArrayView attributes;
};

struct Abbreviation
{
    QByteArrayView word;
    QByteArrayView meaning;
};

std::span<const Element> elements();
std::span<const Abbreviation> abbreviations(); ///< Longer words before those that they begin with.

} // namespace DocumentRules
