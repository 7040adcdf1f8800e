#include "app/fonts/FontNames.h"

#include <QtEndian>

#include <algorithm>
#include <optional>

namespace {

constexpr qsizetype headerSize = 6;
constexpr qsizetype recordSize = 12;
constexpr qsizetype longestName = 512; ///< Bytes. No family is called by more than 256 characters.

constexpr quint16 familyName = 1;
constexpr quint16 typographicFamilyName = 16;

enum Platform : quint16
{
    macintosh = 1,
    windows = 3,
};

/// What is said in which language, in the order in which names are preferred.
enum class Language
{
    mainland,
    taiwan,
    hongKong,
    english,
    other,
};

quint16 numberAt(QByteArrayView table, qsizetype position)
{
    return qFromBigEndian<quint16>(table.data() + position);
}

struct Record
{
    quint16 platform;
    quint16 encoding;
    quint16 language;
    quint16 name;
    QByteArrayView bytes;
};

Language languageOf(const Record &record)
{
    if (record.platform == macintosh)
        return record.encoding == 0 && record.language == 0 ? Language::english : Language::other;
    // Other encodings of the Windows platform are those of old systems.
    constexpr quint16 symbols = 0;
    constexpr quint16 basicPlane = 1;
    constexpr quint16 fullRange = 10;
    if (record.platform != windows ||
        (record.encoding != symbols && record.encoding != basicPlane && record.encoding != fullRange))
        return Language::other;
    switch (record.language) {
    case 0x0804:
        return Language::mainland;
    case 0x0404:
        return Language::taiwan;
    case 0x0C04:
        return Language::hongKong;
    case 0x0409:
        return Language::english;
    default:
        return Language::other;
    }
}

/// Absent when the bytes are no text, or no name.
std::optional<QString> textOf(const Record &record)
{
    if (record.bytes.isEmpty() || record.bytes.size() > longestName)
        return std::nullopt;
    QString text;
    if (record.platform == macintosh) {
        text = QString::fromLatin1(record.bytes);
        if (std::ranges::any_of(text, [](QChar character) { return character.unicode() > 0x7E; }))
            return std::nullopt;
    } else {
        if (record.bytes.size() % 2 != 0)
            return std::nullopt;
        for (qsizetype at = 0; at < record.bytes.size(); at += 2)
            text += QChar(numberAt(record.bytes, at));
    }
    if (!text.isValidUtf16() || std::ranges::any_of(text, [](QChar character) { return character.unicode() < 0x20; }))
        return std::nullopt;
    return text;
}

/// Collects names; the first of equal rank stays.
class Collector
{
public:
    void add(const Record &record, Language language, const QString &text)
    {
        if (!m_names.families.contains(text))
            m_names.families.append(text);
        // A typographic family holds all faces of one design; a plain one at most four of them.
        const int faces = record.name == typographicFamilyName ? 0 : 1;
        if (language == Language::english)
            offer(m_names.english, m_englishRank, faces * 2 + (record.platform == windows ? 0 : 1), text);
        else
            offer(m_names.chinese, m_chineseRank, static_cast<int>(language) * 2 + faces, text);
    }

    const FontNames::Names &names() const { return m_names; }

private:
    static void offer(QString &name, int &rank, int newRank, const QString &text)
    {
        if (newRank >= rank)
            return;
        rank = newRank;
        name = text;
    }

    static constexpr int none = 100;
    FontNames::Names m_names;
    int m_chineseRank = none;
    int m_englishRank = none;
};

} // namespace

FontNames::Names FontNames::read(QByteArrayView table)
{
    if (table.size() < headerSize || numberAt(table, 0) > 1)
        return {};
    const qsizetype count = numberAt(table, 2);
    const qsizetype strings = numberAt(table, 4);
    if (headerSize + count * recordSize > table.size() || strings > table.size())
        return {};
    Collector collector;
    for (qsizetype index = 0; index < count; ++index) {
        const qsizetype at = headerSize + index * recordSize;
        const qsizetype length = numberAt(table, at + 8);
        const qsizetype begin = strings + numberAt(table, at + 10);
        if (begin + length > table.size())
            return {};
        const Record record{.platform = numberAt(table, at),
                            .encoding = numberAt(table, at + 2),
                            .language = numberAt(table, at + 4),
                            .name = numberAt(table, at + 6),
                            .bytes = table.sliced(begin, length)};
        if (record.name != familyName && record.name != typographicFamilyName)
            continue;
        const Language language = languageOf(record);
        if (language == Language::other)
            continue;
        const std::optional<QString> text = textOf(record);
        if (!text)
            return {};
        collector.add(record, language, *text);
    }
    return collector.names();
}
