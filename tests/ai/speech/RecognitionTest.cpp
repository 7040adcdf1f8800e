#include "ai/speech/Recognition.h"

#include "ai/LocalAIJob.h"
#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "tests/support/HelperFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;
using SubtitleAI::NoSpeech;

namespace {

class LocalRecognition : public testing::Test
{
protected:
    void SetUp() override
    {
        QFile file(helpers.file(u"model.bin"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("model");
        helpers.script(u"ffmpeg-audio"_s, {u"wav 5"_s});
    }

    /// The cues as text, or the message of the refusal.
    QString transcribe(const QStringList &script)
    {
        helpers.script(u"whisper-cli"_s, script);
        try {
            QString text;
            const auto cues =
                SubtitleAI::transcribe(u"/media/访谈.mov"_s, SubtitleAI::SpeechLanguage::english,
                                       EngineModel::own(helpers.file(u"model.bin"_s)), job, NoSpeech::isRefused,
                                       [&](const Progress &news) { progress.append(news); });
            for (const Subtitle &cue : cues)
                text += u"%1-%2 %3\n"_s.arg(cue.start).arg(cue.end).arg(cue.text);
            return text;
        } catch (const ConversionError &error) {
            detail = error.detail();
            return error.message();
        }
    }

    void TearDown() override
    {
        EXPECT_EQ(helpers.running(), 0);
        EXPECT_EQ(helpers.scratchFolders(), QStringList());
    }

    HelperFolder helpers;
    LocalAIJob job;
    QList<Progress> progress;
    QString detail;
};

const QString spoken =
    uR"(result {"transcription":[{"offsets":{"from":0,"to":2500},"text":" Hi"},{"offsets":{"from":2500,"to":30000},"text":"Bye"}]})"_s;
const QString tooLarge = u"识别结果过大，请将素材分段。"_s;

} // namespace

TEST_F(LocalRecognition, the_cues_end_with_the_sound_and_the_share_is_told)
{
    EXPECT_EQ(transcribe({u"print [00:00:00.000 --> 00:00:02.500]  Hi"_s, spoken}), u"0-2500 Hi\n2500-5000 Bye\n"_s);
    EXPECT_EQ(progress, (QList<Progress>{{.what = u"正在读取音轨…"_s},
                                         {.what = u"正在识别语音，较长素材需要一些时间…"_s},
                                         {.what = u"正在识别语音，较长素材需要一些时间…"_s, .share = 0.5}}));
    EXPECT_EQ(helpers.runs(u"ffmpeg-audio"_s).first()[5], u"/media/访谈.mov"_s);
    EXPECT_EQ(helpers.runs(u"whisper-cli"_s).first()[1], helpers.file(u"model.bin"_s));
}

TEST_F(LocalRecognition, a_recogniser_that_ends_well_without_a_result_is_refused_with_what_it_said)
{
    EXPECT_EQ(transcribe({u"complain error: unknown language"_s}), tooLarge);
    EXPECT_EQ(detail, u"error: unknown language"_s);
    EXPECT_EQ(transcribe({}), tooLarge);
    EXPECT_FALSE(detail.isEmpty());
}

TEST_F(LocalRecognition, a_result_of_16_MiB_is_read_and_one_byte_more_is_refused)
{
    EXPECT_EQ(transcribe({u"result-size 16777216"_s}), u"语音引擎返回了无法读取的结果。"_s);
    EXPECT_EQ(transcribe({u"result-size 16777217"_s}), tooLarge);
}

TEST_F(LocalRecognition, what_has_no_sound_is_refused_before_it_is_recognised)
{
    helpers.script(u"ffmpeg-audio"_s, {u"wav 0"_s});
    EXPECT_EQ(transcribe({spoken}), u"音轨没有可识别的采样，请确认文件可正常播放。"_s);
    helpers.script(u"ffmpeg-audio"_s, {u"complain 访谈.mov: Invalid data"_s, u"exit 1"_s});
    EXPECT_EQ(transcribe({spoken}), u"本地处理未完成。请确认文件可正常播放、模型完整，并重试。"_s);
    EXPECT_EQ(detail, u"访谈.mov: Invalid data"_s);
    EXPECT_EQ(helpers.runs(u"whisper-cli"_s).size(), 0);
}

TEST_F(LocalRecognition, cancelling_ends_whichever_engine_runs)
{
    std::thread canceller([&] {
        helpers.waitForProcesses(2);
        job.cancel();
    });
    EXPECT_THROW(transcribe({u"wait"_s}), Cancelled);
    canceller.join();
}
