#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"

using namespace Qt::StringLiterals;

using RecentWorkTest = ModelTest;

TEST_F(RecentWorkTest, an_edited_job_can_be_had_back_after_an_import_and_a_restart)
{
    const auto titles = [&] {
        QStringList result;
        for (const RecentWork::Entry &entry : model->recentWork()) {
            if (entry.kind == RecentWork::Kind::session)
                result += entry.title;
        }
        return result;
    };
    loadCues(Generator(1).cues(3), u"甲.srt"_s);
    loadCues(Generator(2).cues(3), u"乙.srt"_s);
    settle();
    EXPECT_EQ(titles(), QStringList()) << "a file that nobody edited is its own copy";
    model->setText(0, u"改过"_s);
    const LintoraSession edited = model->snapshot();
    loadCues(Generator(3).cues(2), u"丙.srt"_s);
    restart();
    ASSERT_EQ(titles(), QStringList{u"乙.srt"_s});
    model->openRecent(*std::ranges::find(model->recentWork(), u"乙.srt"_s, &RecentWork::Entry::title));
    ASSERT_TRUE(Events::waitFor([&] { return model->source() == u"乙.srt"_s; }));
    EXPECT_EQ(model->snapshot(), edited);
    restart();
    EXPECT_EQ(titles(), QStringList({u"丙.srt"_s, u"乙.srt"_s})) << "from an earlier run: perhaps edited";
    for (int i = 0; i < 12; ++i) {
        model->setText(0, QString::number(i));
        loadCues(Generator(4).cues(2), u"%1.srt"_s.arg(i));
    }
    EXPECT_TRUE(Events::waitFor([&] { return titles().first() == u"10.srt"_s; }));
    EXPECT_EQ(titles().size(), 10);
}

TEST_F(RecentWorkTest, files_opened_of_late_are_among_the_recent_ones)
{
    const auto listed = [&] {
        QStringList result;
        for (const RecentWork::Entry &entry : model->recentWork())
            result += RecentWork::nameOf(entry.kind) + u' ' + entry.title;
        return result;
    };
    loadCues(Generator(1).cues(3), u"甲.srt"_s);
    loadCues(Generator(2).cues(4), u"乙.srt"_s);
    load(write(u"丙.mp4"_s, "x"));
    loadCues(Generator(1).cues(3), u"甲.srt"_s);
    load(write(u"丁.srt"_s, "not cues"));
    const QStringList expected{u"字幕文件 甲.srt"_s, u"音视频 丙.mp4"_s, u"字幕文件 乙.srt"_s};
    EXPECT_TRUE(Events::waitFor([&] { return listed() == expected; }))
        << "each once, and none that could not be opened";
    restart();
    EXPECT_EQ(listed(), expected);
    const RecentWork::Entry second = model->recentWork().at(2);
    model->openRecent(second);
    EXPECT_TRUE(Events::waitFor([&] { return model->items().size() == 4; }));
    EXPECT_TRUE(Events::waitFor([&] { return listed().first() == u"字幕文件 乙.srt"_s; }));

    ASSERT_TRUE(QFile::remove(second.file));
    model->openRecent(model->recentWork().first());
    settle();
    EXPECT_EQ(failure(), qt_error_string(ENOENT));
    EXPECT_EQ(model->items().size(), 4);
    EXPECT_FALSE(listed().contains(u"字幕文件 乙.srt"_s));
    restart();
    EXPECT_FALSE(listed().contains(u"字幕文件 乙.srt"_s));
    for (int i = 0; i < 9; ++i)
        loadCues(Generator(4).cues(2), u"%1.srt"_s.arg(i));
    ASSERT_TRUE(Events::waitFor([&] { return listed().contains(u"字幕文件 8.srt"_s); }));
    EXPECT_EQ(listed().filter(u"字幕文件"_s).size(), RecentFiles::most);
}
