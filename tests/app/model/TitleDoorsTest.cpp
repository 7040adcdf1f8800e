// The same titles leave by every door: the window's exports, its card, and the command line.

#include "core/SRT.h"
#include "core/json/JsonWriter.h"
#include "store/StylePresetStore.h"
#include "tests/support/CommandLine.h"
#include "tests/support/ModelTest.h"
#include "tests/support/StoryDocument.h"

using namespace Qt::StringLiterals;

namespace {

/// A project with a title of the user's own.
QByteArray designed()
{
    return StoryDocument::project(
        "20s",
        {tag("gap offset=0s duration=20s",
             {tag("title ref=own lane=1 offset=1s duration=2s",
                  {tag("text", {textTag("text-style ref=ts1", "姓名")}),
                   tag("text-style-def id=ts1", {tag("text-style font=Kaiti fontSize=70")})})})},
        {tag("effect id=own name=人名条 uid=~/Titles.localized/a.moti")});
}

class TitleDoors : public ModelTest
{
protected:
    /// Two tracks, each in a style of its own, and one without cues.
    TitleDoors()
    {
        LintoraSession session;
        session.tracks = QList{track(u"中文"_s, u"你好 & 再见"_s), track(u"English"_s, u"Hello\nBye"_s),
                               SubtitleTrack{.id = QUuid::createUuid(), .label = u"待归类"_s}};
        Options &second = (*session.tracks)[1].options;
        second.font = u"Songti SC"_s;
        second.fontColor = u"1 1 0 1"_s;
        second.bottomPercent = 20;
        second.width = 1920;
        second.height = 1080;
        second.fontSize = 30;
        model->apply(session);
        settle();
    }

    static SubtitleTrack track(const QString &label, const QString &text)
    {
        return {.id = QUuid::createUuid(),
                .label = label,
                .items = {{.id = 1, .start = 40, .end = 900, .text = text},
                          {.id = 2, .start = 1'000, .end = 1'900, .text = label}}};
    }

    QByteArray exported(void (LintoraModel::*operation)())
    {
        answer = home(u"out.fcpxml"_s);
        QFile::remove(answer);
        (*model.*operation)();
        settle();
        EXPECT_TRUE(model->message().startsWith(u"已写入并核对 4 条字幕，逐帧一致"_s)) << qPrintable(failure());
        return read(answer);
    }

    /// What the command line makes of the same two tracks.
    QByteArray commanded(const QStringList &into = {}) const
    {
        const QList<SubtitleTrack> tracks = model->visibleTracks();
        StylePresetStore().save({{.id = QUuid::createUuid(), .name = u"译文"_s, .style = tracks[1].options}});
        const auto srt = [&](qsizetype i) { return write(tracks[i].label, SRT::serialize(tracks[i].items).toUtf8()); };
        const QString options =
            write(u"options.json"_s, jsonBytes([&](JsonWriter &json) { writeOptions(json, tracks.first().options); }));
        const auto outcome = CommandLine::run(QStringList{u"titles"_s, srt(0), u"--options"_s, options, u"--track"_s,
                                                          srt(1), u"--track-preset"_s, u"译文"_s} +
                                              into);
        EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
        return outcome.output;
    }
};

TEST_F(TitleDoors, all_shown_tracks_leave_with_the_bytes_of_the_command_line)
{
    const QByteArray alone = exported(&LintoraModel::exportAllFCPXML);
    EXPECT_EQ(alone.toStdString(), commanded().toStdString());
    EXPECT_EQ(alone.count("lane=\"2\""), 2);
    EXPECT_EQ(model->payloadOfAll().value_or(QByteArray()).toStdString(), commanded({u"--clip"_s}).toStdString());

    const QString project =
        write(u"rough.fcpxml"_s, StoryDocument::project("20s", {tag("gap offset=0s duration=20s")}));
    load(project);
    EXPECT_EQ(exported(&LintoraModel::exportAllToProject).toStdString(),
              commanded({u"--base"_s, project}).toStdString());
}

TEST_F(TitleDoors, a_title_of_ones_own_is_written_as_the_command_line_writes_it)
{
    const QString own = write(u"own.fcpxml"_s, designed());
    load(own);
    model->showOwnTitles();
    settle();
    ASSERT_EQ(model->ownTitles().offers().size(), 1) << qPrintable(model->ownTitles().status());
    const QByteArray basic = exported(&LintoraModel::exportAllFCPXML);
    model->setLook(model->ownTitles().offers().first().look);
    EXPECT_TRUE(exported(&LintoraModel::exportAllFCPXML).contains("uid=\"~/Titles.localized/a.moti\""));
    for (const QStringList &into : {QStringList(), QStringList{u"--clip"_s}, QStringList{u"--base"_s, own}}) {
        const QByteArray written = into.isEmpty()     ? exported(&LintoraModel::exportAllFCPXML)
                                   : into.size() == 1 ? model->payloadOfAll().value_or(QByteArray())
                                                      : exported(&LintoraModel::exportAllToProject);
        EXPECT_EQ(written.toStdString(), commanded(into + QStringList{u"--template"_s, own}).toStdString());
    }
    restart(); // The draft has it.
    EXPECT_EQ(exported(&LintoraModel::exportAllFCPXML).toStdString(), commanded({u"--template"_s, own}).toStdString());
    model->saveStylePreset(u"自己的"_s);
    model->stylePresets().wait();
    settle();
    model->setLook(std::nullopt);
    EXPECT_EQ(exported(&LintoraModel::exportAllFCPXML), basic);
    model->applyStylePreset(model->stylePresets().all().last().id);
    EXPECT_TRUE(model->look().has_value()) << "a preset keeps it";
    model->undo();
    EXPECT_FALSE(model->look().has_value());
    model->undo();
    EXPECT_TRUE(model->look().has_value());
}

TEST_F(TitleDoors, tracks_of_two_frame_rates_are_refused_by_name)
{
    model->selectTrack(model->tracks()[1].id);
    Options options = model->options();
    options.rate = FrameRate::all()[0];
    model->setOptions(options);
    EXPECT_EQ(model->payloadOfAll(), std::nullopt);
    EXPECT_EQ(failure(), u"各条字幕轨的帧率不一致。"_s);
    EXPECT_EQ(model->failureDetail(), u"“中文”每秒 30 帧，“English”每秒 23.976 帧。"_s);
}

TEST_F(TitleDoors, the_receipt_says_which_titles_lie_on_each_other_and_what_is_wrong_with_the_document)
{
    const QByteArray odd = StoryDocument::project("20s", {tag("gap lane=1 offset=0s duration=20s")});
    load(write(u"odd.fcpxml"_s, odd));
    model->selectTrack(model->tracks()[1].id);
    Options options = model->options();
    options.bottomPercent = model->tracks()[0].options.bottomPercent;
    model->setOptions(options);
    answer = home(u"out.fcpxml"_s);
    model->exportAllToProject();
    settle();
    const QByteArray found = CommandLine::run({u"validate"_s, answer}).output.trimmed();
    EXPECT_EQ(model->messageDetail().toStdString(), found.toStdString());
    const auto errors = found.count("错误，");
    EXPECT_GE(errors, 1);
    EXPECT_EQ(model->message(), u"已写入并核对 4 条字幕，逐帧一致 · “中文”与“English”位置重叠，可在样式中错开 · "
                                u"文档检查：%1 处错误，%2 处警告"_s.arg(errors)
                                    .arg(found.count("警告，")))
        << qPrintable(failure());
    model->exportAllFCPXML();
    settle();
    EXPECT_EQ(model->messageDetail(), QString()) << "nothing is wrong with our own";
}

} // namespace
