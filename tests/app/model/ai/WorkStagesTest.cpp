#include "app/model/ai/WorkStages.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(WorkStages, go_on_while_only_their_numbers_change)
{
    WorkStages stages;
    stages.take({.what = u"正在读取 FCP 音轨 20 / 45"_s}, 0);
    stages.take({.what = u"正在读取 FCP 音轨 45 / 45"_s}, 900);
    stages.take({.what = u"音频转写中 · 已用时 0:01"_s}, 1'000);
    stages.take({.what = u"音频转写中 · 已用时 0:02"_s}, 2'000);
    EXPECT_EQ(stages.all(), (QList<WorkStages::Stage>{{.what = u"正在读取 FCP 音轨"_s, .beganMS = 0, .endedMS = 1'000},
                                                      {.what = u"音频转写中"_s, .beganMS = 1'000}}));
    stages.end(5'000);
    stages.end(6'000);
    EXPECT_EQ(stages.all().last().endedMS, 5'000);
}

TEST(WorkStages, what_is_left_counts_down_and_never_to_nothing)
{
    WorkStages stages;
    stages.take({.what = u"正在识别语音"_s}, 0);
    EXPECT_EQ(stages.leftMS(1'000), std::nullopt) << "nobody knows";
    stages.take({.what = u"正在识别语音"_s, .share = 0.5, .leftMS = 60'000}, 60'000);
    struct Row
    {
        qint64 nowMS;
        qint64 leftMS;
    };
    for (const Row &row : {Row{60'000, 60'000}, Row{75'000, 45'000}, Row{90'000, 30'000},
                           // What was promised did not come: by now it takes as long again.
                           Row{110'000, 50'000}, Row{180'000, 120'000}})
        EXPECT_EQ(stages.leftMS(row.nowMS), row.leftMS) << row.nowMS;
    stages.take({.what = u"正在识别语音"_s, .share = 1.0, .leftMS = 0}, 200'000);
    EXPECT_EQ(stages.leftMS(200'000), 1'000);
    stages.take({.what = u"正在校对"_s}, 200'000);
    EXPECT_EQ(stages.leftMS(201'000), std::nullopt) << "of another stage";
}
