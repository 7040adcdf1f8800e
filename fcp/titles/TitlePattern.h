#pragma once

#include "fcp/Options.h"
#include "fcp/texts/CaptionRole.h"
#include "fcp/titles/TitleTemplate.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// What all titles of a track have in common: bytes of XML, and between them the places that each title fills itself.
struct TitlePattern
{
    enum class Slot
    {
        name,     ///< The text in one line, in an attribute.
        offset,   ///< Frames times the rate's denominator; the rest of the time stands in the bytes.
        duration, ///< In the same way.
        style,    ///< The number of one of the title's text styles.
        text,     ///< The text as content.
        end       ///< Nothing: the title is complete.
    };

    struct Piece
    {
        QByteArray bytes;
        Slot slot;        ///< What follows the bytes.
        qint64 style = 0; ///< Which of the title's text styles, where it is one.
    };

    QByteArray indent;     ///< Before the title.
    QByteArray lastIndent; ///< After the last title of a clip.
    std::vector<Piece> pieces;
    qint64 styles = 1; ///< How many text styles a title has.

    /// Where a title stands in the document's text.
    struct Place
    {
        QByteArray lane;                ///< A number.
        std::optional<int> indentation; ///< Blanks before a title; absent when nothing may stand between titles.
    };

    /// Titles of the effect `effectID`, Final Cut Pro's Basic Title, that look as `options` say.
    static TitlePattern basicTitle(const Options &options, const QByteArray &effectID, const Place &place);

    /// Titles that look like one of the user's own. `effectIDs` are those of its effects in the document. Of the
    /// options only rate and role count, and its own role goes before.
    static TitlePattern copied(const TitleTemplate &look, const QList<QByteArray> &effectIDs, const Options &options,
                               const Place &place);

    /// Native captions, which look as Final Cut Pro itself makes them: of the options only the rate counts.
    static TitlePattern caption(const CaptionRole &role, const Options &options, const Place &place);
};
