#include "app/fonts/FontSearch.h"

#include "core/text/Characters.h"

#include <QHash>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

/// Longer ones are no sound of a font's name; positions in a query are kept as the bits of a number.
constexpr qsizetype longestSound = 62;

bool isDigitOrSmallLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
}

quint32 initialBit(char letter)
{
    return letter >= 'a' && letter <= 'z' ? 1U << (letter - 'a') : 1U << 26;
}

} // namespace

FontSearch::FontSearch(const QList<FontFamily> &families)
{
    auto entries = std::make_shared<std::vector<Entry>>();
    entries->reserve(static_cast<size_t>(families.size()));
    for (const FontFamily &family : families) {
        Entry entry{.family = family.family, .names = {}, .sound = soundOf(family.pronunciation)};
        QStringList texts{family.chineseName, family.englishName, family.family};
        texts.removeDuplicates();
        texts.removeAll(QString());
        for (const QString &text : texts)
            entry.names.push_back(nameOf(text));
        entries->push_back(std::move(entry));
    }
    m_entries = std::move(entries);
}

FontSearch::Name FontSearch::nameOf(const QString &text)
{
    enum class Kind
    {
        none,
        han,
        small,
        capital,
        digit,
    };
    Name name;
    Kind last = Kind::none;
    const QString plain = text.normalized(QString::NormalizationForm_KC);
    for (const char32_t scalar : Characters::Scalars(plain)) {
        if (!Characters::isAlphanumeric(scalar)) {
            last = Kind::none;
            continue;
        }
        Kind kind = QChar::isUpper(scalar) ? Kind::capital : Kind::small;
        if (QChar::isDigit(scalar))
            kind = Kind::digit;
        else if (Characters::script(scalar) == QChar::Script_Han)
            kind = Kind::han;
        // "PingFang" has two words, "CJK" has one.
        const bool isStart = kind != last && (kind != Kind::small || last != Kind::capital);
        const QString folded = QString::fromUcs4(&scalar, 1).toCaseFolded();
        name.letters += folded;
        name.wordStart.push_back(isStart);
        name.wordStart.resize(static_cast<size_t>(name.letters.size()), false);
        last = kind;
    }
    return name;
}

FontSearch::Sound FontSearch::soundOf(const QString &pronunciation)
{
    Sound sound;
    const QByteArray bytes = pronunciation.toLatin1();
    for (const QByteArray &character : bytes.split(' ')) {
        std::vector<Syllable> readings;
        for (const QByteArray &reading : character.split('/')) {
            Syllable syllable{};
            if (reading.isEmpty() || static_cast<size_t>(reading.size()) >= syllable.size())
                continue;
            std::ranges::copy(reading, syllable.begin());
            sound.initials |= initialBit(syllable[0]);
            readings.push_back(syllable);
        }
        if (!readings.empty())
            sound.characters.push_back(std::move(readings));
    }
    return sound;
}

std::optional<FontSearch::Rank> FontSearch::rankIn(const Name &name, const QString &letters)
{
    std::optional<Rank> best;
    for (qsizetype at = name.letters.indexOf(letters); at >= 0; at = name.letters.indexOf(letters, at + 1)) {
        if (at == 0)
            return Rank::prefix;
        if (name.wordStart[static_cast<size_t>(at)])
            return Rank::wordStart;
        best = Rank::rest;
    }
    return best;
}

std::optional<FontSearch::Rank> FontSearch::rankIn(const Sound &sound, QByteArrayView letters)
{
    if (letters.isEmpty() || (sound.initials & initialBit(letters[0])) == 0)
        return std::nullopt;
    if (soundsLike(sound, 0, letters))
        return Rank::prefix;
    // A single letter in the middle of a name would find nearly everything.
    for (size_t first = 1; letters.size() > 1 && first < sound.characters.size(); ++first) {
        if (soundsLike(sound, first, letters))
            return Rank::rest;
    }
    return std::nullopt;
}

/// Whether the characters from `first` on can be typed as `letters`. Keeps the set of all places in the query that the
/// characters so far can reach.
bool FontSearch::soundsLike(const Sound &sound, size_t first, QByteArrayView letters)
{
    quint64 reached = 1;
    for (size_t index = first; index < sound.characters.size() && reached != 0; ++index) {
        quint64 next = 0;
        for (const Syllable &syllable : sound.characters[index]) {
            const auto length = static_cast<qsizetype>(std::strlen(syllable.data()));
            for (qsizetype at = 0; at < letters.size(); ++at) {
                if ((reached >> at & 1) == 0 || letters[at] != syllable[0])
                    continue;
                const qsizetype most = std::min(length, letters.size() - at);
                qsizetype same = 1;
                while (same < most && letters[at + same] == syllable[static_cast<size_t>(same)])
                    ++same;
                // The query may end within a syllable that is still being typed.
                if (at + same == letters.size())
                    return true;
                next |= quint64(1) << (at + 1);
                if (same >= 2 && syllable[1] == 'h')
                    next |= quint64(1) << (at + 2);
                if (same == length)
                    next |= quint64(1) << (at + length);
            }
        }
        reached = next;
    }
    return false;
}

QList<qsizetype> FontSearch::find(QStringView query, const QStringList &preferred) const
{
    const QString letters = nameOf(query.toString()).letters;
    QByteArray sound = letters.toLatin1();
    if (letters.size() > longestSound || !std::ranges::all_of(sound, isDigitOrSmallLetter))
        sound.clear();
    // What has marks only, like "-", is no query for all families.
    const bool wantsAll = letters.isEmpty() && Characters::trimmed(query).isEmpty();

    QHash<QString, qsizetype> places;
    for (const QString &family : preferred)
        places.insert(family, places.value(family, places.size()));

    struct Found
    {
        qsizetype index;
        qsizetype preference;
        Rank rank;
    };
    std::vector<Found> found;
    for (size_t index = 0; index < m_entries->size() && (wantsAll || !letters.isEmpty()); ++index) {
        const Entry &entry = (*m_entries)[index];
        std::optional<Rank> best;
        const auto offer = [&](std::optional<Rank> rank) {
            if (rank && (!best || *rank < *best))
                best = rank;
        };
        if (wantsAll)
            best = Rank::prefix;
        for (size_t i = 0; i < entry.names.size() && best != Rank::prefix; ++i)
            offer(rankIn(entry.names[i], letters));
        if (best != Rank::prefix)
            offer(rankIn(entry.sound, sound));
        if (best)
            found.push_back({static_cast<qsizetype>(index), places.value(entry.family, places.size()), *best});
    }
    std::ranges::stable_sort(found, [](const Found &a, const Found &b) {
        return a.preference != b.preference ? a.preference < b.preference : a.rank < b.rank;
    });
    QList<qsizetype> result;
    result.reserve(static_cast<qsizetype>(found.size()));
    for (const Found &one : found)
        result.append(one.index);
    return result;
}
