#include "core/text/breaking/BreakableCues.h"

#include "core/Cancelled.h"
#include "core/text/ColumnWidth.h"
#include "tests/support/Generator.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const auto noCheck = [] {};

Subtitle cue(qint64 start, qint64 end, const QString &text)
{
    return {.id = 1, .start = start, .end = end, .text = text};
}

QList<Subtitle> broken(const Subtitle &item, BreakableCues::Limits limits, const QList<HeardWord> &words = {})
{
    return BreakableCues({item}, noCheck).inCues(limits, words, noCheck);
}

/// The texts of the cues made of one, with | between them and / for line feeds.
QString breaks(const QString &text, int columns, int lines = 1)
{
    QStringList pieces;
    for (const Subtitle &piece : broken(cue(0, 60'000, text), {.columns = columns, .lines = lines}))
        pieces += QString(piece.text).replace(u'\n', u'/');
    return pieces.join(u'|');
}

/// The times of the cues made of one.
QList<QPair<qint64, qint64>> times(const Subtitle &item, BreakableCues::Limits limits,
                                   const QList<HeardWord> &words = {})
{
    QList<QPair<qint64, qint64>> result;
    for (const Subtitle &piece : broken(item, limits, words))
        result += {piece.start, piece.end};
    return result;
}

QString withoutSpace(QString text)
{
    text.removeIf([](QChar c) { return c.isSpace(); });
    return text;
}

/// Texts of both languages, with numbers, brackets, blanks and marks.
QList<Subtitle> mixedCues(qsizetype count)
{
    Generator generator(7);
    QList<Subtitle> cues = generator.cues(count, 40);
    for (Subtitle &item : cues) {
        item.text.clear();
        for (qint64 parts = generator.number(1, 9); parts > 0; --parts) {
            item.text += generator.chance(60)
                             ? generator.speech(1, 14)
                             : generator.pick(QStringList{u"Final Cut Pro"_s, u"325 mm"_s, u"Rec.709"_s,
                                                          u"《霸王别姬》"_s, u"（笑）"_s, u"👨‍👩‍👧"_s,
                                                          u"don’t go"_s, u"三百二十五个"_s, u"“好”"_s});
            item.text += generator.pick(QStringList{u""_s, u""_s, u"，"_s, u"。"_s, u" "_s, u"  "_s, u"\n"_s, u"（"_s});
        }
        item.text = item.text.trimmed();
        if (item.text.isEmpty())
            item.text = u"好"_s;
    }
    return cues;
}

} // namespace

TEST(BreakableCues, breaks_where_an_editor_would)
{
    for (const QString &expected : {
             u"因为今天我们要聊一聊调色|所以先把素材转换到Rec.709|再看示波器"_s,
             u"这个功能非常好用|但是你需要先打开设置里面的选项"_s,
             u"我觉得这个方案不错|不过预算可能不够"_s,
             u"他说“我们明天见”|然后就走了剩下我一个人在那里等"_s,
             u"因為今天天氣很好|所以我們決定去公園散步|然後拍一些照片"_s,
             u"大家好，欢迎来到我的频道，|今天给大家介绍一款相机"_s,
             u"一共有三百二十五个镜头总长20分钟|导出的时候选择ProRes 422 HQ编码"_s,
             u"不管怎么样我们都要把这件事情做完"_s,
             u"如果你想要学习剪辑，|首先要做的就是多看好的作品，|然后自己动手去练习。"_s,
             u"我们在上海拍了三天，|花了大概50万元，|最后剪成了一部90分钟的纪录片"_s,
             u"打开Final Cut Pro以后|先新建一个资源库然后把素材拖进来"_s,
             u"The quick brown fox jumps|over the lazy dog|because it was bored,|and then it went home."_s,
             u"这是一个非常非常非常重要的决定|因为它关系到整个项目的成败|和我们所有人的未来"_s,
         })
        EXPECT_EQ(
            breaks(QString(expected).replace(QRegularExpression(u"(?<=[a-z,])\\|(?=[a-z])"_s), u" "_s).remove(u'|'), 16)
                .toStdString(),
            expected.toStdString());
    EXPECT_EQ(breaks(u"今天天气很好 我们去公园散步 顺便拍一些照片吧"_s, 16),
              u"今天天气很好 我们去公园散步|顺便拍一些照片吧"_s);
    EXPECT_EQ(breaks(u"大家好，欢迎来到我的频道，今天给大家介绍一款相机"_s, 10).toStdString(),
              "大家好，|欢迎来到我的频道，|今天给大家|介绍一款相机");
}

TEST(BreakableCues, never_breaks_inside_what_belongs_together)
{
    for (const auto &[text, columns, whole] : {
             std::tuple(u"我们今天一共拍了三百二十五个镜头"_s, 9, u"三百二十五个"_s),
             {u"镜头的焦距大概是 325 mm 左右吧"_s, 9, u"325 mm"_s},
             {u"把所有的素材都转换到Rec.709再看"_s, 10, u"Rec.709"_s},
             {u"这部电影的名字叫《霸王别姬》好看"_s, 9, u"《霸王别姬》"_s},
             {u"他说“我们明天再见”就走出去了"_s, 10, u"“我们明天再见”"_s},
             {u"他说\"我们明天再见\"就走出去了"_s, 10, u"\"我们明天再见\""_s},
             {u"我们来聊一聊人工智能和示波器"_s, 7, u"聊一聊"_s},
             {u"价格是12,999元我觉得有点儿贵"_s, 8, u"12,999元"_s},
             {u"一二三四五，上山打老虎。老虎"_s, 6, u"老虎。"_s},
         }) {
        const QString result = breaks(text, columns);
        EXPECT_TRUE(result.contains(u'|') && result.contains(whole)) << result.toStdString();
    }
}

TEST(BreakableCues, puts_width_before_all)
{
    EXPECT_EQ(breaks(u"《一二三四五六七八》"_s, 6), u"《一二三四|五六七八》"_s);
    EXPECT_EQ(breaks(u"Donaudampfschifffahrt"_s, 6).remove(u'|'), u"Donaudampfschifffahrt"_s);
    EXPECT_EQ(breaks(u"好。"_s, 1), u"好|。"_s);
    EXPECT_EQ(breaks(u"👨‍👩‍👧👨‍👩‍👧"_s, 1), u"👨‍👩‍👧|👨‍👩‍👧"_s);
}

TEST(BreakableCues, keeps_characters_order_and_time_of_any_text)
{
    const QList<Subtitle> cues = mixedCues(1'500);
    const BreakableCues breakable(cues, noCheck);
    for (const int columns : {1, 5, 10, 16}) {
        for (const int lines : {1, 2, 3}) {
            const BreakableCues::Limits limits{.columns = columns, .lines = lines, .grid = {25, 1}};
            QString before;
            QString after;
            for (const Subtitle &item : cues)
                before += withoutSpace(item.text);
            qint64 end = 0;
            qint64 id = 0;
            for (const Subtitle &item : breakable.inCues(limits, {}, noCheck)) {
                after += withoutSpace(item.text);
                ASSERT_EQ(item.id, ++id);
                ASSERT_LT(item.start, item.end);
                ASSERT_GE(item.start, end);
                end = item.end;
                ASSERT_EQ(item.text, item.text.trimmed());
                ASSERT_FALSE(item.text.isEmpty());
                ASSERT_TRUE(ColumnWidth::ofWidestLine(item.text) <= 2 * columns || item.end - item.start < 400)
                    << item.text.toStdString();
            }
            ASSERT_EQ(after, before);
        }
        const QList<Subtitle> inside = breakable.inLines({.columns = columns}, noCheck);
        for (qsizetype i = 0; i < cues.size(); ++i) {
            ASSERT_LE(ColumnWidth::ofWidestLine(inside[i].text), 2 * columns);
            ASSERT_EQ(withoutSpace(inside[i].text), withoutSpace(cues[i].text));
            ASSERT_EQ(std::tuple(inside[i].id, inside[i].start, inside[i].end),
                      std::tuple(cues[i].id, cues[i].start, cues[i].end));
        }
    }
}

TEST(BreakableCues, fills_cues_of_several_lines)
{
    const QString text = u"如果你想要学习剪辑，首先要做的就是多看好的作品，然后自己动手去练习。"_s;
    EXPECT_EQ(breaks(text, 16, 2), u"如果你想要学习剪辑，/首先要做的就是多看好的作品，|然后自己动手去练习。"_s);
    EXPECT_EQ(breaks(text, 16, 3), u"如果你想要学习剪辑，/首先要做的就是多看好的作品，/然后自己动手去练习。"_s);
    EXPECT_EQ(breaks(u"你好\nHello"_s, 16, 2), u"你好/Hello"_s);
    EXPECT_EQ(breaks(u"你好\n \nHello"_s, 16, 1), u"你好|Hello"_s);
    EXPECT_EQ(BreakableCues({cue(0, 10, u"我觉得这个方案不错 不过预算不够"_s)}, noCheck)
                  .inLines({.columns = 10}, noCheck)[0]
                  .text,
              u"我觉得这个方案不错\n不过预算不够"_s);
}

TEST(BreakableCues, shares_time_by_displayed_width_on_the_frame_grid)
{
    using Times = QList<QPair<qint64, qint64>>;
    // 9 and 8 columns of 17, at 25 frames a second: 529 ms is frame 13.
    const QString text = u"我觉得这个方案不错不过预算可能不够"_s;
    EXPECT_EQ(times(cue(7, 1'007, text), {.columns = 16, .grid = {25, 1}}), (Times{{7, 520}, {520, 1'007}}));
    EXPECT_EQ(times(cue(0, 1'000, text), {.columns = 16, .grid = {30'000, 1'001}}), (Times{{0, 534}, {534, 1'000}}));
    // Without a frame between start and end by the millisecond; without that not at all.
    EXPECT_EQ(times(cue(1, 31, text), {.columns = 16, .grid = {25, 1}}), (Times{{1, 16}, {16, 31}}));
    EXPECT_EQ(times(cue(0, 1, text), {.columns = 16}), (Times{{0, 1}}));
    EXPECT_EQ(times(cue(40, 120, text), {.columns = 16, .grid = {25, 1}}), (Times{{40, 80}, {80, 120}}));
}

TEST(BreakableCues, follows_word_times)
{
    using Times = QList<QPair<qint64, qint64>>;
    const Subtitle item = cue(1'000, 9'000, u"我觉得这个方案不错，不过预算可能不够"_s);
    const BreakableCues::Limits limits{.columns = 16, .grid = {25, 1}};
    const QList<HeardWord> words = {{u"之前"_s, 0, 900},           {u"我觉得"_s, 1'000, 1'500},
                                    {u"这个 "_s, 1'500, 2'000},    {u"方岸"_s, 2'000, 2'500},
                                    {u"不错"_s, 2'500, 3'010},     {u"不过"_s, 4'990, 5'500},
                                    {u"预算可能"_s, 5'500, 6'500}, {u"之后"_s, 9'100, 9'300}};
    EXPECT_EQ(times(item, limits, words), (Times{{1'000, 3'000}, {5'000, 9'000}}));
    // A short silence is closed.
    QList<HeardWord> closer = words;
    closer[4].endMS = 4'920;
    EXPECT_EQ(times(item, limits, closer), (Times{{1'000, 5'000}, {5'000, 9'000}}));
    // A border between words that were not heard lies between those that were.
    const QList<HeardWord> few = {{u"我觉得"_s, 1'000, 2'000}, {u"不够"_s, 8'000, 9'000}};
    const Times between = times(item, limits, few);
    ASSERT_EQ(between.size(), 2);
    EXPECT_EQ(between[0].second, between[1].first);
    EXPECT_GT(between[1].first, 4'000);
    EXPECT_LT(between[1].first, 6'000);
}

TEST(BreakableCues, leaves_what_fits)
{
    const QList<Subtitle> cues = {{.id = 7, .start = 0, .end = 10, .text = u" 你好，世界。走吧 "_s},
                                  {.id = 3, .start = 20, .end = 30, .text = u""_s}};
    const BreakableCues breakable(cues, noCheck);
    EXPECT_EQ(breakable.inCues({.columns = 8}, {}, noCheck), cues);
    EXPECT_EQ(breakable.inLines({.columns = 8}, noCheck), cues);
    EXPECT_EQ(breakable.inLines({.columns = 7}, noCheck)[0].text, u"你好，\n世界。走吧"_s);
}

TEST(BreakableCues, ends_when_the_check_throws)
{
    const auto cancel = [] { throw Cancelled(); };
    const QList<Subtitle> cues = {cue(0, 10, u"好"_s)};
    EXPECT_THROW(BreakableCues(cues, cancel), Cancelled);
    const BreakableCues breakable(cues, noCheck);
    EXPECT_THROW(breakable.inCues({}, {}, cancel), Cancelled);
    EXPECT_THROW(breakable.inLines({}, cancel), Cancelled);
}
