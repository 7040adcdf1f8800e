#include "app/fonts/FontNames.h"

#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Entry
{
    quint16 platform = 3;
    quint16 encoding = 1;
    quint16 language = 0x0409;
    quint16 name = 1;
    QByteArray bytes = {};
};

QByteArray number(int value)
{
    QByteArray bytes(2, '\0');
    qToBigEndian(static_cast<quint16>(value), bytes.data());
    return bytes;
}

QByteArray utf16(QStringView text)
{
    QByteArray bytes;
    for (const QChar unit : text)
        bytes += number(unit.unicode());
    return bytes;
}

QByteArray table(const QList<Entry> &entries, int format = 0)
{
    QByteArray records =
        number(format) + number(static_cast<int>(entries.size())) + number(static_cast<int>(6 + 12 * entries.size()));
    QByteArray strings;
    for (const Entry &entry : entries) {
        records += number(entry.platform) + number(entry.encoding) + number(entry.language) + number(entry.name) +
                   number(static_cast<int>(entry.bytes.size())) + number(static_cast<int>(strings.size()));
        strings += entry.bytes;
    }
    return records + strings;
}

Entry english(QStringView text, quint16 name = 1)
{
    return {.language = 0x0409, .name = name, .bytes = utf16(text)};
}

Entry chinese(QStringView text, quint16 language = 0x0804, quint16 name = 1)
{
    return {.language = language, .name = name, .bytes = utf16(text)};
}

Entry macintosh(const QByteArray &text)
{
    return {.platform = 1, .encoding = 0, .language = 0, .bytes = text};
}

} // namespace

TEST(FontNames, reads_what_fonts_say_of_themselves)
{
    struct Case
    {
        const char *name;
        QByteArray table;
        QString chinese;
        QString english;
    };
    const QList<Case> cases{
        {"no names", table({}), {}, {}},
        {"both languages", table({english(u"Source Han Sans CN"), chinese(u"思源黑体")}), u"思源黑体"_s,
         u"Source Han Sans CN"_s},
        {"format 1 without tags", table({english(u"Kai")}, 1), {}, u"Kai"_s},
        {"typographic family first", table({english(u"Kai Light"), english(u"Kai", 16)}), {}, u"Kai"_s},
        {"typographic family first, in Chinese",
         table({chinese(u"楷体 细"), chinese(u"楷体", 0x0804, 16)}),
         u"楷体"_s,
         {}},
        {"mainland before Taiwan before Hong Kong",
         table({chinese(u"港", 0x0C04), chinese(u"臺", 0x0404), chinese(u"陆", 0x0804)}),
         u"陆"_s,
         {}},
        {"Hong Kong alone", table({chinese(u"港體", 0x0C04)}), u"港體"_s, {}},
        {"Macintosh name", table({macintosh("Songti")}), {}, u"Songti"_s},
        {"Windows before Macintosh", table({macintosh("Old"), english(u"New")}), {}, u"New"_s},
        {"beyond the basic plane", table({chinese(u"𠮷体")}), u"𠮷体"_s, {}},
        {"other languages and names passed over",
         table({{.language = 0x0411, .bytes = utf16(u"ゴシック")}, english(u"Bold", 2)}),
         {},
         {}},
        {"other encodings passed over", table({{.encoding = 3, .language = 0x0804, .bytes = "abc"}}), {}, {}},
        {"malformed in another language", table({{.language = 0x0411, .bytes = "odd"}, english(u"Kai")}), {}, u"Kai"_s},
    };
    for (const Case &row : cases) {
        const FontNames::Names names = FontNames::read(row.table);
        EXPECT_EQ(names.chinese, row.chinese) << row.name;
        EXPECT_EQ(names.english, row.english) << row.name;
    }
    EXPECT_EQ(FontNames::read(table({english(u"A"), english(u"A", 16), chinese(u"甲")})).families,
              (QStringList{u"A"_s, u"甲"_s}));
}

TEST(FontNames, gives_nothing_from_a_malformed_table)
{
    const QByteArray good = table({english(u"Kai"), chinese(u"楷体")});
    ASSERT_FALSE(FontNames::read(good).english.isEmpty());
    for (qsizetype length = 0; length < good.size(); ++length)
        EXPECT_EQ(FontNames::read(good.first(length)), FontNames::Names()) << "cut at " << length;

    const auto changed = [&](qsizetype position, int value) {
        QByteArray bytes = good;
        return bytes.replace(position, 2, number(value));
    };
    EXPECT_EQ(FontNames::read(changed(0, 2)), FontNames::Names()) << "unknown format";
    EXPECT_EQ(FontNames::read(changed(2, 0xFFFF)), FontNames::Names()) << "more records than bytes";
    EXPECT_EQ(FontNames::read(changed(4, 0xFFFF)), FontNames::Names()) << "strings beyond the end";
    EXPECT_EQ(FontNames::read(changed(6 + 8, 11)), FontNames::Names()) << "a name that reaches out";
    EXPECT_EQ(FontNames::read(changed(6 + 10, 0xFFFF)), FontNames::Names()) << "a name that begins outside";
    EXPECT_EQ(FontNames::read(changed(6 + 8, 5)), FontNames::Names()) << "half a character";
    EXPECT_EQ(FontNames::read(changed(6 + 8, 0)), FontNames::Names()) << "no characters";
    EXPECT_EQ(FontNames::read(table({english(QString(257, u'A'))})), FontNames::Names()) << "too long";
    EXPECT_FALSE(FontNames::read(table({english(QString(256, u'A'))})).english.isEmpty()) << "just short enough";
    EXPECT_EQ(FontNames::read(table({english(QString(QChar(0xD842)))})), FontNames::Names()) << "half a pair";
    EXPECT_EQ(FontNames::read(table({english(u"A\tB")})), FontNames::Names()) << "a control character";
    EXPECT_EQ(FontNames::read(table({macintosh("\xE9t\xE9")})), FontNames::Names()) << "not ASCII";
}
