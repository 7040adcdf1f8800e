#include "fcp/render/RenderArguments.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

FCPAudioSegment segment(double fileStart, double offset, double duration, double gain = 1)
{
    return {.url = QUrl::fromLocalFile(u"/m/访谈 1.mov"_s),
            .fileStart = fileStart,
            .offset = offset,
            .duration = duration,
            .gain = gain};
}

} // namespace

TEST(RenderArguments, a_stem_is_asked_for_to_the_letter)
{
    EXPECT_EQ(RenderArguments::stem({segment(3.25, 1.5, 10), segment(0, 0.00003125, 1001.0 / 24'000, 0.5)}, 12.5,
                                    u"/w/fcp-stem0.wav"_s)
                  .join(u' '),
              u"-nostdin -hide_banner -loglevel error -ss 3.250000 -t 10.000000 -i /m/访谈 1.mov "
              "-ss 0.000000 -t 0.041708 -i /m/访谈 1.mov -filter_complex "
              "[0:a:0]aresample=16000,aformat=sample_fmts=fltp:channel_layouts=mono,atrim=duration=10.000000,"
              "asetpts=PTS-STARTPTS,volume=1.000000,adelay=delays=24000S:all=1[a0];"
              "[1:a:0]aresample=16000,aformat=sample_fmts=fltp:channel_layouts=mono,atrim=duration=0.041708,"
              "asetpts=PTS-STARTPTS,volume=0.500000,adelay=delays=1S:all=1[a1];"
              "[a0][a1]amix=inputs=2:normalize=0[out] "
              "-map [out] -t 12.500000 -ar 16000 -ac 1 -c:a pcm_s16le -y /w/fcp-stem0.wav"_s);
}

TEST(RenderArguments, a_mix_is_asked_for_to_the_letter)
{
    EXPECT_EQ(RenderArguments::mix({u"/w/fcp-stem0.wav"_s, u"/w/fcp-stem1.wav"_s}, 10'800, u"/w/fcp-mix.wav"_s),
              QStringList({u"-nostdin"_s,
                           u"-hide_banner"_s,
                           u"-loglevel"_s,
                           u"error"_s,
                           u"-i"_s,
                           u"/w/fcp-stem0.wav"_s,
                           u"-i"_s,
                           u"/w/fcp-stem1.wav"_s,
                           u"-filter_complex"_s,
                           u"[0:a:0][1:a:0]amix=inputs=2:normalize=0[out]"_s,
                           u"-map"_s,
                           u"[out]"_s,
                           u"-t"_s,
                           u"10800.000000"_s,
                           u"-ar"_s,
                           u"16000"_s,
                           u"-ac"_s,
                           u"1"_s,
                           u"-c:a"_s,
                           u"pcm_s16le"_s,
                           u"-y"_s,
                           u"/w/fcp-mix.wav"_s}));
}

TEST(RenderArguments, numbers_have_six_decimals_rounded_as_the_format_says_and_delays_are_whole_samples)
{
    const auto written = [](const FCPAudioSegment &each) {
        const QStringList arguments = RenderArguments::stem({each}, 1, u"/w"_s);
        const QString graph = RenderArguments::filterGraph({each});
        return arguments[5] + u' ' + graph.section(u"delays="_s, 1).section(u'S', 0, 0);
    };
    EXPECT_EQ(written(segment(0.0078125, 1.0 / 32'000, 1)), u"0.007812 1"_s); // a tie goes to the even digit
    EXPECT_EQ(written(segment(0.0234375, 0.99 / 32'000, 1)), u"0.023438 0"_s);
    EXPECT_EQ(written(segment(1e9, 10'799.99999, 1)), u"1000000000.000000 172800000"_s);
    EXPECT_EQ(written(segment(1e-9, 3.0 / 32'000, 1)), u"0.000000 2"_s);
    EXPECT_TRUE(RenderArguments::filterGraph({segment(0, 0, 1, 1e308)}).contains(u".000000,adelay"));
}
