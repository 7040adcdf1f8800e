#include "app/model/FCPPasteboard.h"
#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"
#include "tests/support/OwnedCues.h"
#include "tests/support/StoryDocument.h"

#include <QDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

class ImportTest : public ModelTest
{
protected:
    static constexpr const char *unknown = "请拖入 SRT 文件，或 FCP 项目以匹配画面和帧率。";

    bool drop(const QMimeData &pasteboard)
    {
        const bool taken = model->receive(pasteboard);
        settle();
        return taken;
    }

    bool drop(const QByteArray &document) { return drop(*FCPPasteboard::offering(document)); }

    bool dropFiles(const QStringList &paths)
    {
        QMimeData files;
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls += QUrl::fromLocalFile(path);
        files.setUrls(urls);
        return drop(files);
    }
};

const QByteArray oneCue = "1\n00:00:01,000 --> 00:00:02,000\n大家好\n";

QByteArray talk(const char *duration = "10s")
{
    return StoryDocument::project(duration, {tag("asset-clip name=采访 ref=talk offset=0s start=5s duration=10s")});
}

} // namespace

TEST_F(ImportTest, an_SRT_becomes_the_job_as_one_step)
{
    loadCues(Generator(1).cues(3));
    Published published(*model);
    load(write(u"访谈.SRT"_s, oneCue));
    EXPECT_EQ(texts(), QStringList{u"大家好"_s});
    EXPECT_EQ(model->source(), u"访谈.SRT"_s);
    EXPECT_EQ(model->tracks().size(), 1);
    EXPECT_EQ(model->tracks().first().label, u"中文"_s);
    EXPECT_EQ(model->selectedTrackID(), model->tracks().first().id);
    EXPECT_EQ(model->message(), u"已载入"_s);
    EXPECT_EQ(published.take().count(u"itemsChanged"_s), 1);
    model->undo();
    EXPECT_EQ(model->items().size(), 3);
    EXPECT_EQ(model->source(), u"片段.srt"_s);
}

TEST_F(ImportTest, refuses_with_the_reason_and_leaves_the_job_alone)
{
    loadCues(Generator(1).cues(3));
    const LintoraSession before = model->snapshot();
    mkfifo(home(u"pipe.srt"_s).toLocal8Bit().constData(), 0600);
    QDir().mkdir(home(u"folder.srt"_s));
    struct Row
    {
        QString path;
        QString sentence;
    };
    const Row rows[] = {
        {write(u"a.txt"_s, "x"), QString::fromUtf8(unknown)},
        {write(u"srt"_s, oneCue), QString::fromUtf8(unknown)},
        {write(u"bad.srt"_s, oneCue + "\n2\n00:00:03,000 --> 00:00:02,000\n晚\n"),
         u"第 2 条字幕为空，或结束时间早于开始时间。"_s},
        {home(u"pipe.srt"_s), u"“pipe.srt”不是可读取的文件。"_s},
        {home(u"folder.srt"_s), u"“folder.srt”不是可读取的文件。"_s},
        {write(u"big.fcpxml"_s, QByteArray(16 * 1024 * 1024 + 1, ' ')), u"FCPXML 文件过大，请分段导入。"_s},
        {write(u"two.fcpxml"_s, StoryDocument::selection({tag("project name=a"), tag("project name=b")})),
         u"请一次拖入一个 FCP 项目，或一组选中的片段。"_s},
    };
    for (const Row &row : rows) {
        model->report({});
        load(row.path);
        EXPECT_EQ(failure(), row.sentence) << qPrintable(row.path);
        EXPECT_EQ(model->snapshot(), before);
    }
    model->load(QUrl(u"https://example.com/a.srt"_s));
    EXPECT_EQ(failure(), QString::fromUtf8(unknown));
}

TEST_F(ImportTest, refuses_cues_of_which_the_current_options_make_no_titles)
{
    Options options;
    options.bottomPercent = 41;
    model->setOptions(options);
    load(write(u"a.srt"_s, oneCue));
    EXPECT_EQ(failure(), u"画面或字体设置无效。"_s);
    EXPECT_TRUE(model->items().isEmpty());
}

TEST_F(ImportTest, keeps_the_look_but_neither_shift_nor_name_of_the_last_document)
{
    Options options;
    options.shiftMS = -5'000;
    options.name = u"上一部"_s;
    options.fontSize = 60;
    model->setOptions(options);
    load(write(u"a.srt"_s, oneCue));
    Options expected;
    expected.fontSize = 60;
    EXPECT_EQ(model->options(), expected);
    load(write(u"p.fcpxml"_s, talk()));
    load(write(u"b.srt"_s, oneCue));
    EXPECT_EQ(model->options().name, u"Film_字幕版"_s) << "what exports still go into";
}

TEST_F(ImportTest, takes_one_file_or_a_document_in_a_drop)
{
    const QString file = write(u"a.srt"_s, oneCue);
    EXPECT_TRUE(dropFiles({file}));
    EXPECT_EQ(texts(), QStringList{u"大家好"_s});
    for (const QStringList &files : {QStringList{}, QStringList{file, file}}) {
        model->report({});
        EXPECT_FALSE(dropFiles(files));
        EXPECT_EQ(failure(), u"请一次拖入一个字幕、音视频或 FCP 项目。"_s);
    }
    // A drag out of the browser may offer its files too: the document tells more.
    const auto both = FCPPasteboard::offering(talk());
    both->setUrls({QUrl::fromLocalFile(file)});
    EXPECT_TRUE(drop(*both));
    EXPECT_TRUE(model->aiTimelinePlan());
}

TEST_F(ImportTest, takes_dragged_data_up_to_its_limit_and_never_an_entity)
{
    QByteArray document = talk();
    constexpr qsizetype limit = 16 * 1024 * 1024;
    const QByteArray comment = "<!--" + QByteArray(1'000, 'x') + "-->\n";
    const qsizetype room = limit - document.size();
    document.insert(document.lastIndexOf("</fcpxml>"),
                    comment.repeated(room / comment.size()) + QByteArray(room % comment.size(), '\n'));
    EXPECT_TRUE(drop(document));
    EXPECT_EQ(failure(), QString());
    EXPECT_FALSE(drop(document + '\n'));
    EXPECT_EQ(failure(), u"FCP 数据过大或含不支持的 XML 实体。"_s);
    model->report({});
    EXPECT_FALSE(drop("<!DOCTYPE fcpxml [<!ENTITY a \"b\">]><fcpxml/>"));
    EXPECT_EQ(failure(), u"FCP 数据过大或含不支持的 XML 实体。"_s);
    QMimeData newest;
    newest.setData(u"com.apple.finalcutpro.xml"_s, "<old/>");
    newest.setData(u"com.apple.finalcutpro.xml.v1-11"_s, talk());
    drop(newest);
    EXPECT_EQ(failure(), QString());
}

TEST_F(ImportTest, a_project_is_matched_and_kept_before_its_sound_is_judged)
{
    loadCues(Generator(1).cues(3));
    const QByteArray mute = StoryDocument::project("10s", {tag("gap offset=0s duration=10s")});
    const QByteArray retimed = StoryDocument::project(
        "10s", {tag("asset-clip ref=talk offset=0s duration=10s",
                    {tag("timeMap", {tag("timept time=0s value=0s"), tag("timept time=10s value=20s")})})});
    const QByteArray lost = StoryDocument::project("10s", {tag("asset-clip ref=nowhere offset=0s duration=10s")});
    const QByteArray rate48 = StoryDocument::sequence("sequence format=p48 duration=10s",
                                                      {tag("asset-clip ref=talk offset=0s duration=10s")});
    struct Row
    {
        const char *name;
        QByteArray document;
        bool hasProject;
        bool hasPlan;
        QString message;
        QString failure;
    };
    const Row rows[] = {
        {"sound", talk(), true, true, u"已接入 FCP：Film · 1 个音频片段 · 保留剪切范围与间隔"_s, {}},
        {"silence", mute, true, false, u"已匹配项目；没有发现可识别音轨"_s, {}},
        {"only retimed sound", retimed, true, false, u"已匹配项目；没有发现可识别音轨"_s, {}},
        {"unreadable sound", lost, true, false, {}, u"FCP 片段缺少媒体资源，请重新拖入。"_s},
        {"rate we cannot write", rate48, false, true, {}, u"项目帧率暂不支持。"_s},
        {"clips",
         StoryDocument::selection({tag("asset-clip name=采访 ref=talk offset=0s duration=10s format=p25")}),
         false,
         true,
         u"已接入 FCP 时间线 · 1 个音频片段 · 保留剪切范围与间隔"_s,
         {}},
    };
    for (const Row &row : rows) {
        restart();
        Options options = model->options();
        options.rate = FrameRate::all()[7];
        options.bottomPercent = 33;
        model->setOptions(options);
        model->report({});
        load(write(u"p.fcpxml"_s, row.document));
        EXPECT_EQ(model->keptProject().project().has_value(), row.hasProject) << row.name;
        EXPECT_EQ(model->aiTimelinePlan().has_value(), row.hasPlan) << row.name;
        if (row.failure.isEmpty()) {
            EXPECT_EQ(model->message(), row.message) << row.name;
        }
        EXPECT_EQ(failure(), row.failure) << row.name;
        const bool matches = row.hasProject || !row.message.isEmpty();
        EXPECT_EQ(model->options().rate.label, matches ? u"25"_s : u"60"_s) << row.name;
        EXPECT_EQ(model->options().bottomPercent, 33) << row.name;
        EXPECT_EQ(model->items().size(), 3) << row.name;
    }
}

TEST_F(ImportTest, a_project_matches_every_track)
{
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"你好\nHello"_s}});
    model->textTools().separateLanguages();
    load(write(u"p.fcpxml"_s, talk()));
    ASSERT_EQ(model->tracks().size(), 3);
    for (const SubtitleTrack &track : model->tracks()) {
        EXPECT_EQ(track.options.rate.label, u"25"_s);
        EXPECT_EQ(track.options.height, 1080);
        EXPECT_EQ(track.options.fontSize, 24);
    }
    const Options matched = model->options();
    Options other = matched;
    other.height = 100;
    other.fontSize = 60;
    model->setOptions(other);
    model->matchProject();
    EXPECT_EQ(model->options(), matched);
}

TEST_F(ImportTest, a_refused_timeline_can_be_taken_without_the_clips_that_cannot_be_placed)
{
    const auto clips = {tag("asset-clip name=采访 ref=talk offset=0s start=5s duration=5s"),
                        tag("mc-clip name=多机位 ref=none offset=5s duration=5s")};
    for (const QByteArray &document : {StoryDocument::project("10s", clips), StoryDocument::selection(clips)}) {
        const bool isProject = document.contains("<project");
        load(write(u"p.fcpxml"_s, document));
        EXPECT_EQ(failure(), u"多机位片段请先在 FCP 导出音频，再生成字幕。"_s);
        EXPECT_EQ(model->keptProject().project().has_value(), isProject)
            << "titles can be written into a project all the same";
        EXPECT_EQ(model->aiTimelinePlan(), std::nullopt) << "nobody has asked for the rest";
        model->recognition().takeOffered();
        EXPECT_EQ(failure(), QString());
        EXPECT_TRUE(model->message().contains(u"已跳过 1 段无法准确定位的片段，第一个是：多机位"_s))
            << qPrintable(model->message());
        ASSERT_TRUE(model->aiTimelinePlan());
        EXPECT_EQ(model->aiTimelinePlan()->segments.size(), 1);
        EXPECT_EQ(model->recognition().offeredTimeline(), std::nullopt);
        restart();
    }
}

TEST_F(ImportTest, refuses_everything_while_a_job_owns_the_cues)
{
    loadCues(Generator(1).cues(3));
    const LintoraSession before = model->snapshot();
    OwnedCues owned(*model);
    EXPECT_TRUE(model->aiBusy());

    const auto refusedWith = [&](const QString &sentence, const std::function<void()> &operation) {
        model->report({});
        operation();
        Events::handle();
        EXPECT_EQ(failure(), sentence);
        EXPECT_EQ(model->snapshot(), before);
    };
    const QUrl file = QUrl::fromLocalFile(write(u"a.srt"_s, oneCue));
    const QString switching = u"任务处理中，请先取消再切换文件"_s;
    const QString importing = u"任务处理中，请先取消再导入"_s;
    const QString editing = u"任务处理中，请先取消再编辑字幕"_s;
    refusedWith(switching, [&] { model->receiveURL(file); });
    refusedWith(switching, [&] { model->receiveURL(QUrl(u"lintora://floating?session=/x"_s)); });
    refusedWith(switching, [&] { model->load(file); });
    refusedWith(importing, [&] { EXPECT_FALSE(dropFiles({file.toLocalFile()})); });
    refusedWith(importing, [&] { model->exportToProject(); });
    refusedWith(u"请等待当前任务完成后再替换。"_s,
                [&] { EXPECT_FALSE(model->textTools().replaceKeywords(u"a"_s, u"b"_s)); });
    refusedWith(u"请等待当前任务完成后再清理。"_s, [&] { model->textTools().clean(); });
    refusedWith(u"请等待当前任务完成后再分离。"_s, [&] { model->textTools().separateLanguages(); });
    refusedWith(u"请等待当前任务完成后再匹配。"_s, [&] { model->scriptMatching().match(); });
    refusedWith(editing, [&] { EXPECT_FALSE(model->setText(0, u"x"_s)); });
    refusedWith(editing, [&] { EXPECT_FALSE(model->insertCue(0)); });
    refusedWith(editing, [&] { model->textTools().setRemoveFillers(true); });
    refusedWith(editing, [&] { model->setCanvasHeight(7); });
    refusedWith(switching, [&] { model->apply({}); });
    refusedWith(QString(), [&] { model->undo(); });
    EXPECT_FALSE(model->canUndo());
    model->window().setFindReplaceVisible(true);
    EXPECT_FALSE(model->window().findReplaceVisible());

    refusedWith(u"请等待当前任务完成。"_s, [&] { OwnedCues second(*model); });
    EXPECT_TRUE(model->aiBusy());
    model->cancelAI();
    EXPECT_FALSE(model->aiBusy());
    EXPECT_TRUE(model->canUndo());
    model->window().setFindReplaceVisible(true);
    EXPECT_TRUE(model->window().findReplaceVisible());
}

TEST_F(ImportTest, what_was_read_too_late_changes_nothing)
{
    const QUrl first = QUrl::fromLocalFile(write(u"first.srt"_s, oneCue));
    model->load(first);
    OwnedCues owned(*model);
    EXPECT_TRUE(Events::waitFor([&] { return failure() == u"任务处理中，请先取消再导入"_s; }));
    EXPECT_TRUE(model->items().isEmpty());
    owned.end();

    // Files that are opened together are taken in their order.
    model->load(first);
    model->load(QUrl::fromLocalFile(write(u"talk.fcpxml"_s, talk())));
    settle();
    EXPECT_EQ(model->source(), u"first.srt"_s);
    EXPECT_TRUE(model->keptProject().project());
    model->load(QUrl::fromLocalFile(write(u"second.srt"_s, oneCue)));
    settle();
    EXPECT_EQ(model->source(), u"second.srt"_s);
    model->load(first);
    model->cancelActivity();
    settle();
    EXPECT_EQ(model->source(), u"second.srt"_s);
    EXPECT_EQ(failure(), QString());
}

TEST_F(ImportTest, asks_for_files_by_dialog_and_takes_no_answer_for_none)
{
    model->choose();
    EXPECT_EQ(asked, u"打开 SRT"_s);
    settle();
    EXPECT_TRUE(model->items().isEmpty());
    answer = write(u"a.srt"_s, oneCue);
    model->chooseImport();
    EXPECT_EQ(asked, u"导入字幕、音视频或 FCP 项目"_s);
    settle();
    EXPECT_EQ(model->items().size(), 1);
    model->showFCPImport();
    EXPECT_TRUE(model->window().fcpImportVisible());
    load(write(u"p.fcpxml"_s, talk()));
    EXPECT_FALSE(model->window().fcpImportVisible());
}
