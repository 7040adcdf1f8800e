#include "core/CueEditing.h"

#include "core/ConversionError.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QList<Subtitle> three{{.id = 1, .start = 0, .end = 1'000, .text = u"大家好"_s},
                            {.id = 7, .start = 1'000, .end = 3'000, .text = u"今天聊 color"_s},
                            {.id = 3, .start = 3'100, .end = 4'000, .text = u"再见"_s}};

template <class Edit>
QString refusal(const Edit &edit)
{
    try {
        edit();
    } catch (const ConversionError &error) {
        return error.message();
    }
    return {};
}

} // namespace

TEST(CueEditing, tidies_typed_text_and_refuses_what_no_title_can_show)
{
    EXPECT_EQ(CueEditing::tidied(u"  你好 \r\n\r\n 世界\u2028!\n"_s, 1), u"你好\n世界\n!"_s);
    EXPECT_EQ(CueEditing::tidied(u"a\tb"_s, 1), u"a\tb"_s);
    EXPECT_EQ(refusal([] { CueEditing::tidied(u" \n\u3000"_s, 1); }), u"字幕文字不能为空；不需要的字幕请删除。"_s);
    for (const QString &text : {u"a\u0001"_s, QString(QChar(0xD800)), u"\uFFFE"_s})
        EXPECT_EQ(refusal([&] { CueEditing::tidied(text, 12); }), u"第 12 条字幕含无效控制字符。"_s);
}

TEST(CueEditing, sets_times_that_a_cue_can_have)
{
    EXPECT_EQ(CueEditing::settingTimes(three, 1, 0, CueEditing::latest)[1].end, CueEditing::latest);
    EXPECT_EQ(refusal([] { CueEditing::settingTimes(three, 1, 5, 5); }), u"结束时间须晚于开始时间。"_s);
    EXPECT_EQ(refusal([] { CueEditing::settingTimes(three, 1, -1, 5); }), u"时间须在 0 到 100 小时之间。"_s);
    EXPECT_EQ(refusal([] { CueEditing::settingTimes(three, 1, 0, CueEditing::latest + 1); }),
              u"时间须在 0 到 100 小时之间。"_s);
}

TEST(CueEditing, inserts_into_the_room_there_is)
{
    struct Row
    {
        qsizetype after;
        qint64 start;
        qint64 end;
    };
    QList<Subtitle> roomy = three;
    roomy[2].start = 3'700;
    for (const Row &row : {Row{2, 4'000, 6'000}, Row{1, 3'000, 3'700}, Row{0, 1'000, 2'000}, Row{-1, 0, 1'000}}) {
        const QList<Subtitle> items = CueEditing::inserting(roomy, row.after);
        const Subtitle &cue = items[row.after + 1];
        EXPECT_EQ(items.size(), 4);
        EXPECT_EQ(cue.id, 8);
        EXPECT_EQ(cue.start, row.start);
        EXPECT_EQ(cue.end, row.end);
    }
}

TEST(CueEditing, keeps_out_of_times_that_only_a_record_can_hold)
{
    const QList<Subtitle> strange{{.id = 1, .start = -9, .end = -5, .text = u"a b"_s},
                                  {.id = 2, .start = -9, .end = std::numeric_limits<qint64>::max(), .text = u"a b"_s}};
    EXPECT_EQ(CueEditing::inserting(strange, 0)[1].start, 0);
    EXPECT_EQ(refusal([&] { CueEditing::inserting(strange, 1); }), u"时间须在 0 到 100 小时之间。"_s);
    EXPECT_EQ(refusal([&] { CueEditing::splitting(strange, 1, 1); }), u"时间须在 0 到 100 小时之间。"_s);
}

TEST(CueEditing, splits_time_by_length_and_keeps_every_character)
{
    const QList<Subtitle> items = CueEditing::splitting(three, 1, 3);
    EXPECT_EQ(items[1], (Subtitle{.id = 7, .start = 1'000, .end = 1'750, .text = u"今天聊"_s}));
    EXPECT_EQ(items[2], (Subtitle{.id = 8, .start = 1'750, .end = 3'000, .text = u"color"_s}));
    EXPECT_EQ(CueEditing::joining(items, 1)[1], three[1]);

    for (const qsizetype edge : {0, 9})
        EXPECT_EQ(refusal([&] { CueEditing::splitting(three, 1, edge); }), u"请把光标放在要拆分的文字之间。"_s);
    const QList<Subtitle> narrow{{.id = 1, .start = 0, .end = 1, .text = u"ab"_s}};
    EXPECT_EQ(refusal([&] { CueEditing::splitting(narrow, 0, 1); }), u"字幕时间太短，不能拆分。"_s);
    const QList<Subtitle> pair{{.id = 1, .start = 0, .end = 9, .text = u"a😀b"_s}};
    EXPECT_EQ(refusal([&] { CueEditing::splitting(pair, 0, 2); }), u"这里是一个字的中间，不能拆分。"_s);
    const QList<Subtitle> flags{{.id = 1, .start = 0, .end = 9, .text = u"🇨🇳字幕"_s}};
    EXPECT_EQ(refusal([&] { CueEditing::splitting(flags, 0, 2); }), u"这里是一个字的中间，不能拆分。"_s);
    EXPECT_EQ(CueEditing::splitting(flags, 0, 4)[0].end, 3); // a flag is as long as a letter
    const QList<Subtitle> thirds{{.id = 1, .start = 0, .end = 10, .text = u"ab c"_s}};
    EXPECT_EQ(CueEditing::splitting(thirds, 0, 2)[0].end, 7) << "to the nearest millisecond";
}

TEST(CueEditing, joins_neighbours_over_their_whole_time)
{
    const QList<Subtitle> items = CueEditing::joining(three, 1);
    EXPECT_EQ(items[1], (Subtitle{.id = 7, .start = 1'000, .end = 4'000, .text = u"今天聊 color 再见"_s}));
    EXPECT_EQ(refusal([] { CueEditing::joining(three, 2); }), u"后面没有可合并的字幕。"_s);
}

TEST(CueEditing, places_cues_by_their_times_in_lists_of_any_order)
{
    const auto texts = [](const QList<Subtitle> &cues) {
        QString all;
        for (const Subtitle &cue : cues)
            all += cue.text + QString::number(cue.id);
        return all;
    };
    const QList<Subtitle> pasted{{.id = 1, .start = 3'000, .end = 3'050, .text = u"后"_s},
                                 {.id = 1, .start = 500, .end = 600, .text = u"前"_s}};
    EXPECT_EQ(texts(CueEditing::placing(three, pasted)), u"大家好1前8今天聊 color7后9再见3"_s);
    const QList<Subtitle> turned{three[2], three[0]};
    EXPECT_EQ(texts(CueEditing::placing(turned, pasted)), u"再见3大家好1前4后5"_s);
    EXPECT_EQ(refusal([] { CueEditing::placing(three, {{.id = 1, .start = 5, .end = 5, .text = u"好"_s}}); }),
              u"结束时间须晚于开始时间。"_s);
    EXPECT_EQ(refusal([] { CueEditing::placing(three, {{.id = 1, .start = 5, .end = 6, .text = u" "_s}}); }),
              u"字幕文字不能为空；不需要的字幕请删除。"_s);
}

TEST(CueEditing, removes_in_any_order_and_once_each)
{
    EXPECT_EQ(CueEditing::removing(three, {2, 0, 2}), QList<Subtitle>{three[1]});
}

TEST(CueEditing, always_leaves_cues_that_end_after_they_start)
{
    Generator generator(5);
    QList<Subtitle> items = generator.cues(50, 1);
    for (int round = 0; round < 2'000 && items.size() > 1; ++round) {
        const qsizetype index = generator.number(0, items.size() - 2);
        try {
            switch (generator.number(0, 3)) {
            case 0:
                items = CueEditing::splitting(items, index, generator.number(0, items[index].text.size()));
                break;
            case 1:
                items = CueEditing::joining(items, index);
                break;
            case 2:
                items = CueEditing::inserting(items, index);
                break;
            default:
                items = CueEditing::removing(items, {index});
            }
        } catch (const ConversionError &) {
            continue;
        }
        QList<qint64> ids;
        for (const Subtitle &cue : items) {
            ASSERT_LT(cue.start, cue.end);
            ASSERT_FALSE(cue.text.trimmed().isEmpty());
            ids += cue.id;
        }
        std::sort(ids.begin(), ids.end());
        ASSERT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
    }
}
