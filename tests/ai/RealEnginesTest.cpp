#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "ai/speech/Recognition.h"
#include "ai/text/Translation.h"
#include "core/ConversionError.h"
#include "tests/support/SharedData.h"
#include "tests/support/TestModels.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using SubtitleAI::NoSpeech;
using SubtitleAI::SpeechLanguage;

namespace {

/// Runs of the programs that users have, with models so small that what they say means nothing.
class RealEngines : public testing::Test
{
protected:
    void SetUp() override
    {
        try {
            for (const QString &name : {u"ffmpeg-audio"_s, u"whisper-cli"_s, u"llama-server"_s})
                LocalModels::helper(name);
        } catch (const ConversionError &error) {
            GTEST_SKIP() << "the engines are not installed: " << error.detail().toStdString();
        }
        for (const QString &name : {u"scripted-en.bin"_s, u"scripted-zh.bin"_s, u"scripted-none.bin"_s}) {
            if (!TestModels::find(name))
                GTEST_SKIP() << "no model " << name.toStdString();
        }
        if (!SharedData::find(u"samples"_s))
            GTEST_SKIP() << "no samples";
    }

    static QString sample(const QString &name) { return *SharedData::find(u"samples/"_s + name); }

    /// Makes a file with ffmpeg.
    QString make(const QString &name, const QStringList &arguments)
    {
        const QString path = folder.filePath(name);
        QProcess::execute(LocalModels::helper(u"ffmpeg-audio"_s),
                          QStringList({u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-y"_s}) + arguments +
                              QStringList({path}));
        return path;
    }

    /// The first cue's text, or the message of the refusal.
    QString transcribe(const QString &media, const QString &model = u"scripted-en.bin"_s,
                       SpeechLanguage language = SpeechLanguage::english)
    {
        LocalAIJob job;
        try {
            cues = SubtitleAI::transcribe(media, language, EngineModel::own(*TestModels::find(model)), job,
                                          NoSpeech::isRefused, [](const Progress &) {});
            return cues.first().text;
        } catch (const ConversionError &error) {
            detail = error.detail();
            return error.message();
        }
    }

    QTemporaryDir folder;
    QList<Subtitle> cues;
    QString detail;
};

const QString notFinished = u"本地处理未完成。请确认文件可正常播放、模型完整，并重试。"_s;

} // namespace

TEST_F(RealEngines, speech_tone_and_silence_become_what_the_model_says)
{
    EXPECT_FALSE(transcribe(sample(u"en1-16k.wav"_s)).isEmpty());
    EXPECT_LE(cues.last().end, 3'441); // the sample's length
    EXPECT_TRUE(
        transcribe(sample(u"zh1-16k.wav"_s), u"scripted-zh.bin"_s, SpeechLanguage::chinese).startsWith(u"你好"));
    EXPECT_TRUE(
        transcribe(sample(u"zh1-16k.wav"_s), u"scripted-zh.bin"_s, SpeechLanguage::automatic).startsWith(u"你好"));
    const QString tone = make(u"tone.m4a"_s, {u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=frequency=440:duration=3"_s});
    EXPECT_FALSE(transcribe(tone).endsWith(u'。'));
    EXPECT_EQ(transcribe(sample(u"silence-5s-16k.wav"_s), u"scripted-none.bin"_s),
              u"未识别到有效语音。请确认素材有人声并选择正确语言。"_s);
}

TEST_F(RealEngines, the_first_audio_stream_of_a_video_is_read)
{
    EXPECT_FALSE(transcribe(sample(u"video-2audio.mkv"_s)).endsWith(u'。'));
    EXPECT_FALSE(cues.isEmpty());
}

TEST_F(RealEngines, what_cannot_be_read_is_refused_and_the_helpers_words_say_why)
{
    const QString silent = make(u"silent.mp4"_s, {u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=s=64x64:d=1"_s});
    EXPECT_EQ(transcribe(silent), notFinished);
    EXPECT_TRUE(detail.contains(u"0:a:0") || detail.contains(u"map")) << detail.toStdString();
    QFile text(folder.filePath(u"-notes.txt"_s));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("这不是音频");
    text.close();
    EXPECT_EQ(transcribe(text.fileName()), notFinished);
    EXPECT_EQ(transcribe(folder.filePath(u"gone.wav"_s)), notFinished);
    EXPECT_TRUE(detail.contains(u"No such file")) << detail.toStdString();
    EXPECT_TRUE(transcribe(sample(u"zero-samples.wav"_s)).endsWith(u'。'));
    EXPECT_EQ(transcribe(sample(u"en1-16k.wav"_s), u"stories260K-ctx32k.gguf"_s), notFinished);
}

TEST_F(RealEngines, the_language_models_server_answers_and_its_answer_is_held_to_the_rules)
{
    const auto model = TestModels::find(u"stories260K-ctx32k.gguf"_s);
    if (!model)
        GTEST_SKIP() << "no language model";
    const QList<Subtitle> rows = {{.id = 1, .start = 0, .end = 900, .text = u"Once upon a time"_s},
                                  {.id = 2, .start = 1'000, .end = 1'900, .text = u"there was a cat"_s}};
    LocalAIJob job;
    try {
        const auto [result, forget] =
            SubtitleAI::translate(rows, {.direction = SubtitleAI::Direction::englishToChinese},
                                  EngineModel::own(*model), folder.filePath(u"ledger"_s), job, [](const Progress &) {});
        ASSERT_EQ(result.size(), 2);
        EXPECT_EQ(result[1].start, 1'000);
        EXPECT_FALSE(result[0].text.isEmpty());
    } catch (const ConversionError &error) {
        // A model of this size may repeat an id or stop too late; it must have been asked.
        EXPECT_TRUE(error.message().startsWith(u"翻译")) << error.what();
    }
    LocalAIJob other;
    EXPECT_THROW(SubtitleAI::translate(rows, {}, EngineModel::own(*TestModels::find(u"scripted-en.bin"_s)),
                                       folder.filePath(u"ledger"_s), other, [](const Progress &) {}),
                 ConversionError);
}
