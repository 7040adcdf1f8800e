#include "core/timing/CueCut.h"

#include "core/ConversionError.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(CueCut, parts_a_text_near_what_has_been_shown_of_it)
{
    struct Row
    {
        const char *name;
        QString text;
        double share;
        QString head;
    };
    const Row rows[] = {
        {"behind a comma near it", u"大家好，今天我们聊聊调色"_s, 0.4, u"大家好，"_s},
        {"between words, not within one", u"今天我们聊聊调色"_s, 0.44, u"今天我们"_s},
        {"later", u"今天我们聊聊调色"_s, 0.75, u"今天我们聊聊"_s},
        {"between lines", u"第一行\n第二行文字"_s, 0.5, u"第一行\n"_s},
        {"English between words", u"so this is where we begin"_s, 0.5, u"so this is "_s},
        {"within a word when there is only one", u"hello"_s, 0.5, u"he"_s},
        {"two characters", u"你好"_s, 0.01, u"你"_s},
        {"a single one", u"好"_s, 0.5, {}},
        {"a single one of several units", u"👨‍👩‍👧"_s, 0.5, {}},
    };
    for (const Row &row : rows) {
        const auto place = CueCut::place(row.text, row.share);
        EXPECT_EQ(place.has_value(), !row.head.isEmpty()) << row.name;
        EXPECT_EQ(row.text.first(place.value_or(0)), row.head) << row.name << ": " << qPrintable(row.head);
    }
}

TEST(CueCut, cuts_at_the_frame_and_nowhere_outside_the_cue)
{
    const QList<Subtitle> items{{.id = 7, .start = 1'000, .end = 3'000, .text = u"大家好，欢迎回来"_s},
                                {.id = 3, .start = 3'000, .end = 4'000, .text = u"好"_s}};
    const FrameGrid grid{.numerator = 25, .denominator = 1};
    EXPECT_EQ(CueCut::cut(items, 0, 1'950, grid),
              (QList<Subtitle>{{.id = 7, .start = 1'000, .end = 1'960, .text = u"大家好，"_s},
                               {.id = 8, .start = 1'960, .end = 3'000, .text = u"欢迎回来"_s},
                               items[1]}));
    const std::tuple<qsizetype, qint64, QString> refused[] = {{0, 1'019, u"播放头不在所选字幕之内，不能在这里拆分。"_s},
                                                              {0, 2'981, u"播放头不在所选字幕之内，不能在这里拆分。"_s},
                                                              {0, 9'000, u"播放头不在所选字幕之内，不能在这里拆分。"_s},
                                                              {1, 3'500, u"这条字幕只有一个字，不能拆分。"_s}};
    for (const auto &[index, time, sentence] : refused) {
        try {
            CueCut::cut(items, index, time, grid);
            ADD_FAILURE() << time;
        } catch (const ConversionError &error) {
            EXPECT_EQ(error.message(), sentence) << time;
        }
    }
}
