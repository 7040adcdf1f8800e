#include "tests/support/Events.h"
#include "tests/support/ModelTest.h"
#include "tests/support/StoryDocument.h"

using namespace Qt::StringLiterals;

namespace {

Tag title(const QByteArray &attributes, const QByteArray &text)
{
    return tag("title ref=title " + attributes, {tag("text", {textTag("text-style ref=ts1", text)})});
}

/// A project in which titles of two languages stand.
class TitleWritingTest : public ModelTest
{
protected:
    const QByteArray document = StoryDocument::project(
        "20s", {tag("gap offset=0s duration=20s", {title("lane=1 offset=1s duration=2s role=中文", "你好"),
                                                   title("lane=1 offset=7s duration=1s role=中文", "再见"),
                                                   title("lane=2 offset=1s duration=2s role=English", "Hello")})});

    void loadProject() { load(write(u"成片.fcpxml"_s, document)); }

    TitleWriting &writing() { return model->titleWriting(); }

    void show()
    {
        model->showTitleWriting();
        settle();
    }

    QByteArray written()
    {
        writing().write(home(u"out.fcpxml"_s));
        settle();
        return read(home(u"out.fcpxml"_s));
    }
};

} // namespace

TEST_F(TitleWritingTest, titles_of_a_project_are_offered_and_read_as_tracks)
{
    loadTexts({u"原"_s});
    model->setText(0, u"原来的"_s);
    loadProject();
    EXPECT_EQ(model->keptProject().offered(), 3);
    EXPECT_EQ(texts(), QStringList{u"原来的"_s}) << "nothing is read unasked";
    model->readProjectTitles();
    settle();
    EXPECT_EQ(texts(), (QStringList{u"你好"_s, u"再见"_s}));
    EXPECT_EQ(model->tracks().size(), 2);
    EXPECT_EQ(model->message(), u"已读取 3 条字幕，分为 2 组"_s);
    EXPECT_EQ(model->keptProject().offered(), 0);
    const auto isKept = [&] {
        return std::ranges::any_of(model->recentWork(), [](const auto &entry) { return entry.title == u"片段.srt"_s; });
    };
    EXPECT_TRUE(Events::waitFor(isKept)) << "what was worked on can be had back";
    const QList<SubtitleTrack> tracks = model->tracks();
    restart();
    EXPECT_EQ(model->tracks(), tracks) << "where cues came from outlasts the program";
    model->undo();
    load(write(u"空.fcpxml"_s, StoryDocument::project("20s", {tag("gap offset=0s duration=20s")})));
    EXPECT_EQ(model->keptProject().offered(), 0);
}

TEST_F(TitleWritingTest, changed_words_go_back_into_the_titles_they_came_from)
{
    loadProject();
    model->readProjectTitles();
    settle();
    model->setText(1, u"回头见"_s);
    model->setTimes(0, 2'000, 3'000);
    model->selectTrack(model->tracks().last().id);
    model->setText(0, u"Hi"_s);
    show();
    EXPECT_EQ(writing().status(), u"1 条文字改动"_s);
    EXPECT_EQ(written(), QByteArray(document).replace("Hello", "Hi"));
    EXPECT_EQ(model->message(), u"已写回 · 1 条文字改动"_s);
    EXPECT_FALSE(writing().isShown());

    model->selectTrack(model->tracks().first().id);
    show();
    EXPECT_EQ(writing().status(), u"1 条文字改动 · 移动 1 条（只列出）"_s);
    EXPECT_EQ(written(), QByteArray(document).replace("再见", "回头见"));
    show();
    writing().setScope(Retext::Scope::everything);
    settle();
    EXPECT_EQ(writing().status(), u"1 条文字改动 · 移动 1 条"_s);
    EXPECT_TRUE(written().contains("offset=\"2s\""));
    EXPECT_EQ(read(home(u"成片.fcpxml"_s)), document);
}

TEST_F(TitleWritingTest, a_translation_finds_its_titles_by_their_times)
{
    loadProject();
    loadCues({{.id = 1, .start = 1'000, .end = 3'000, .text = u"Good day"_s},
              {.id = 2, .start = 7'000, .end = 8'000, .text = u"See you"_s}});
    show();
    EXPECT_EQ(writing().status(), u"2 条文字改动"_s) << "of the two tracks the one that begins as often";
    model->setText(0, u"Morning"_s);
    EXPECT_FALSE(writing().isShown()) << "it would be about other words";
    loadCues({{.id = 1, .start = 500, .end = 900, .text = u"别处"_s}}, u"别处.srt"_s);
    show();
    EXPECT_TRUE(writing().isRefused());
    EXPECT_FALSE(writing().canWrite());
    writing().close();
    model->releaseProject();
    answer.clear();
    show();
    EXPECT_EQ(asked, u"选择标题所在的 FCP 项目"_s);
    EXPECT_FALSE(writing().isShown());
}
