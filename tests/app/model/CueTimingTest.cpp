#include "app/model/CueTiming.h"

#include "core/CueEditing.h"
#include "tests/support/ModelTest.h"
#include "tests/support/OwnedCues.h"

using namespace Qt::StringLiterals;

namespace {

class CueTimingTest : public ModelTest
{
protected:
    /// On 25 frames a second, of which each lasts 40 ms.
    void loadTimes(const QList<std::pair<qint64, qint64>> &times)
    {
        QList<Subtitle> cues;
        for (const auto &[start, end] : times)
            cues += {.id = cues.size() + 1, .start = start, .end = end, .text = u"大家好，欢迎回来"_s};
        loadCues(cues);
        Options options = model->options();
        options.rate = FrameRate::all()[2];
        model->setOptions(options);
    }

    CueTiming &timing() { return model->cueTiming(); }

    QString times() const
    {
        QStringList times;
        for (const Subtitle &cue : model->items())
            times += u"%1-%2"_s.arg(cue.start).arg(cue.end);
        return times.join(u' ');
    }
};

} // namespace

TEST_F(CueTimingTest, several_borders_move_as_one_step)
{
    loadTimes({{0, 1'000}, {1'000, 2'000}});
    ASSERT_TRUE(timing().setTimes({{0, 0, 1'200}, {1, 1'200, 2'000}}));
    EXPECT_EQ(times(), u"0-1200 1200-2000"_s);
    EXPECT_EQ(model->undoTitle(), u"修改时间"_s);
    model->undo();
    EXPECT_EQ(times(), u"0-1000 1000-2000"_s);
    EXPECT_FALSE(timing().setTimes({{0, 0, 1'200}, {2, 0, 1}}));
    EXPECT_FALSE(timing().setTimes({{0, 1'200, 1'200}}));
    EXPECT_EQ(failure(), u"结束时间须晚于开始时间。"_s);
    EXPECT_EQ(times(), u"0-1000 1000-2000"_s);
    EXPECT_TRUE(timing().setTimes({{0, 0, 960}}));
    EXPECT_EQ(model->failure(), std::nullopt);
}

TEST_F(CueTimingTest, a_border_goes_to_the_playhead_and_takes_along_what_touches_it)
{
    struct Row
    {
        const char *name;
        bool isStart;
        qint64 time;
        QString expected;
    };
    const Row rows[] = {
        {"a start, on its frame", true, 1'215, u"0-1200 1200-2000 3000-4000"_s},
        {"a start, earlier", true, 700, u"0-720 720-2000 3000-4000"_s},
        {"an end", false, 2'600, u"0-1000 1000-2600 3000-4000"_s},
        {"an end not past the next", false, 3'500, u"0-1000 1000-3000 3000-4000"_s},
        {"a start at the end", true, 2'000, {}},
        {"an end at the start", false, 990, {}},
    };
    for (const Row &row : rows) {
        loadTimes({{0, 1'000}, {1'000, 2'000}, {3'000, 4'000}});
        const QString before = times();
        EXPECT_EQ(row.isStart ? timing().setStart(1, row.time) : timing().setEnd(1, row.time), !row.expected.isEmpty());
        EXPECT_EQ(times(), row.expected.isEmpty() ? before : row.expected) << row.name;
        EXPECT_EQ(failure(), row.expected.isEmpty() ? u"结束时间须晚于开始时间。"_s : QString()) << row.name;
    }
    EXPECT_FALSE(timing().setStart(3, 0));
    EXPECT_FALSE(timing().setEnd(-1, 0));
}

TEST_F(CueTimingTest, a_new_cue_stands_where_it_was_drawn)
{
    loadTimes({{0, 1'000}, {3'000, 4'000}});
    EXPECT_EQ(timing().insert(1'200, 2'400), 1);
    EXPECT_EQ(times(), u"0-1000 1200-2400 3000-4000"_s);
    EXPECT_EQ(model->items().at(1).id, 3);
    EXPECT_EQ(model->undoTitle(), u"插入字幕"_s);
    model->deleteCues({0, 1, 2});
    EXPECT_EQ(timing().insert(520, 2'400), 0);
    EXPECT_EQ(times(), u"520-2400"_s);
}

TEST_F(CueTimingTest, cutting_is_refused_where_there_is_nothing_to_cut)
{
    loadTimes({{0, 1'000}});
    EXPECT_EQ(timing().cut(0, 1'000), std::nullopt);
    EXPECT_EQ(failure(), u"播放头不在所选字幕之内，不能在这里拆分。"_s);
    EXPECT_EQ(timing().cut(1, 500), std::nullopt);
    EXPECT_EQ(timing().cut(0, 480), 1);
    EXPECT_EQ(times(), u"0-480 480-1000"_s);
    EXPECT_EQ(texts(), (QStringList{u"大家好，"_s, u"欢迎回来"_s}));
}

TEST_F(CueTimingTest, refuses_all_while_the_cues_have_another_owner)
{
    loadTimes({{0, 1'000}, {3'000, 4'000}});
    const QList<Subtitle> before = model->items();
    const OwnedCues owned(*model);
    EXPECT_FALSE(timing().setTimes({{0, 0, 960}}));
    EXPECT_EQ(failure(), u"任务处理中，请先取消再编辑字幕"_s);
    EXPECT_FALSE(timing().setStart(1, 3'400));
    EXPECT_FALSE(timing().insert(1'200, 2'400));
    EXPECT_FALSE(timing().cut(0, 480));
    EXPECT_EQ(model->items(), before);
}
