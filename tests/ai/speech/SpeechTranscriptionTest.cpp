#include "ai/speech/SpeechTranscription.h"

#include "ai/LocalAIJob.h"
#include "core/Cancelled.h"
#include "tests/support/ScriptedServer.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using Request = ScriptedServer::Request;

namespace {

/// A helper folder with the system's audio converter, and a silent recording of 1000 seconds.
class SpeechTranscriptionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString converter = QStandardPaths::findExecutable(u"ffmpeg"_s);
        if (converter.isEmpty())
            GTEST_SKIP() << "no ffmpeg";
        QFile::link(converter, m_folder.filePath(u"ffmpeg-audio"_s));
        qputenv("VELMORA_SUBTITLE_HELPERS", m_folder.path().toUtf8());
        // Scratch folders of its own, so that those of others are not taken for ours.
        QDir(m_folder.path()).mkdir(u"tmp"_s);
        qputenv("TMPDIR", m_folder.filePath(u"tmp"_s).toUtf8());
        QFile wav(media());
        ASSERT_TRUE(wav.open(QIODevice::WriteOnly));
        const auto number = [](auto value) {
            value = qToLittleEndian(value);
            return QByteArray(reinterpret_cast<const char *>(&value), sizeof(value));
        };
        constexpr quint32 rate = 16'000;
        constexpr quint32 bytes = 1'000 * rate * 2;
        wav.write("RIFF" + number(bytes + 36) + "WAVEfmt " + number(quint32(16)) + number(quint16(1)) +
                  number(quint16(1)) + number(rate) + number(rate * 2) + number(quint16(2)) + number(quint16(16)) +
                  "data" + number(bytes));
        wav.resize(44 + bytes);
    }
    ~SpeechTranscriptionTest() override
    {
        qunsetenv("VELMORA_SUBTITLE_HELPERS");
        qunsetenv("TMPDIR");
    }

    QString media() const { return m_folder.filePath(u"silence.wav"_s); }
    QString kept() const { return m_folder.filePath(u"kept"_s); }
    QStringList keptFiles() const { return QDir(kept()).entryList(QDir::Files); }

    AnsweredCues transcribe(const ScriptedServer &server, LocalAIJob &job)
    {
        const SpeechAPIConfiguration configuration{
            .baseURL = server.url(u"/v1"_s).toString(), .model = u"whisper-1"_s, .apiKey = u"secret"_s};
        return SpeechSubtitleAPI::transcribe(media(), SubtitleAI::SpeechLanguage::english, configuration, kept(), job,
                                             SubtitleAI::NoSpeech::isRefused, [&](const Progress &now) {
                                                 progress.append(now);
                                                 if (onProgress)
                                                     onProgress(now);
                                             });
    }

    QString refusal(const ScriptedServer &server)
    {
        LocalAIJob job;
        try {
            transcribe(server, job);
        } catch (const ConversionError &error) {
            return error.message();
        }
        return {};
    }

    QList<Progress> progress;
    std::function<void(const Progress &)> onProgress;

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(SpeechTranscriptionTest, pays_once_for_each_piece_and_puts_them_together)
{
    int asked = 0;
    const ScriptedServer server([&](const Request &) {
        // The second piece fails once; each piece hears a phrase two seconds from its start.
        return ++asked == 2 ? ScriptedServer::reply(500, "")
                            : ScriptedServer::reply(200, R"({"segments":[{"start":2,"end":3,"text":" Hello "}]})");
    });
    EXPECT_EQ(refusal(server), u"音频转写失败（HTTP 500）服务商未能完成转写，请检查音频接口配置。原字幕已保留。"_s);
    EXPECT_EQ(keptFiles().size(), 1);
    LocalAIJob job;
    const auto [cues, forget] = transcribe(server, job);
    const QList<Subtitle> expected = {{.id = 1, .start = 2'000, .end = 3'000, .text = u"Hello"_s},
                                      {.id = 2, .start = 481'000, .end = 482'000, .text = u"Hello"_s},
                                      {.id = 3, .start = 961'000, .end = 962'000, .text = u"Hello"_s}};
    EXPECT_EQ(cues, expected);
    EXPECT_EQ(asked, 4);
    const Request last = server.requests().last();
    EXPECT_EQ(last.target, "/v1/audio/transcriptions");
    EXPECT_EQ(last.headers.value("authorization"), "Bearer secret");
    EXPECT_TRUE(last.headers.value("content-type").startsWith("multipart/form-data; boundary=lintora-"));
    EXPECT_FALSE(last.body.contains("secret"));
    EXPECT_TRUE(progress.last().what.startsWith(u"音频转写中 · 已用时 "));
    EXPECT_GT(progress.last().share.value_or(0), 0.8);
    EXPECT_EQ(transcribe(server, job).cues, expected);
    EXPECT_EQ(asked, 4); // until the cues are safe
    forget();
    EXPECT_TRUE(keptFiles().isEmpty());
    EXPECT_TRUE(QDir::temp().entryList({u"VELMORA-Subtitle-*"_s}, QDir::Dirs).isEmpty());
}

TEST_F(SpeechTranscriptionTest, an_answer_that_cannot_be_read_is_not_kept)
{
    const ScriptedServer textOnly([](const Request &) { return ScriptedServer::reply(200, R"({"text":"hi"})"); });
    EXPECT_TRUE(refusal(textOnly).startsWith(u"此接口没有返回字幕时间戳。"));
    const ScriptedServer empty([](const Request &) { return ScriptedServer::reply(200, ""); });
    EXPECT_EQ(refusal(empty), u"音频接口返回为空，原字幕已保留。"_s);
    const ScriptedServer silent([](const Request &) { return ScriptedServer::reply(200, R"({"segments":[]})"); });
    EXPECT_EQ(refusal(silent), u"未识别到有效语音，请检查音轨。"_s);
    EXPECT_TRUE(keptFiles().isEmpty());
}

TEST_F(SpeechTranscriptionTest, cancelling_ends_an_upload_and_a_wait)
{
    const ScriptedServer hanging([](const Request &) {
        return ScriptedServer::Reply{.head = {}, .body = {}, .end = ScriptedServer::Reply::End::stall};
    });
    LocalAIJob job;
    onProgress = [&](const Progress &now) {
        if (now.what.startsWith(u"音频转写中") && !hanging.requests().isEmpty())
            job.cancel();
    };
    EXPECT_THROW(transcribe(hanging, job), Cancelled);
    EXPECT_EQ(hanging.requests().size(), 1);
    EXPECT_TRUE(QDir::temp().entryList({u"VELMORA-Subtitle-*"_s}, QDir::Dirs).isEmpty());
}
