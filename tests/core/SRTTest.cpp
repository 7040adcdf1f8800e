#include "core/SRT.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "tests/support/Generator.h"

#include <QRegularExpression>
#include <QStringEncoder>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView badFormat = u"第 %1 条字幕格式有误，请检查序号和时间码。";
constexpr QStringView emptyOrBackwards = u"第 %1 条字幕为空，或结束时间早于开始时间。";
const QString control = u"字幕含 XML 不支持的控制字符。"_s;
const QString nothing = u"没有找到字幕。"_s;
const QString encoding = u"字幕编码不支持。请先另存为 UTF-8 或 UTF-16。"_s;

QString about(QStringView message, qint64 number)
{
    return message.toString().arg(number);
}

/// The cues as text, or the refusal: two readings compare as strings, and a difference shows itself.
template <class Read>
std::string outcome(Read &&read)
{
    try {
        QString text;
        for (const Subtitle &cue : read())
            text += u"%1 [%2,%3) %4\n"_s.arg(cue.id).arg(cue.start).arg(cue.end).arg(cue.text);
        return text.toStdString();
    } catch (const ConversionError &error) {
        return "refused: " + error.message().toStdString();
    }
}

std::string outcomeOf(const QString &text)
{
    return outcome([&] { return SRT::parse(text); });
}

/// The reader as the patterns say it, one step after the other. Slow, and plainly right.
class PatternReader
{
public:
    QList<Subtitle> parse(QString text)
    {
        text.remove(QChar(0xFEFF));
        text.replace(u"\r\n"_s, u"\n"_s);
        text.replace(u'\r', u'\n');
        QList<Subtitle> cues;
        for (const QString &block : text.split(m_separator)) {
            if (!block.trimmed().isEmpty())
                cues.append(readBlock(block.trimmed(), cues.size() + 1));
        }
        if (cues.isEmpty())
            throw ConversionError(nothing);
        return cues;
    }

private:
    Subtitle readBlock(const QString &block, qint64 number) const
    {
        const QStringList lines = block.split(u'\n');
        qsizetype timeLine = 0;
        if (!lines[0].contains(u"-->")) {
            QString first = lines[0];
            while (!first.isEmpty() && (first.back() == u'\t' || first.back().category() == QChar::Separator_Space))
                first.chop(1);
            static const QRegularExpression decimal(u"^[+-]?[0-9]+\\z"_s);
            bool inRange = false;
            first.toLongLong(&inRange);
            if (!decimal.match(first).hasMatch() || !inRange)
                throw ConversionError(about(badFormat, number));
            timeLine = 1;
        }
        if (timeLine >= lines.size())
            throw ConversionError(about(badFormat, number));
        const auto match = m_times.match(lines[timeLine].trimmed());
        if (!match.hasMatch())
            throw ConversionError(about(badFormat, number));
        const auto time = [&](int group) {
            const auto field = [&](int index) { return match.captured(group + index).toLongLong(); };
            return ((field(0) * 60 + field(1)) * 60 + field(2)) * 1000 + field(3);
        };
        QString text = lines.sliced(timeLine + 1).join(u'\n').trimmed();
        text.remove(m_tags);
        text.replace(u"&lt;"_s, u"<"_s).replace(u"&gt;"_s, u">"_s).replace(u"&quot;"_s, u"\""_s);
        text.replace(u"&amp;"_s, u"&"_s);
        if (time(5) <= time(1) || text.trimmed().isEmpty())
            throw ConversionError(about(emptyOrBackwards, number));
        for (const QChar c : text) {
            if (c < u' ' && c != u'\t' && c != u'\n')
                throw ConversionError(control);
        }
        return {.id = number, .start = time(1), .end = time(5), .text = text};
    }

    static QString withSpace(QString pattern)
    {
        // Unicode's White_Space, spelt out: the library's own \s has one character more.
        return pattern
            .replace(u"\\s"_s, u"[\\t-\\r \\x{85}\\x{A0}\\x{1680}\\x{2000}-\\x{200A}\\x{2028}\\x{2029}"
                               u"\\x{202F}\\x{205F}\\x{3000}]"_s)
            .replace(u"\\d"_s, u"[0-9]"_s);
    }

    QRegularExpression m_separator{u"\n[ \t]*\n+"_s};
    QRegularExpression m_times{withSpace(u"^\\s*(\\d{1,3}):([0-5]\\d):([0-5]\\d)[,.](\\d{3})\\s*-->\\s*"
                                         u"(\\d{1,3}):([0-5]\\d):([0-5]\\d)[,.](\\d{3})(?:\\s+.*)?$"_s)};
    // White space spelt out stands inside brackets of its own, which is no trouble outside of a set.
    QRegularExpression m_tags{withSpace(u"(?i)</?(?:b|i|u|font)(?:\\s+[^>]*)?>"_s)};
};

QString mutated(QString text, Generator &generator)
{
    static const QStringList pieces =
        (u"\n|\n\n|\r\n|\r| |\t|\u3000|\u00A0|\u2028|\u0085|\u200B|\u180E|\uFEFF|\v|\f|-->|"
         u" --> |00:00:01,000|:|,|.|1|+7|-0|9223372036854775808|\uFF11|<b>|</B>|<i x>|"
         u"<font\ncolor=x>|<u\u3000a>|<b |<span>|<|>|&lt;|&amp;|&amp;lt;|&quot;|&|\u0007|\0|好|😀|"
         u"é|X1:100 X2:200"_s)
            .split(u'|');
    for (qint64 edits = generator.number(0, 4); edits > 0; --edits) {
        const qsizetype at = generator.number(0, text.size());
        if (generator.chance(60))
            text.insert(at, generator.pick(pieces));
        else
            text.remove(at, generator.number(1, 4));
    }
    // An edit must not leave half a character behind; that is another test's subject.
    return text.isValidUtf16() ? text : QString(u"1"_s);
}

QString sampleDocument(Generator &generator)
{
    QString text;
    for (const Subtitle &cue : generator.cues(generator.number(1, 4)))
        text += u"%1\n%2 --> %3\n%4\n\n"_s.arg(cue.id).arg(SRT::stamp(cue.start), SRT::stamp(cue.end), cue.text);
    return text;
}

} // namespace

TEST(SRT, reads_what_the_patterns_read)
{
    Generator generator(20'240'501);
    PatternReader patterns;
    for (int i = 0; i < 60'000; ++i) {
        const QString text = mutated(sampleDocument(generator), generator);
        ASSERT_EQ(outcomeOf(text), outcome([&] { return patterns.parse(text); })) << text.toStdString();
    }
}

TEST(SRT, accepts)
{
    struct Row
    {
        const char *name;
        QString text;
        QList<Subtitle> cues;
    };
    const QList<Subtitle> one{{.id = 1, .start = 1'000, .end = 2'000, .text = u"A"_s}};
    const QString longest = u"999:59:59,999"_s;
    for (const auto &[name, text, cues] : {
             Row{"a plain cue", u"1\n00:00:01,000 --> 00:00:02,000\nA\n"_s, one},
             Row{"no sequence number", u"00:00:01,000 --> 00:00:02,000\nA"_s, one},
             Row{"any sequence number", u"+0042\n00:00:01,000 --> 00:00:02,000\nA"_s, one},
             Row{"full stops and no blanks", u"1\n0:00:01.000-->0:00:02.000\nA"_s, one},
             Row{"position hints", u"1\n00:00:01,000 --> 00:00:02,000 X1:100 X2:200 Y1:..\nA"_s, one},
             Row{"CR LF", u"1\r\n00:00:01,000 --> 00:00:02,000\r\nA\r\n\r\n"_s, one},
             Row{"CR", u"1\r00:00:01,000 --> 00:00:02,000\rA\r\r"_s, one},
             Row{"byte order marks anywhere", u"\uFEFF1\n00:00:0\uFEFF1,000 --> 00:00:02,000\nA\uFEFF"_s, one},
             Row{"blank lines of blanks", u" \n\t\n\n1\n00:00:01,000 --> 00:00:02,000\nA\n \t \n"_s, one},
             Row{"ideographic blanks in the time line", u"1\n00:00:01,000\u3000-->\u300000:00:02,000\nA"_s, one},
             Row{"the longest time",
                 u"1\n00:00:01,000 --> %1\nA"_s.arg(longest),
                 {{.id = 1, .start = 1'000, .end = 3'599'999'999, .text = u"A"_s}}},
             Row{"a tab inside",
                 u"1\n00:00:01,000 --> 00:00:02,000\nA\tB\nC"_s,
                 {{.id = 1, .start = 1'000, .end = 2'000, .text = u"A\tB\nC"_s}}},
             Row{"tags and entities",
                 u"1\n00:00:01,000 --> 00:00:02,000\n<i>Hello</i> &amp;lt; <span>x</span>"_s,
                 {{.id = 1, .start = 1'000, .end = 2'000, .text = u"Hello &lt; <span>x</span>"_s}}},
             Row{"an empty block is not counted",
                 u"7\n00:00:01,000 --> 00:00:02,000\nA\n\n\u3000\n\n9\n"
                 u"00:00:00,000 --> 00:00:00,001\nB"_s,
                 {one[0], {.id = 2, .start = 0, .end = 1, .text = u"B"_s}}},
         }) {
        EXPECT_EQ(outcomeOf(text), outcome([&] { return cues; })) << name;
    }
}

TEST(SRT, refuses)
{
    const QString good = u"1\n00:00:01,000 --> 00:00:02,000\nA\n\n"_s;
    const auto withTimes = [](const QString &line) { return u"1\n%1\nA"_s.arg(line); };
    const auto withText = [](const QString &text) { return u"1\n00:00:01,000 --> 00:00:02,000\n%1"_s.arg(text); };
    struct Row
    {
        const char *name;
        QString text;
        QString message;
    };
    for (const auto &[name, text, message] : {
             Row{"nothing", u""_s, nothing},
             Row{"white space", u" \n\u3000\n"_s, nothing},
             Row{"no time line", u"1"_s, about(badFormat, 1)},
             Row{"a blank line before the time line", u"1\n\n00:00:01,000 --> 00:00:02,000\nA"_s, about(badFormat, 1)},
             Row{"words for a number", u"one\n00:00:01,000 --> 00:00:02,000\nA"_s, about(badFormat, 1)},
             Row{"full-width digits", u"１\n00:00:01,000 --> 00:00:02,000\nA"_s, about(badFormat, 1)},
             Row{"a number beyond 64 bits", u"9223372036854775808\n00:00:01,000 --> 00:00:02,000\nA"_s,
                 about(badFormat, 1)},
             Row{"one-digit minutes", withTimes(u"0:0:01,000 --> 00:00:02,000"_s), about(badFormat, 1)},
             Row{"two-digit milliseconds", withTimes(u"00:00:01,00 --> 00:00:02,000"_s), about(badFormat, 1)},
             Row{"sixty seconds", withTimes(u"00:00:60,000 --> 00:01:02,000"_s), about(badFormat, 1)},
             Row{"four-digit hours", withTimes(u"1000:00:01,000 --> 1000:00:02,000"_s), about(badFormat, 1)},
             Row{"a hint without a blank", withTimes(u"00:00:01,000 --> 00:00:02,000X1:1"_s), about(badFormat, 1)},
             Row{"end at start", withTimes(u"00:00:01,000 --> 00:00:01,000"_s), about(emptyOrBackwards, 1)},
             Row{"end before start", withTimes(u"00:00:02,000 --> 00:00:01,999"_s), about(emptyOrBackwards, 1)},
             Row{"no text", withText(u""_s), about(emptyOrBackwards, 1)},
             Row{"only tags", withText(u"<b> </b>"_s), about(emptyOrBackwards, 1)},
             Row{"a bell", withText(u"A\u0007"_s), control},
             Row{"a zero", withText(u"A"_s + QChar(0) + u"B"_s), control},
             Row{"the third cue, after an empty block", good + good + u"\u3000\n\nx\n"_s, about(badFormat, 3)},
         }) {
        EXPECT_EQ(outcomeOf(text), "refused: " + message.toStdString()) << name;
    }
}

TEST(SRT, says_in_the_detail_where_in_the_file_the_cue_stands_and_what_it_is_called_there)
{
    const QByteArray good = "41\r\n00:00:01,000 --> 00:00:02,000\r\nA\r\nB\r\n\r\n";
    const QByteArray time = "00:00:01,000 --> 00:00:02,000\n";
    for (const auto &[bytes, detail] : {
             std::pair<QByteArray, QString>{good + "57\n00:00:0x\nA", u"位于文件第 7 行，文件中的序号是 57。"_s},
             {good + "57", u"位于文件第 6 行，文件中的序号是 57。"_s},
             {good + "\n\n00:00:01 -> 00:00:02\nA", u"位于文件第 8 行，文件中没有序号。"_s},
             {good + "57\n" + time + "\nA", u"位于文件第 7 行，文件中的序号是 57。"_s},
             {good + "57\n" + time + "A\nB\a", u"位于文件第 9 行，文件中的序号是 57。"_s},
             {QByteArray(50, '0') + "\nx", u"位于文件第 2 行，文件中的序号是 %1…。"_s.arg(QString(40, u'0'))},
             {good + "58\n" + time + "caf\xE9", u"文件第 8 行不是 UTF-8。"_s},
             {"\xFF\xFE\x31", u"文件带有 UTF-16 标记，其中却有残缺的字符。"_s},
             {"", QString()},
         }) {
        try {
            SRT::decode(bytes);
            ADD_FAILURE() << bytes.toStdString();
        } catch (const ConversionError &error) {
            EXPECT_EQ(error.detail().toStdString(), detail.toStdString());
        }
    }
}

TEST(SRT, decodes_both_utf16_orders_and_utf8_alike)
{
    const QString text = u"1\r\n00:00:01,000 --> 00:00:02,000\r\n你好 😀 café\r\n"_s;
    const std::string expected = outcomeOf(text);
    using Encoding = QStringConverter::Encoding;
    for (const Encoding encoding : {Encoding::Utf8, Encoding::Utf16LE, Encoding::Utf16BE}) {
        QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
        const QByteArray bytes = encoder.encode(text);
        EXPECT_EQ(outcome([&] { return SRT::decode(bytes); }), expected);
    }
    EXPECT_EQ(outcome([&] { return SRT::decode(text.toUtf8()); }), expected);
}

TEST(SRT, refuses_bytes_that_are_no_text)
{
    const QByteArray head = "1\n00:00:01,000 --> 00:00:02,000\nA";
    for (const QByteArray &bytes : {
             head + "\xFF",
             head + "\xC0\x80",
             head + "\xED\xA0\x80",
             head + "\xF4\x90\x80\x80",
             head + "\xE4\xBD",
             // The encoding counts before the first bad cue.
             QByteArray("no cue\n\xFF"),
             QByteArray("\xFF\xFE\x31\x00\x0A", 5),     // odd length
             QByteArray("\xFF\xFE\x00\xD8\x31\x00", 6), // lone surrogate
             QByteArray("\xFE\xFF\x00", 3),
         }) {
        EXPECT_EQ(outcome([&] { return SRT::decode(bytes); }), "refused: " + encoding.toStdString())
            << bytes.toHex().data();
    }
}

TEST(SRT, text_full_of_unclosed_tags_takes_linear_time)
{
    // Read again for each tag, a megabyte of them would take minutes.
    const QString text = u"1\n00:00:01,000 --> 00:00:02,000\n"_s + u"<b "_s.repeated(400'000);
    EXPECT_EQ(SRT::parse(text).front().text.size(), 400'000 * 3 - 1);
}

TEST(SRT, stamps)
{
    for (const auto &[milliseconds, stamp] : {
             std::pair<qint64, QString>{0, u"00:00:00,000"_s},
             {3'599'999, u"00:59:59,999"_s},
             {3'600'000, u"01:00:00,000"_s},
             {360'000'000, u"100:00:00,000"_s},
             {-1'500, u"00:00:-1,-500"_s},
             {-3'661'001, u"-1:-1:-1,-01"_s},
             {std::numeric_limits<qint64>::max(), u"2562047788015:12:55,807"_s},
             {std::numeric_limits<qint64>::min(), u"-2562047788015:-12:-55,-808"_s},
         })
        EXPECT_EQ(SRT::stamp(milliseconds).toStdString(), stamp.toStdString());
}

TEST(SRT, serialises_line_by_line)
{
    const QList<Subtitle> cues{{.id = 7, .start = 1'000, .end = 2'500, .text = u"A"_s},
                               {.id = 7, .start = 2'500, .end = 3'000, .text = u"B <&>\nC"_s}};
    EXPECT_EQ(SRT::serialize(cues),
              u"1\n00:00:01,000 --> 00:00:02,500\nA\n\n2\n00:00:02,500 --> 00:00:03,000\nB <&>\nC\n"_s);
    EXPECT_EQ(SRT::serialize({}), QString());
}

TEST(SRT, what_is_written_reads_the_same)
{
    Generator generator(11);
    // More than one block of the writer, and more cues than the reader's first estimate.
    const QList<Subtitle> cues = generator.cues(8'000);
    EXPECT_EQ(SRT::parse(SRT::serialize(cues)), cues);
}

TEST(SRT, a_file_that_cannot_be_read_keeps_the_platforms_words)
{
    try {
        SRT::read(u"/nonexistent/a.srt"_s);
        ADD_FAILURE();
    } catch (const PlatformError &error) {
        EXPECT_EQ(error.detail(), u"文件：/nonexistent/a.srt"_s) << "once";
    }
    EXPECT_THROW(SRT::read(u"/"_s), PlatformError);
}
