#include "tests/support/CommandTest.h"
#include "tests/support/HelperFolder.h"

using namespace Qt::StringLiterals;

namespace {

class lintora_cli_sound : public CommandTest
{
protected:
    /// A recording of two seconds, with speech from 0.6 to 1.5.
    QString media()
    {
        helpers.script(u"ffmpeg-audio"_s, {u"sound 600 900"_s, u"sound 500 0"_s});
        return file(u"访谈.mov"_s, "media");
    }

    HelperFolder helpers;
};

} // namespace

TEST_F(lintora_cli_sound, peaks_are_those_of_the_recording)
{
    const QByteArray four = R"({"duration":2000,"peaks":[[0,0],[0,0],[-64,64],[-64,64],[-64,64],[-64,64],[0,0],[0,0]],)"
                            R"("rate":4})"
                            "\n";
    expectOutcome(CommandLine::run({u"peaks"_s, media(), u"--json"_s, u"--per-second"_s, u"4"_s}), 0, four, "");
    // It was read; the helper need not be asked again.
    helpers.script(u"ffmpeg-audio"_s, {u"exit 1"_s});
    expectOutcome(CommandLine::run({u"peaks"_s, path(u"访谈.mov"_s)}), 0,
                  "时长 00:00:02,000\n最高峰值 50%\n语音 1 段，共 00:00:00,900\n", "");
}

TEST_F(lintora_cli_sound, snap_moves_borders_to_speech_and_says_by_how_much)
{
    const QByteArray cues = "1\n00:00:00,480 --> 00:00:01,600\n你好\n\n2\n00:00:01,700 --> 00:00:01,900\n再见\n";
    const QString out = path(u"out.srt"_s);
    const auto snapped = CommandLine::run({u"snap"_s, file(u"in.srt"_s, cues), media(), u"--rate"_s, u"25"_s, u"-o"_s,
                                           out, u"--json"_s, u"--progress"_s});
    EXPECT_EQ(snapped.output, R"([{"cue":1,"endBy":-80,"startBy":120}])"
                              "\n");
    EXPECT_TRUE(snapped.error.endsWith("第 1 条：开始 +120 毫秒，结束 -80 毫秒\n已移动 1 条字幕，共 2 条\n"))
        << snapped.error.toStdString();
    expectOutcome(CommandLine::run({u"srt"_s, out}), 0,
                  "1\n00:00:00,600 --> 00:00:01,520\n你好\n\n2\n00:00:01,700 --> 00:00:01,900\n再见\n", "");
    // A bound that nothing is within.
    expectOutcome(CommandLine::run({u"snap"_s, path(u"in.srt"_s), media(), u"--within"_s, u"50"_s}), 0, cues, "");
}

TEST_F(lintora_cli_sound, refuses_what_has_no_sound)
{
    helpers.script(u"ffmpeg-audio"_s, {u"complain [fatal] Stream map '0:a:0' matches no streams."_s, u"exit 1"_s});
    const QString silent = file(u"silent.mp4"_s, "media");
    expectOutcome(CommandLine::run({u"peaks"_s, silent, u"--json"_s}), 1, "", "这个文件里没有声音。\n");
    const QString kept = file(u"out.srt"_s, "kept");
    const QString cues = file(u"in.srt"_s, "1\n00:00:00,480 --> 00:00:01,600\n你好\n\n");
    expectOutcome(CommandLine::run({u"snap"_s, cues, silent, u"-o"_s, kept}), 1, "", "这个文件里没有声音。\n");
    expectOutcome(CommandLine::shell(u"cat "_s + kept), 0, "kept", "");
    expectOutcome(CommandLine::run({u"peaks"_s, path(u"none.wav"_s)}), 1, "",
                  "找不到这个音视频文件，可能已移动或删除。\n");
    for (const QStringList &wrong : {QStringList{u"peaks"_s},
                                     {u"peaks"_s, silent, u"--per-second"_s, u"201"_s},
                                     {u"snap"_s, cues},
                                     {u"snap"_s, cues, silent, u"--within"_s, u"0"_s}})
        EXPECT_EQ(CommandLine::run(wrong).status, 2) << wrong.join(u' ').toStdString();
}
