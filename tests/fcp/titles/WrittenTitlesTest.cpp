#include "fcp/titles/WrittenTitles.h"

#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/NewDocument.h"
#include "tests/support/Generator.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// Two clips whose own times begin elsewhere, one of them at another pace, and titles that the user has made.
QByteArray roughCut(const char *rate)
{
    return StoryDocument::sequence(
        QByteArray("sequence format=") + rate + " duration=100s tcStart=3600s",
        {tag("asset-clip ref=talk offset=3600s start=5s duration=20s",
             {tag("title ref=title lane=1 offset=6s duration=1s", {tag("text", {tag("text-style")})})}),
         tag("asset-clip ref=tape offset=3620s start=3600s duration=30s", {tag("conform-rate srcFrameRate=24")}),
         tag("gap offset=3650s start=3600s duration=50s")});
}

struct Written
{
    QByteArray document;
    std::vector<XmlDocument::Wanted> marks;
};

Written write(const QList<Subtitle> &cues, const Options &options, const QByteArray &base = {})
{
    const TitleDocument document =
        FCPXML::convert(cues, base.isEmpty() ? std::nullopt : std::optional(XmlDocument::parse(base, {})), options);
    return {.document = document.toUtf8(), .marks = document.marks()};
}

QString difference(const Written &written, const QList<Subtitle> &cues, const Options &options)
{
    try {
        WrittenTitles::verify(written.document, written.marks, {{.cues = cues, .options = options}});
    } catch (const ConversionError &error) {
        return error.message();
    }
    return {};
}

} // namespace

TEST(WrittenTitles, find_every_written_document_as_it_should_be)
{
    for (const auto &[format, rate] : {std::pair("p24", 1), std::pair("p25", 2), std::pair("p2398", 0)}) {
        Options options;
        options.rate = FrameRate::all()[size_t(rate)];
        QList<Subtitle> cues = Generator(quint32(rate)).cues(60, 20);
        // Two that start on one frame, and one that is told out of order.
        cues += {.id = 61, .start = cues[10].start, .end = cues[10].start + 5, .text = u"同一帧 <&> \"x\"\n二"_s};
        cues.removeIf([](const Subtitle &cue) { return cue.end > 99'000; });
        EXPECT_EQ(difference(write(cues, options), cues, options), QString()) << format;
        EXPECT_EQ(difference(write(cues, options, roughCut(format)), cues, options), QString()) << format;
        const TitleDocument clip = NewDocument::clip({{.cues = cues, .options = options}});
        EXPECT_NO_THROW(WrittenTitles::verifyClip(clip.toUtf8(), clip.marks(), {{.cues = cues, .options = options}}))
            << format;
        cues.last().text += u'!';
        EXPECT_THROW(WrittenTitles::verifyClip(clip.toUtf8(), clip.marks(), {{.cues = cues, .options = options}}),
                     ConversionError);
    }
}

TEST(WrittenTitles, name_the_first_cue_that_stands_otherwise)
{
    Options options;
    options.rate = FrameRate::all()[2];
    const QList<Subtitle> cues{{.id = 1, .start = 1'000, .end = 2'000, .text = u"一"_s},
                               {.id = 2, .start = 21'000, .end = 22'000, .text = u"二"_s},
                               {.id = 3, .start = 60'000, .end = 61'000, .text = u"三"_s}};
    const QString second = u"第 2 条字幕写入后核对不一致，原文件没有改动。"_s;
    const std::function<void(QList<Subtitle> &)> changes[] = {
        [](QList<Subtitle> &other) { other[1].start += 40; },
        [](QList<Subtitle> &other) { other[1].end -= 40; },
        [](QList<Subtitle> &other) { other[1].text += u'!'; },
        [](QList<Subtitle> &other) { other.removeAt(1); },
    };
    for (const auto &change : changes) {
        QList<Subtitle> other = cues;
        change(other);
        EXPECT_EQ(difference(write(other, options, roughCut("p25")), cues, options), second);
    }
    QList<Subtitle> more = cues;
    more += {.id = 4, .start = 70'000, .end = 71'000, .text = u"四"_s};
    EXPECT_EQ(difference(write(more, options), cues, options), u"第 3 条字幕写入后核对不一致，原文件没有改动。"_s);
    Written empty = write(cues, options);
    empty.marks[0].attributes = {{"ref", "nothing"}};
    EXPECT_EQ(difference(empty, cues, options), u"第 1 条字幕写入后核对不一致，原文件没有改动。"_s);
}
