#include "core/text/ChineseScript.h"

#include "core/Cancelled.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ChineseScript::Target;

namespace {

QString converted(const QString &text, Target to, const QStringList &kept = {})
{
    const QList<Subtitle> cues = {{.id = 7, .start = 100, .end = 200, .text = text}};
    const QList<Subtitle> result = ChineseScript::converted(cues, to, kept, [] {});
    EXPECT_EQ(result, (QList<Subtitle>{{.id = 7, .start = 100, .end = 200, .text = result.at(0).text}}));
    return result.at(0).text;
}

} // namespace

TEST(ChineseScript, converts_by_phrases)
{
    for (const auto &[traditional, simplified] : {
             std::pair(u"後來頭髮乾燥"_s, u"后来头发干燥"_s),
             {u"皇后在後面"_s, u"皇后在后面"_s},
             {u"這個\n調色 Rec.709"_s, u"这个\n调色 Rec.709"_s},
             {u"\n頭髮\n"_s, u"\n头发\n"_s},
             {u"Hello, 123"_s, u"Hello, 123"_s},
             {u""_s, u""_s},
         }) {
        EXPECT_EQ(converted(traditional, Target::simplified), simplified);
        EXPECT_EQ(converted(simplified, Target::traditional), traditional);
        EXPECT_EQ(converted(simplified, Target::simplified), simplified);
    }
}

TEST(ChineseScript, leaves_names_as_they_are_written)
{
    EXPECT_EQ(converted(u"張國榮和鄧麗君"_s, Target::simplified, {u"張國榮"_s}), u"張國榮和邓丽君"_s);
    EXPECT_EQ(converted(u"張國榮張國張"_s, Target::simplified, {u"張國"_s, u""_s, u"張國榮"_s}), u"張國榮張國张"_s);
    EXPECT_EQ(converted(u"鄧麗君"_s, Target::simplified, {u"鄧麗君"_s}), u"鄧麗君"_s);
}

TEST(ChineseScript, keeps_every_cue_apart_in_a_long_list)
{
    QList<Subtitle> cues = Generator(1).cues(3'000);
    for (qsizetype i = 0; i < cues.size(); ++i)
        cues[i].text = i % 7 == 0 ? u"only %1"_s.arg(i) : u"頭髮%1\n長%2"_s.arg(i).arg(cues[i].text);
    const QList<Subtitle> result = ChineseScript::converted(cues, Target::simplified, {}, [] {});
    ASSERT_EQ(result.size(), cues.size());
    for (qsizetype i = 0; i < cues.size(); ++i) {
        const QString expected = i % 7 == 0 ? cues[i].text : converted(cues[i].text, Target::simplified);
        ASSERT_EQ(result[i].text, expected);
        ASSERT_TRUE(i % 7 == 0 || result[i].text.startsWith(u"头发%1\n"_s.arg(i)));
    }
}

TEST(ChineseScript, ends_when_the_check_throws)
{
    int calls = 0;
    const auto check = [&] {
        if (++calls == 3)
            throw Cancelled();
    };
    QList<Subtitle> cues(20'000, {.id = 1, .start = 0, .end = 1, .text = u"頭髮"_s});
    EXPECT_THROW(ChineseScript::converted(cues, Target::simplified, {}, check), Cancelled);
}
