#pragma once

#include "app/fonts/FontFamily.h"

#include <QList>

#include <array>
#include <memory>
#include <optional>
#include <vector>

/// Finds font families by what someone types of their names.
///
/// A query is found anywhere in the Chinese name, the English name and the family name, without regard to case, blanks
/// and hyphens; and in the sound of the Chinese name, each character whole or by its first letter: "siyuanheiti",
/// "syht", "siyht" and, while being typed, "siyuanh" find 思源黑体. A value: it never changes. Any thread.
class FontSearch
{
public:
    explicit FontSearch(const QList<FontFamily> &families = {});

    /// Places in the list of families, the best first: those named in `preferred` (favourites, then what was used of
    /// late), in that order; then names that begin with the query; then names with a word that does; then the rest.
    /// Among equals the order is that of the families. Without a query all families are found.
    QList<qsizetype> find(QStringView query, const QStringList &preferred = {}) const;

private:
    /// The letters of a name, one after the other.
    struct Name
    {
        QString letters;             ///< Case-folded, nothing but letters and digits.
        std::vector<bool> wordStart; ///< Of each UTF-16 code unit.
    };

    using Syllable = std::array<char, 8>; ///< Ends with a zero.

    struct Sound
    {
        std::vector<std::vector<Syllable>> characters; ///< The readings of each.
        quint32 initials = 0;                          ///< Bit 0 for a character that begins with "a", and so on.
    };

    struct Entry
    {
        QString family;
        std::vector<Name> names;
        Sound sound;
    };

    enum class Rank
    {
        prefix,
        wordStart,
        rest
    };

    static Name nameOf(const QString &text);
    static Sound soundOf(const QString &pronunciation);
    static std::optional<Rank> rankIn(const Name &name, const QString &letters);
    static std::optional<Rank> rankIn(const Sound &sound, QByteArrayView letters);
    static bool soundsLike(const Sound &sound, size_t first, QByteArrayView letters);

    std::shared_ptr<const std::vector<Entry>> m_entries; ///< Shared between copies.
};
