#include "ai/HTTP.h"
#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "tests/support/CommandLine.h"
#include "tests/support/SharedData.h"
#include "tests/support/TestModels.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto key = "sk-very-secret-1";

/// A real server of this machine, which answers as hosted services do, with models whose words mean nothing.
class Service
{
public:
    /// Starts the helper program `name` and waits until `path` answers with 200.
    Service(const QString &name, const QStringList &arguments, const QString &path)
    {
        QTcpServer free;
        free.listen(QHostAddress::LocalHost);
        m_port = free.serverPort();
        free.close();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"OMP_WAIT_POLICY"_s, u"passive"_s);
        m_process.setProcessEnvironment(environment);
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(LocalModels::helper(name),
                        arguments + QStringList{u"--host"_s, u"127.0.0.1"_s, u"--port"_s, QString::number(m_port)});
        constexpr int patience = 60'000; // milliseconds
        QElapsedTimer clock;
        clock.start();
        while (!answers(path) && clock.elapsed() < patience)
            m_process.waitForFinished(20);
    }
    ~Service()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    QString address(const QString &path) const { return u"http://127.0.0.1:%1%2"_s.arg(m_port).arg(path); }

private:
    bool answers(const QString &path) const
    {
        LocalAIJob job;
        try {
            return HTTP::get({.url = QUrl(address(path))}, job).head.status == 200;
        } catch (const PlatformError &) {
            return false;
        }
    }

    QProcess m_process;
    quint16 m_port = 0;
};

class RealServices : public testing::Test
{
protected:
    void SetUp() override
    {
        try {
            for (const QString &name : {u"ffmpeg-audio"_s, u"whisper-server"_s, u"llama-server"_s})
                LocalModels::helper(name);
        } catch (const ConversionError &error) {
            GTEST_SKIP() << "the engines are not installed: " << error.detail().toStdString();
        }
        if (!TestModels::find(u"scripted-en.bin"_s) || !TestModels::find(u"stories260K-ctx32k.gguf"_s) ||
            !SharedData::find(u"samples"_s))
            GTEST_SKIP() << "no models or no samples";
        qputenv("HOME", m_home.path().toUtf8());
        qputenv("TMPDIR", m_home.path().toUtf8());
        qputenv("MY_KEY", key);
    }
    void TearDown() override
    {
        qputenv("HOME", m_formerHome);
        qunsetenv("TMPDIR");
        qunsetenv("MY_KEY");
        QDirIterator files(m_home.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            EXPECT_FALSE(file.readAll().contains(key)) << file.fileName().toStdString();
        }
    }

    static Service speech()
    {
        return {
            u"whisper-server"_s,
            {u"-m"_s, *TestModels::find(u"scripted-en.bin"_s), u"--inference-path"_s, u"/v1/audio/transcriptions"_s},
            u"/"_s};
    }

    /// A model that says two texts, whatever it is asked.
    static Service chat()
    {
        const auto grammar = R"(root ::= "{\"translations\":[" one "," two "]}"
one ::= "{\"id\":0,\"text\":\"" [a-z]{1,3} "\"}"
two ::= "{\"id\":1,\"text\":\"" [a-z]{1,3} "\"}")";
        return {u"llama-server"_s,
                {u"-m"_s, *TestModels::find(u"stories260K-ctx32k.gguf"_s), u"--api-key"_s, QString::fromLatin1(key),
                 u"-c"_s, u"8192"_s, u"-n"_s, u"96"_s, u"--grammar"_s, QString::fromLatin1(grammar)},
                u"/health"_s};
    }

    static CommandLine::Outcome run(const QStringList &command, const QByteArray &input = {})
    {
        const CommandLine::Outcome outcome =
            CommandLine::run(command + QStringList{u"--key-env"_s, u"MY_KEY"_s, u"--details"_s}, input);
        EXPECT_FALSE((outcome.output + outcome.error).contains(key));
        return outcome;
    }

private:
    QTemporaryDir m_home;
    QByteArray m_formerHome = qgetenv("HOME");
};

} // namespace

TEST_F(RealServices, a_transcription_service_is_heard_in_segments_and_in_words)
{
    const Service service = speech();
    const QStringList command = {u"transcribe"_s,  *SharedData::find(u"samples/video-2audio.mkv"_s),
                                 u"--api"_s,       service.address(u"/v1"_s),
                                 u"--api-model"_s, u"whisper-1"_s};
    const CommandLine::Outcome segments = run(command);
    EXPECT_EQ(segments.status, 0) << segments.error.constData();
    EXPECT_TRUE(segments.output.contains("Hello world, this is a test of the subtitle editor.\n"))
        << segments.output.constData();
    const CommandLine::Outcome words = run(command + QStringList{u"--words"_s, u"--language"_s, u"en"_s});
    EXPECT_EQ(words.status, 0) << words.error.constData();
    // A phrase ends at its comma, and words made of several pieces are whole.
    EXPECT_TRUE(words.output.contains("\nHello world,\n")) << words.output.constData();
    EXPECT_TRUE(words.output.contains("\nthis is a test of the subtitle editor.\n")) << words.output.constData();
}

TEST_F(RealServices, what_a_service_recognised_is_reviewed_by_another)
{
    const Service service = speech();
    const Service reviewer = chat();
    const CommandLine::Outcome outcome =
        run({u"transcribe"_s, *SharedData::find(u"samples/en1-16k.wav"_s), u"--api"_s, service.address(u"/v1"_s),
             u"--api-model"_s, u"whisper-1"_s, u"--review"_s, u"--review-api"_s, reviewer.address(u"/v1/"_s),
             u"--review-api-model"_s, u"tiny"_s, u"--review-key-env"_s, u"MY_KEY"_s});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output.count("-->"), 2);
    EXPECT_FALSE(outcome.output.contains("Hello")) << outcome.output.constData();
}

TEST_F(RealServices, a_chat_service_translates_or_is_held_to_the_rules)
{
    const Service service = chat();
    const QStringList command = {u"translate"_s,   u"-"_s,   u"--to"_s, u"zh"_s, u"--api"_s, service.address(u"/v1"_s),
                                 u"--api-model"_s, u"tiny"_s};
    const QByteArray one = "1\n00:00:00,000 --> 00:00:01,000\nOnce\n";
    const CommandLine::Outcome two = run(command, one + "\n2\n00:00:01,000 --> 00:00:02,000\nupon\n");
    EXPECT_EQ(two.status, 0) << two.error.constData();
    EXPECT_TRUE(two.output.contains("2\n00:00:01,000 --> 00:00:02,000\n")) << two.output.constData();
    EXPECT_FALSE(two.output.contains("Once"));
    const CommandLine::Outcome tooMany = run(command, one);
    EXPECT_EQ(tooMany.status, 1);
    EXPECT_EQ(tooMany.error.left(tooMany.error.indexOf('\n')), "翻译条数不匹配，原字幕已保留，请重试。");
    qputenv("MY_KEY", "sk-another");
    const CommandLine::Outcome refused = run(command, one);
    EXPECT_TRUE(refused.error.startsWith("API 请求失败（HTTP 401）请检查 API 密钥。\n服务商提示："))
        << refused.error.constData();
}

TEST_F(RealServices, a_chat_service_cannot_transcribe)
{
    const Service service = chat();
    const CommandLine::Outcome outcome = run({u"transcribe"_s, *SharedData::find(u"samples/en1-16k.wav"_s), u"--api"_s,
                                              service.address(u"/no"_s), u"--api-model"_s, u"tiny"_s});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.error.startsWith("音频转写失败（HTTP 404）地址需支持 /audio/transcriptions，且模型需已开通。原"
                                         "字幕已保留。\n"))
        << outcome.error.constData();
    EXPECT_GT(outcome.error.count('\n'), 1); // the service's own words
}
