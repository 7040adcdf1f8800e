#pragma once

#include "core/text/CommonSubsequence.h"
#include "core/text/Pinyin.h"

#include <QHash>
#include <QString>

#include <array>
#include <optional>
#include <span>
#include <vector>

/// What of a text can be heard, as keys: a script and what a recogniser wrote are compared by them.
///
/// Characters with a letter or digit count; case, accents, width and the Chinese script do not, nor which way a number
/// is written. One object makes the keys of all texts that are compared.
class ComparisonKeys
{
public:
    using Key = CommonSubsequence::Key;

    /// A character that counts, or a digit of a number, with where it is written, in UTF-16 code units.
    struct Unit
    {
        Key key = 0;
        qsizetype begin = 0;
        qsizetype end = 0;
    };

    /// The units of `text`, in order. @throws PlatformError when the dictionaries of the Chinese scripts are missing
    std::vector<Unit> units(const QString &text);

    /// Above every key so far.
    Key count() const { return static_cast<Key>(m_characters.size()); }

    /// Whether the two are Chinese characters that can be read alike, tones aside. Reading the first one takes a tenth
    /// of a second.
    bool soundAlike(Key a, Key b);

private:
    using Sounds = std::array<quint16, 4>; ///< Of each reading a number above 0, as many as there are.

    void learnScript(const QString &text);
    Key keyOf(const QString &character);
    const Sounds &soundsOf(Key key);

    QHash<QString, Key> m_keys;
    std::vector<QString> m_characters; ///< By key.
    QHash<char32_t, char32_t> m_simplified;
    std::vector<std::optional<Sounds>> m_sounds; ///< By key; absent until asked.
    QHash<QString, quint16> m_soundNumbers;
    std::optional<Pinyin::Reader> m_reader;
};
