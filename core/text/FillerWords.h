#pragma once

#include <QStringList>

#include <array>
#include <optional>
#include <vector>

/// A list of filler words, made ready for looking through many cues.
///
/// All words are literal. Where several begin at one place, the one with the most characters is tried first, and of
/// equally long ones the first of the list. The time taken is linear in the text, unless words hold clause
/// marks themselves ("a!b"): there each removal may make room for the next, and a text built for it takes a round for
/// each.
class FillerWords
{
public:
    explicit FillerWords(const QStringList &words);

    /// `text` without filler words, trimmed. Nothing at all when the cue is but laughter (with 哈哈 among the words) or
    /// the exclamation 哎呦我去 (with 哎呦 or 哎哟). A filler word that makes up a clause takes its clause mark along.
    /// Without words the text stays as it stands, untrimmed.
    QString removedFrom(QStringView text) const;

    /// A quick look that spares most texts the rest: if false, removedFrom does nothing but trim.
    bool mayHoldWords(QStringView text) const;

private:
    bool isWholeExclamation(QStringView text) const;
    std::optional<QString> withoutClauses(QStringView text) const;
    QString withoutWords(QStringView text) const;

    template <class Accept>
    qsizetype firstWordAt(QStringView text, qsizetype at, Accept &&accept) const;

    std::vector<QString> m_words;         ///< By the low byte of their first unit, then by rank.
    std::array<quint32, 257> m_firstWord; ///< Where the words of a low byte begin in m_words.
    bool m_holdsEmptyWord = false;
    bool m_knowsLaughter = false;
    bool m_knowsExclamation = false;
};
