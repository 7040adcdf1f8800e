#include "app/titles/TitleWrapping.h"

#include "core/text/Characters.h"
#include "tests/support/Generator.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Two columns a wide character, one a narrow one.
double columns(QStringView text)
{
    double width = 0;
    for (const char32_t scalar : Characters::Scalars(text))
        width += scalar < 0x1100 ? 1 : 2;
    return width;
}

/// The lines as they are shown, a stroke between them.
QString shown(QStringView text, double width)
{
    QStringList lines;
    for (const TitleWrapping::Line &line : TitleWrapping::wrap(text, width, columns))
        lines.append(line.text);
    return lines.join(u'|');
}

QString joined(const QList<TitleWrapping::Line> &lines)
{
    QString text;
    for (const TitleWrapping::Line &line : lines)
        text += line.text + line.ending;
    return text;
}

QString generatedTitle(Generator &generator)
{
    static const QStringList pieces{u"今天"_s,
                                    u"我们"_s,
                                    u"调色"_s,
                                    u"，"_s,
                                    u"。"_s,
                                    u"……"_s,
                                    u"——"_s,
                                    u"「"_s,
                                    u"」"_s,
                                    u"（"_s,
                                    u"）"_s,
                                    u"“"_s,
                                    u"”"_s,
                                    u" "_s,
                                    u"  "_s,
                                    u"Final"_s,
                                    u"Cut"_s,
                                    u"3.5"_s,
                                    u"1,000"_s,
                                    u"25%"_s,
                                    u"don't"_s,
                                    u"\n"_s,
                                    u"👨‍👩‍👧"_s,
                                    u"e\u0301"_s,
                                    u"　"_s,
                                    u"很长很长的字幕"_s,
                                    u"\""_s,
                                    u"https://a.b/c"_s};
    QString text;
    for (qint64 count = generator.number(0, 25); count > 0; --count)
        text += generator.pick(pieces);
    return text;
}

QStringView withoutTrailingBlanks(QStringView line)
{
    while (!line.isEmpty() && Characters::isBlank(line.back().unicode()))
        line.chop(1);
    return line;
}

qsizetype leadingBlanks(QStringView line)
{
    qsizetype count = 0;
    while (count < line.size() && Characters::isBlank(line[count].unicode()))
        ++count;
    return count;
}

struct Case
{
    QString text;
    double width;
    QString lines;
};

} // namespace

TEST(Wrapping, breaks_where_a_Chinese_typesetter_would)
{
    const QList<Case> cases{
        {u""_s, 4, u""_s},
        {u"好"_s, 2, u"好"_s},
        {u"今天调色"_s, 8, u"今天调色"_s},
        {u"今天调色"_s, 7, u"今天调|色"_s},
        {u"今天调色。好"_s, 8, u"今天调|色。好"_s},
        {u"他说「好」了"_s, 6, u"他说|「好」|了"_s},
        {u"看《影片》吧"_s, 4, u"看|《影|片》|吧"_s},
        {u"用Final剪"_s, 6, u"用|Final|剪"_s},
        {u"cut and grade"_s, 8, u"cut and|grade"_s},
        {u"I don't know"_s, 7, u"I don't|know"_s},
        {u"约1,000人"_s, 6, u"约|1,000|人"_s},
        {u"是3.5米"_s, 4, u"是|3.5|米"_s},
        {u"涨25%了"_s, 4, u"涨|25%|了"_s},
        {u"花￥100买"_s, 6, u"花|￥100|买"_s},
        {u"等等……好"_s, 6, u"等|等……|好"_s},
        {u"甲乙丙——丁"_s, 8, u"甲乙丙|——丁"_s},
        {u"他说\"好的\"吧"_s, 6, u"他说|\"好的\"|吧"_s},
        {u"甲　乙丙"_s, 4, u"甲|乙丙"_s},
        {u"上\n下一行字"_s, 6, u"上|下一行|字"_s},
        {u"上\n\n下"_s, 6, u"上||下"_s},
    };
    for (const Case &row : cases)
        EXPECT_EQ(shown(row.text, row.width), row.lines) << row.text.toStdString() << " in " << row.width;
}

TEST(Wrapping, breaks_what_is_too_wide_as_a_last_resort)
{
    EXPECT_EQ(shown(u"Supercalifragilistic", 8), u"Supercal|ifragili|stic");
    EXPECT_EQ(shown(u"是Supercalifragilistic", 8), u"是|Supercal|ifragili|stic") << "the good place comes first";
    EXPECT_EQ(shown(u"好！！！", 2), u"好！！！") << "a closing mark hangs over rather than begin a line";
    EXPECT_EQ(shown(u"e\u0301e\u0301e\u0301", 1), u"e\u0301|e\u0301|e\u0301") << "an accent stays with its letter";
    EXPECT_EQ(shown(u"今天", 0), u"今|天");
}

TEST(Wrapping, hides_blanks_only_where_it_breaks_and_keeps_them)
{
    const QList<TitleWrapping::Line> lines = TitleWrapping::wrap(u"one  two \nthree", 4, columns);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], (TitleWrapping::Line{u"one"_s, u"  "_s}));
    EXPECT_EQ(lines[1], (TitleWrapping::Line{u"two "_s, u"\n"_s}));
}

TEST(Wrapping, balances_the_lines_without_adding_one)
{
    const QList<Case> cases{
        {u"一二三四五六七"_s, 12, u"一二三四|五六七"_s},
        {u"一二三四五，六"_s, 12, u"一二三四|五，六"_s},
        {u"上\n一二三四五六七"_s, 12, u"上|一二三四|五六七"_s},
        {u"一二三"_s, 12, u"一二三"_s},
        {u"Supercalifragilistic"_s, 12, u"Supercalifra|gilistic"_s},
        {u"one two three four"_s, 14, u"one two|three four"_s},
    };
    for (const Case &row : cases) {
        QStringList lines;
        for (const TitleWrapping::Line &line : TitleWrapping::wrapBalanced(row.text, row.width, columns))
            lines.append(line.text);
        EXPECT_EQ(lines.join(u'|'), row.lines) << row.text.toStdString() << " in " << row.width;
    }
}

TEST(Wrapping, loses_and_changes_no_character)
{
    Generator generator(4711);
    for (int round = 0; round < 5'000; ++round) {
        const QString text = generatedTitle(generator);
        const auto width = static_cast<double>(generator.number(0, 24));
        ASSERT_EQ(joined(TitleWrapping::wrap(text, width, columns)), text) << width;
        ASSERT_EQ(joined(TitleWrapping::wrapBalanced(text, width, columns)), text) << width;
    }
}

TEST(Wrapping, keeps_the_width_and_the_marks_in_every_text)
{
    Generator generator(815);
    for (int round = 0; round < 5'000; ++round) {
        const QString text = generatedTitle(generator);
        const auto width = static_cast<double>(generator.number(4, 24));
        bool isBroken = false;
        for (const TitleWrapping::Line &line : TitleWrapping::wrap(text, width, columns)) {
            const bool follows = isBroken && !line.text.isEmpty();
            isBroken = !line.ending.endsWith(u'\n');
            ASSERT_FALSE(follows && u"，。）」”…%"_s.contains(line.text[0])) << text.toStdString() << " in " << width;
            const bool isStraightlyQuoted = text.contains(u'"'); // Their sides are known in the whole line only.
            if (columns(withoutTrailingBlanks(line.text)) <= width || isStraightlyQuoted)
                continue;
            for (qsizetype at = leadingBlanks(line.text) + 1; at < line.text.size(); ++at)
                ASSERT_FALSE(TitleWrapping::mayBreak(line.text, at))
                    << text.toStdString() << " in " << width << " at " << at << " of " << line.text.toStdString();
        }
    }
}
