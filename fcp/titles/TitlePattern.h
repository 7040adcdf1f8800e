#pragma once

#include "fcp/Options.h"
#include "fcp/texts/CaptionRole.h"

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
        style,    ///< The number of the title's text style.
        text,     ///< The text as content.
        end       ///< Nothing: the title is complete.
    };

    struct Piece
    {
        QByteArray bytes;
        Slot slot; ///< What follows the bytes.
    };

    QByteArray indent;     ///< Before the title.
    QByteArray lastIndent; ///< After the last title of a clip.
    std::vector<Piece> pieces;

    /// Where a title stands in the document's text.
    struct Place
    {
        QByteArray lane;                ///< A number.
        std::optional<int> indentation; ///< Blanks before a title; absent when nothing may stand between titles.
    };

    /// Titles of the effect `effectID`, Final Cut Pro's Basic Title, that look as `options` say.
    static TitlePattern basicTitle(const Options &options, const QByteArray &effectID, const Place &place);

    /// Native captions, which look as Final Cut Pro itself makes them: of the options only the rate counts.
    static TitlePattern caption(const CaptionRole &role, const Options &options, const Place &place);
};
