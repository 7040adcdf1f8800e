#include "ai/HelperPrograms.h"
#include "core/ConversionError.h"
#include "tests/support/CommandLine.h"
#include "tests/support/SharedData.h"
#include "tests/support/TestModels.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class lintora_cli_time : public testing::Test
{
protected:
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName();
    }

    QTemporaryDir folder;
};

/// A token of the recogniser's full JSON.
QByteArray token(const QByteArray &text, int from, int to)
{
    return R"({"text":")" + text + R"(","offsets":{"from":)" + QByteArray::number(from) + R"(,"to":)" +
           QByteArray::number(to) + R"(},"id":1,"p":0.9})";
}

} // namespace

TEST_F(lintora_cli_time, takes_words_of_which_a_character_was_cut_in_two)
{
    const QByteArray hao = "好";
    const QByteArray words =
        R"({"transcription":[{"offsets":{"from":0,"to":2000},"text":"大家好","tokens":[)" +
        QByteArrayList{token("[_BEG_]", 0, 0), token("大家", 400, 800), token(hao.first(2), 800, 1'000),
                       token(hao.sliced(2), 1'000, 1'200), token("。", 1'200, 1'200)}
            .join(',') +
        R"(]},{"offsets":{"from":2000,"to":3000},"text":" Hello","tokens":[]}]})";
    const QString script = write(u"文稿.txt"_s, "大家好！\nHello\n");
    const auto timed = CommandLine::run(
        {u"time"_s, script, u"--words"_s, write(u"words.json"_s, words), u"--rate"_s, u"25"_s, u"--json"_s});
    EXPECT_EQ(timed.output,
              R"({"items":[{"confidence":1,"end":1200,"id":1,"start":400,"text":"大家好！","unsure":false},)"
              R"({"confidence":1,"end":3000,"id":2,"start":2000,"text":"Hello","unsure":false}],)"
              R"("unscripted":[],"unspoken":[]})"
              "\n")
        << timed.error.toStdString();

    EXPECT_EQ(CommandLine::run({u"time"_s, script}).status, 2);
    EXPECT_EQ(CommandLine::run({u"time"_s, script, u"a.wav"_s, u"--words"_s, u"b.json"_s}).status, 2);
    const auto broken = CommandLine::run({u"time"_s, script, u"--words"_s, write(u"no.json"_s, "{")});
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.error, "语音引擎返回了无法读取的结果。\n");
}

TEST_F(lintora_cli_time, listens_with_the_real_recogniser)
{
    const auto model = TestModels::find(u"scripted-zh.bin"_s);
    const auto sample = SharedData::find(u"samples/zh1-16k.wav"_s);
    try {
        LocalModels::helper(u"whisper-cli"_s);
        LocalModels::helper(u"ffmpeg-audio"_s);
    } catch (const ConversionError &) {
        GTEST_SKIP() << "the engines are not installed";
    }
    if (!model || !sample)
        GTEST_SKIP() << "no model or no sample";
    const QString script = write(u"文稿.txt"_s, "你好，世界！\n这句没有人说过\n我们一起去公园散步。\n");
    const auto timed = CommandLine::run(
        {u"time"_s, script, *sample, u"--model-file"_s, *model, u"--language"_s, u"zh"_s, u"--json"_s});
    const QJsonObject result = QJsonDocument::fromJson(timed.output).object();
    const QJsonArray items = result[u"items"].toArray();
    ASSERT_EQ(items.size(), 3) << timed.error.toStdString();
    EXPECT_EQ(items[0][u"confidence"].toDouble(), 1);
    EXPECT_TRUE(items[1][u"unsure"].toBool());
    EXPECT_GT(items[2][u"start"].toInt(), items[0][u"end"].toInt());
    EXPECT_EQ(result[u"unspoken"].toArray(),
              QJsonArray({QJsonObject({{u"cue"_s, 2}, {u"text"_s, u"这句没有人说过"_s}})}));
    EXPECT_FALSE(result[u"unscripted"].toArray().isEmpty());
}
