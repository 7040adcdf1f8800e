#pragma once

#include <QString>

/// Makes characters equal that differ in nothing but case, accents or width, in the same way under every locale.
///
///     Latin, Greek, Cyrillic   Á ａ Å → a   ς Σ → σ   Ё → е   Й → и.  I and İ are i; ı, ø, ł, đ, ß (ẞ), æ and the
///     ligatures
///                              ﬁ, ﬆ stay: they are letters of their own, not accented ones.
///     Kana                     ｶ → カ, and sound marks are accents: が → か, ﾊﾟ → ハ. Hiragana and katakana, small and
///                              large kana stay apart.
///     Hangul                   A syllable in jamo is the composed one. Half-width jamo are the full-width ones.
///     Ideographs               Compatibility ideographs are the unified ones, variation selectors go. Simplified and
///                              traditional forms stay apart.
///     Other scripts            Marks with a combining class go (Arabic and Hebrew points, Thai tones, nukta), vowel
///     signs
///                              without one stay.
///     Digits                   ７ → 7; ⑦, ², ⅷ and 七 stay.
namespace Folding {

/// `character` folded: one grapheme cluster, which may be of several scalars. A character of marks alone keeps them.
QString folded(QStringView character);

} // namespace Folding
