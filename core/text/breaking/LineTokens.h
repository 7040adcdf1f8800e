#pragma once

#include <QStringView>

#include <vector>

class WordBorders;

/// A stretch of a line that stays together: a word, a number with its unit, a Latin name like Rec.709, a single mark.
struct LineToken
{
    enum class Kind
    {
        word,
        latin,  ///< Letters and digits between blanks, with the marks among them.
        number, ///< With its unit, if it has one.
        mark,   ///< 。，、… and whatever else ends something.
        opening,
        closing
    };

    Kind kind = Kind::word;
    qsizetype begin = 0; ///< In UTF-16 code units, as are the others.
    qsizetype end = 0;
    qsizetype next = 0;    ///< Where the next token begins; behind the blanks that follow.
    qsizetype partner = 0; ///< Of an opening or closing mark the index of the other, -1 when it has none.

    bool isSpaced() const { return next > end; } ///< Whether blanks follow.
};

namespace LineTokens {

/// The tokens of `line`, a text without line feeds. Blanks before the first belong to no token.
std::vector<LineToken> of(QStringView line, WordBorders &words);

} // namespace LineTokens
