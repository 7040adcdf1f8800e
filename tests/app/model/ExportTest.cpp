#include "core/SRT.h"
#include "core/files/AtomicFile.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/SubtitleTransfer.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"
#include "tests/support/StoryDocument.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

class ExportTest : public ModelTest
{
protected:
    /// Answers the dialog and waits for the file.
    QByteArray exported(void (LintoraModel::*operation)(), const QString &name)
    {
        answer = home(name);
        (*model.*operation)();
        settle();
        return QFile::exists(answer) ? read(answer) : QByteArray();
    }
};

QByteArray project()
{
    return StoryDocument::project("100s", {tag("asset-clip name=采访 ref=talk offset=0s start=5s duration=60s"),
                                           tag("gap offset=60s start=3600s duration=40s")});
}

} // namespace

TEST_F(ExportTest, writes_the_selected_track_as_SRT)
{
    const QList<Subtitle> cues = Generator(1).cues(20);
    loadCues(cues, u"访谈.第一集.srt"_s);
    EXPECT_EQ(exported(&LintoraModel::exportSRT, u"out.srt"_s), SRT::serialize(cues).toUtf8());
    EXPECT_EQ(asked, u"访谈.第一集.srt"_s);
    EXPECT_EQ(model->message(), u"已导出 20 条字幕"_s);
    loadCues(cues, u"..访谈.srt"_s);
    model->exportSRT();
    EXPECT_EQ(asked, u"访谈.srt"_s) << "no hidden file";
}

TEST_F(ExportTest, dialogs_begin_beside_the_file_that_is_open)
{
    loadCues(Generator(1).cues(3), u"访谈.srt"_s);
    const std::function<void()> questions[] = {[&] { model->exportSRT(); },    [&] { model->exportAllSRT(); },
                                               [&] { model->exportFCPXML(); }, [&] { model->exportToProject(); },
                                               [&] { model->chooseImport(); }, [&] { model->choose(); },
                                               [&] { model->chooseMedia(); }};
    answer.clear();
    for (const auto &question : questions) {
        askedBeside.clear();
        question();
        EXPECT_EQ(askedBeside, home(u"访谈.srt"_s)) << qPrintable(asked);
    }
    load(write(u"rough.fcpxml"_s, project()));
    model->exportFCPXML();
    EXPECT_EQ(askedBeside, home(u"rough.fcpxml"_s));
    load(write(u"broken.srt"_s, "nothing"));
    model->exportFCPXML();
    EXPECT_EQ(askedBeside, home(u"rough.fcpxml"_s)) << "a refused file is not open";
}

TEST_F(ExportTest, names_files_after_the_track_where_there_are_several_and_writes_each_that_was_asked_for)
{
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"你好\nHello"_s}}, u"访谈.srt"_s);
    model->textTools().separateLanguages();
    const QList<SubtitleTrack> tracks = model->visibleTracks();
    for (const SubtitleTrack &track : tracks) {
        model->selectTrack(track.id);
        answer = home(track.label);
        model->exportSRT();
        EXPECT_EQ(asked, u"访谈_"_s + track.label + u".srt"_s);
    }
    settle();
    for (const SubtitleTrack &track : tracks)
        EXPECT_EQ(read(home(track.label)), SRT::serialize(track.items).toUtf8());
}

TEST_F(ExportTest, writes_and_proof_reads_titles_alone_and_in_the_kept_project)
{
    const QList<Subtitle> cues = Generator(2).cues(20);
    loadCues(cues);
    exported(&LintoraModel::exportFCPXML, u"alone.fcpxml"_s);
    EXPECT_EQ(model->message(), u"已写入并核对 20 条字幕，逐帧一致"_s);
    EXPECT_EQ(FCPXML::projects(FCPXML::document(answer)).size(), 1U);

    load(write(u"rough.fcpxml"_s, project()));
    QFile::remove(home(u"rough.fcpxml"_s));
    const QByteArray document = exported(&LintoraModel::exportToProject, u"connected.fcpxml"_s);
    EXPECT_TRUE(model->message().startsWith(u"已写入并核对 20 条字幕，逐帧一致"_s)) << qPrintable(failure());
    EXPECT_TRUE(document.contains("采访"));
    EXPECT_EQ(document.count("<title "), 20);
}

TEST_F(ExportTest, asks_for_the_project_again_after_a_restart)
{
    loadCues(Generator(2).cues(5));
    load(write(u"rough.fcpxml"_s, project()));
    restart();
    EXPECT_FALSE(model->keptProject().project());
    EXPECT_EQ(model->items().size(), 5);
    // One answer serves both dialogs: the project is read, and then replaced.
    exported(&LintoraModel::exportToProject, u"rough.fcpxml"_s);
    EXPECT_TRUE(model->message().startsWith(u"已写入并核对 5 条字幕，逐帧一致"_s)) << qPrintable(failure());
    EXPECT_TRUE(model->keptProject().project());
}

TEST_F(ExportTest, asks_for_another_project_when_the_kept_one_does_not_fit)
{
    loadCues(Generator(2).cues(5));
    load(write(u"rough.fcpxml"_s, project()));
    model->undo();
    answer.clear();
    model->exportToProject();
    EXPECT_EQ(asked, u"选择要写入字幕的 FCP 项目"_s);
}

TEST_F(ExportTest, a_file_that_cannot_be_written_stays_as_it_was)
{
    loadCues(Generator(2).cues(5));
    const QString kept = write(u"kept.fcpxml"_s, "mine");
    load(write(u"short.fcpxml"_s, StoryDocument::project("1s", {tag("gap offset=0s duration=1s")})));
    EXPECT_EQ(exported(&LintoraModel::exportToProject, u"kept.fcpxml"_s), "mine");
    EXPECT_EQ(failure(), u"字幕超出项目时长，请检查音频版本或时间偏移。"_s);
    exported(&LintoraModel::exportSRT, u"missing/out.srt"_s);
    EXPECT_FALSE(failure().isEmpty());
    EXPECT_EQ(QDir(home({})).entryList({u"kept*"_s}).size(), 1) << "nothing is left beside it";
}

#ifdef LINTORA_SPOILT_READS
TEST_F(ExportTest, titles_that_a_disk_gives_back_otherwise_leave_the_old_file)
{
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"INTACT"_s}});
    load(write(u"rough.fcpxml"_s, project()));
    write(u"kept.fcpxml"_s, "mine");
    for (const auto operation : {&LintoraModel::exportFCPXML, &LintoraModel::exportToProject}) {
        qputenv("LINTORA_SPOILT_READS", "1");
        EXPECT_EQ(exported(operation, u"kept.fcpxml"_s), "mine");
        qunsetenv("LINTORA_SPOILT_READS");
        EXPECT_EQ(failure(), u"第 1 条字幕写入后核对不一致，原文件没有改动。"_s);
    }
    EXPECT_EQ(QDir(home({})).entryList({u"kept*"_s}).size(), 1) << "nothing is left beside it";
}
#endif

TEST_F(ExportTest, a_dragged_card_carries_its_own_track)
{
    EXPECT_EQ(model->payload(std::nullopt), std::nullopt);
    EXPECT_EQ(failure(), u"请先打开 SRT。"_s);
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"你好\nHello"_s}});
    model->textTools().separateLanguages();
    const SubtitleTrack english = model->visibleTracks()[1];
    EXPECT_EQ(model->payload(english.id), SubtitleTransfer::clip(english.items, english.options));
    EXPECT_EQ(model->payload(std::nullopt), SubtitleTransfer::clip(model->items(), model->options()));
}

TEST_F(ExportTest, every_track_is_written_into_a_folder_beside_what_is_there)
{
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"你好\nHello"_s}}, u"访谈.srt"_s);
    model->textTools().separateLanguages();
    answer = home(u"全部"_s);
    ASSERT_TRUE(QDir().mkpath(answer));
    write(u"全部/访谈_中文.srt"_s, "mine");
    model->exportAllSRT();
    settle();
    EXPECT_EQ(QDir(answer).entryList(QDir::Files, QDir::Name),
              QStringList({u"访谈_English.srt"_s, u"访谈_中文 2.srt"_s, u"访谈_中文.srt"_s, u"访谈_原稿.srt"_s}));
    EXPECT_EQ(read(home(u"全部/访谈_中文.srt"_s)), "mine");
    EXPECT_EQ(SRT::decode(read(home(u"全部/访谈_原稿.srt"_s))).first().text, u"你好\nHello"_s);
    EXPECT_EQ(model->message(), u"已导出 3 个 SRT 文件"_s);
}
