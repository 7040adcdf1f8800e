#include "core/repair/SubtitleRepair.h"

#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/SRT.h"
#include "tests/support/Generator.h"

#include <unicode/ucnv.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const auto noCheck = [] {};

RepairedFile repaired(const QByteArray &bytes, const QString &encoding = {})
{
    return SubtitleRepair::read(bytes, encoding, noCheck);
}

/// `text` in `encoding`, by the library that reads it too.
QByteArray encoded(const QString &text, const QString &encoding)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter *const converter = ucnv_open(encoding.toLatin1().constData(), &status);
    QByteArray bytes(text.size() * 4, Qt::Uninitialized);
    bytes.truncate(ucnv_fromUChars(converter, bytes.data(), int32_t(bytes.size()), QStringView(text).utf16(),
                                   int32_t(text.size()), &status));
    ucnv_close(converter);
    EXPECT_TRUE(U_SUCCESS(status));
    return bytes;
}

/// "start-end text" of every cue, | between them, / for line feeds.
std::string cues(const RepairedFile &file)
{
    QStringList list;
    for (const Subtitle &cue : file.items)
        list += u"%1-%2 %3"_s.arg(cue.start).arg(cue.end).arg(QString(cue.text).replace(u'\n', u'/'));
    return list.join(u'|').toStdString();
}

/// "line[#cue] what" of every repair, | between them.
std::string repairs(const RepairedFile &file)
{
    QStringList list;
    for (const FileRepair &each : file.repairs)
        list +=
            u"%1%2 %3"_s.arg(each.line).arg(each.cue ? u'#' + QString::number(*each.cue) : QString()).arg(each.what);
    return list.join(u'|').toStdString();
}

} // namespace

TEST(SubtitleRepair, leaves_a_file_in_order_alone)
{
    const QByteArray bytes = SRT::serialize(Generator(1).cues(100)).toUtf8();
    const RepairedFile file = repaired(bytes);
    EXPECT_EQ(file.items, SRT::decode(bytes));
    EXPECT_TRUE(file.repairs.isEmpty());
    EXPECT_EQ(file.encoding, u"UTF-8"_s);
    EXPECT_EQ(file.certainty, 1);
}

TEST(SubtitleRepair, reads_damaged_subrip_as_it_was_meant)
{
    struct Case
    {
        const char *file;
        std::string cues;
        std::string repairs;
    };
    for (const Case &each : {
             Case{"1\n00:00:01,5 --> 00:00:02\n好\n", "1500-2000 好", "2#1 时间码写法不规范：00:00:01,5 --> 00:00:02"},
             Case{"1\n00:01.50 -> 1：02：03，004\n好\n", "1500-3723004 好",
                  "2#1 时间码写法不规范：00:01.50 -> 1：02：03，004"},
             Case{"00:00:01,0 --> 00:00:02,000\n好\n\n2\n00:00:03,000 --> 00:00:04,000\n走\n",
                  "1000-2000 好|3000-4000 走",
                  "1#1 缺少序号，已补上|1#1 时间码写法不规范：00:00:01,0 --> 00:00:02,000"},
             Case{"1\n00:00:01,000 --> 00:00:02,000\n好\n\n天\n\n\n2\n00:00:03,000 --> 00:00:04,000\n走\n",
                  "1000-2000 好/天|3000-4000 走", "2#1 字幕中间有空行，已去掉"},
             Case{"1\n1\n00:00:01,000 --> 00:00:02,000\n好\n\n1\n00:00:03,000 --> 00:00:04,000\n走\n",
                  "1000-2000 好|3000-4000 走", "1#1 序号重复，已去掉多余的一个|6#2 序号 1 重复，已重新编号"},
             Case{"1\n00:00:01,000 --> 00:00:02,000\n2024\n2\n00:00:03,000 --> 00:00:04,0\n走\n",
                  "1000-2000 2024|3000-4000 走", "5#2 时间码写法不规范：00:00:03,000 --> 00:00:04,0"},
             Case{
                 "1\n00:00:01,000 --> 00:00:02,000\n\n2\n00:00:03,000 --> 00:00:04,000\n<i></i>\n\n3\n00:00:05,000 --> "
                 "00:00:06,000\n<b>走</b>&amp;\n",
                 "5000-6000 走&", "2 没有文字，已略去|5 没有文字，已略去"},
             Case{"1\n00:00:02,000 --> 00:00:01,000\n好\n", "1000-2000 好", "2#1 结束早于开始，已对调"},
             Case{"1\n00:00:01,000 --> 00:00:02,000\n好\n\n2\n00:00:05,000 --> 00:00:01,500\n走\n\n3\n00:00:06,000 --> "
                  "00:00:07,000\n啊\n",
                  "1000-2000 好|5000-6000 走|6000-7000 啊", "6#2 结束不晚于开始，结束移到 00:00:06,000"},
             Case{"1\n00:00:01,000 --> 00:00:01,000\n好\n", "1000-3000 好",
                  "2#1 结束不晚于开始，结束移到 00:00:03,000"},
             Case{"听写\n1\n00:00:99,000 --> 00:00:02,000\n好\n\n2\n00:00:03,000 --> 00:00:04,000\n走\n",
                  "3000-4000 走",
                  "1 不属于任何字幕，已略去：听写|3 时间码无法读取，已略去：00:00:99,000 --> 00:00:02,000|4 "
                  "不属于任何字幕，已略去：好"},
             Case{"1\n00:00:01,000 --> 00:00:02,000\n好\x07天\n", "1000-2000 好天", "2#1 去掉了控制字符或不可见字符"},
         }) {
        const RepairedFile file = repaired(each.file);
        EXPECT_EQ(cues(file), each.cues) << each.file;
        EXPECT_EQ(repairs(file), each.repairs) << each.file;
    }
}

TEST(SubtitleRepair, reads_webvtt_and_names_what_is_dropped)
{
    const RepairedFile file =
        repaired("WEBVTT - title\nKind: captions\n\nSTYLE\n::cue { color: red }\n\nNOTE by me\n\n"
                 "intro\n00:01.000 --> 00:02.000 align:start line:0\n<c.red>你好</c>&nbsp;&lt;3\n\n"
                 "00:00:03.000 --> 00:00:04.000\n<v 张三>再见</v>\n<00:00:03.500>走\n");
    EXPECT_EQ(cues(file), "1000-2000 你好 <3|3000-4000 再见/走");
    EXPECT_EQ(repairs(file),
              "4 已略去 STYLE 段|7 已略去 NOTE 段|10#1 已略去位置：align:start line:0|10#1 已略去样式|13#2 "
              "已略去说话人：张三");
}

TEST(SubtitleRepair, reads_ass_and_names_what_is_dropped)
{
    const RepairedFile file =
        repaired("[Script Info]\nTitle: x\n[V4+ Styles]\nStyle: Default,Arial\n[Events]\n"
                 "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
                 "Dialogue: 0,0:00:03.00,0:00:04.50,Default,,0,0,0,,再见,{\\i1}朋友\\N走\n"
                 "Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,你好\\h世界\n"
                 "Comment: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,note\n"
                 "Dialogue: 0,0:00:05.00,0:00:06.00,Default,,0,0,0,,{\\p1}m 0 0 l 1 1{\\p0}\nDialogue: 0,x\n");
    EXPECT_EQ(cues(file), "1000-2000 你好 世界|3000-4500 再见,朋友/走");
    EXPECT_EQ(repairs(file),
              "3 已略去样式：[V4+ Styles]|7 已按开始时间排列|7#2 已略去样式和位置：{\\i1}|9 已略去 Comment "
              "行|10 已略去图形|11 字段不全，已略去：0,x");
}

TEST(SubtitleRepair, finds_the_encoding)
{
    const QString text = u"1\n00:00:01,000 --> 00:00:02,000\n今天我們來聊一聊調色的問題，因為這個很重要\n\n"
                         u"2\n00:00:03,000 --> 00:00:04,000\n大家好，歡迎來到我的頻道\n"_s;
    const QString simplified = u"1\n00:00:01,000 --> 00:00:02,000\n今天我们来聊一聊调色的问题，因为这个很重要\n\n"
                               u"2\n00:00:03,000 --> 00:00:04,000\n大家好，欢迎来到我的频道\n"_s;
    const QString japanese = u"1\n00:00:01,000 --> 00:00:02,000\nこんにちは、今日は天気がいいですね。\n\n"
                             u"2\n00:00:03,000 --> 00:00:04,000\nありがとうございます\n"_s;
    const QString russian =
        u"1\n00:00:01,000 --> 00:00:02,000\nСегодня мы поговорим о том, как это работает на самом деле\n"_s;
    struct Case
    {
        QString text;
        QString encoding;
    };
    for (const Case &each :
         {Case{simplified, u"GB18030"_s}, Case{text, u"Big5"_s}, Case{japanese, u"Shift_JIS"_s},
          Case{russian, u"windows-1251"_s}, Case{simplified, u"UTF-16LE"_s}, Case{simplified, u"UTF-16BE"_s}}) {
        const QByteArray bytes = encoded(each.text, each.encoding);
        const RepairedFile file = repaired(bytes);
        EXPECT_EQ(file.encoding.toStdString(), each.encoding.toStdString());
        EXPECT_GT(file.certainty, 0.1);
        EXPECT_LE(file.certainty, 1);
        EXPECT_EQ(file.items, SRT::parse(each.text));
        ASSERT_FALSE(file.guesses.isEmpty());
        EXPECT_TRUE(each.text.contains(file.guesses[0].sample.section(u" / "_s, 0, 0)));
        EXPECT_EQ(repairs(file), "1 按 " + each.encoding.toStdString() + " 读取");
    }
    EXPECT_EQ(repaired(encoded(text, u"Big5"_s), u"big5"_s).certainty, 1);
    const RepairedFile wrong = repaired("1\n00:00:01,000 --> 00:00:02,000\n\xFF\xFE\xFD好\n", u"UTF-8"_s);
    EXPECT_TRUE(repairs(wrong).find("个字符无法读取，以 U+FFFD 代替") != std::string::npos);
}

TEST(SubtitleRepair, refuses_what_holds_no_cue)
{
    for (const QByteArray &bytes : {QByteArray(), QByteArray("hello\n"), QByteArray("WEBVTT\n\nNOTE x\n"),
                                    QByteArray("1\n00:00:01,000 --> 00:00:02,000\n")})
        EXPECT_THROW(repaired(bytes), ConversionError) << bytes.constData();
    EXPECT_THROW(repaired("1\n00:00:01,000 --> 00:00:02,000\n好\n", u"EBCDIC"_s), ConversionError);
    EXPECT_THROW(SubtitleRepair::read("x", {}, [] { throw Cancelled(); }), Cancelled);
}

TEST(SubtitleRepair, makes_what_the_strict_reader_takes_of_any_damage)
{
    Generator generator(5);
    const QByteArray whole = SRT::serialize(generator.cues(40)).toUtf8();
    for (int round = 0; round < 300; ++round) {
        QByteArray bytes = whole;
        for (qint64 left = generator.number(1, 30); left > 0; --left) {
            const qsizetype at = generator.number(0, bytes.size() - 2);
            if (generator.chance(50))
                bytes.remove(at, generator.number(1, 3));
            else
                bytes.insert(at,
                             generator.pick(QList<QByteArray>{"\n", "\n\n", "1", ":", "-->", " ", "<", "&", "\x01"}));
        }
        const RepairedFile file = repaired(bytes, u"UTF-8"_s);
        QList<Subtitle> again;
        ASSERT_NO_THROW(again = SRT::parse(SRT::serialize(file.items))) << bytes.constData();
        ASSERT_EQ(again, file.items) << bytes.constData();
    }
}
