#pragma once

#include <QStringView>

/// Words beside which a Chinese or English line is well broken, or badly. Simplified and Traditional; English without
/// regard to case.
namespace BreakWords {

enum Trait : quint8
{
    conjunction = 1,      ///< 但是, because: begins a clause, the line is best broken before it.
    preposition = 2,      ///< 在, with: begins a phrase.
    finalParticle = 4,    ///< 了, 吗: ends a phrase.
    clingsToPrevious = 8, ///< 的, 里: a line never begins with it.
    clingsToNext = 16     ///< 把, 很, the: a line should not end with it.
};

/// The traits of a word, added up.
quint8 traits(QStringView word);

bool isNumeral(QStringView word); ///< Digits alone, or 三百: written with the characters of Chinese numbers.
bool isUnit(QStringView word);    ///< 个, 分钟, mm: goes with the number before it.

} // namespace BreakWords
