#pragma once

#include <QString>

#include <libxml/tree.h>

#include <vector>

/// What a title or caption says: its "text" children, each a field of the template, each made of runs of one style.
///
/// ```
///   <text>                                                              field
///     <text-style ref="ts1">Introducin</text-style>                     run
///     <text-style ref="ts2">g\n</text-style>                            run; the line break at the end is not shown
///   </text>
/// ```
namespace TextFields {

struct Run
{
    const xmlNode *element = nullptr; ///< The "text-style", or the "text" itself where it holds bare text.
    QString text = {};                ///< As it stands.
};

struct Field
{
    const xmlNode *element = nullptr; ///< The "text".
    std::vector<Run> runs = {};

    QString content() const; ///< As it stands, all runs together.
    QString shown() const;   ///< As a cue says it: lines without white space at their ends, none of them empty.
};

/// All fields of `element`, in order, those without text too.
std::vector<Field> read(const xmlNode *element);

/// What a cue of these fields says: the fields that have text, each on lines of its own. Empty when there is no text.
QString shown(const std::vector<Field> &fields);

/// `text` as a cue keeps it: any line break is a line feed, lines are trimmed, empty ones go.
QString tidied(const QString &text);

} // namespace TextFields
