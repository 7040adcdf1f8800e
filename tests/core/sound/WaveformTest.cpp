#include "core/sound/WaveformMaker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace {

using Samples = std::vector<qint16>;

/// A tone, silent outside [fromMS, toMS).
Samples tone(qint64 lengthMS, qint64 fromMS, qint64 toMS, double amplitude)
{
    Samples samples(size_t(lengthMS * WaveformMaker::samplesPerMS));
    for (auto i = size_t(fromMS * WaveformMaker::samplesPerMS); i < size_t(toMS * WaveformMaker::samplesPerMS); ++i)
        samples[i] =
            qint16(std::lround(32'768 * amplitude * std::sin(2 * std::numbers::pi * 440 * double(i) / 16'000)));
    return samples;
}

Waveform waveformOf(const Samples &samples)
{
    WaveformMaker maker;
    maker.add(samples);
    return maker.waveform();
}

QByteArray bytesOf(const Waveform &waveform)
{
    QByteArray bytes;
    waveform.write([&](QByteArrayView piece) { bytes += piece; });
    EXPECT_EQ(bytes.size(), waveform.byteCount());
    return bytes;
}

std::optional<Waveform> fromBytes(QByteArrayView bytes)
{
    return Waveform::read(bytes.size(), [&](std::span<char> piece) {
        if (bytes.size() < qsizetype(piece.size()))
            return false;
        std::ranges::copy(bytes.first(qsizetype(piece.size())), piece.begin());
        bytes = bytes.sliced(qsizetype(piece.size()));
        return true;
    });
}

/// Steps of full scale, outwards.
qint8 steps(int sample)
{
    return qint8(sample < 0 ? std::floor(sample * 127 / 32'768.0) : std::ceil(sample * 127 / 32'768.0));
}

} // namespace

TEST(Waveform, shows_a_tone_as_high_as_it_is)
{
    const Waveform waveform = waveformOf(tone(1'000, 200, 600, 0.5));
    EXPECT_EQ(waveform.lengthMS(), 1'000);
    EXPECT_EQ(waveform.between(0, 200), Peak());
    EXPECT_EQ(waveform.between(300, 310), (Peak{.low = -64, .high = 64, .isSpeech = true}));
    EXPECT_EQ(waveform.between(0, 1'000), (Peak{.low = -64, .high = 64, .isSpeech = true}));
    EXPECT_EQ(waveform.between(600, 1'000), Peak());
    EXPECT_EQ(waveform.between(5'000, 6'000), Peak());
    EXPECT_EQ(waveform.between(-50, -10), Peak());
    EXPECT_EQ(Waveform().between(0, 10), Peak());
}

TEST(Waveform, shows_at_every_zoom_what_its_samples_are)
{
    std::mt19937 random(20);
    const auto number = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
    constexpr int lengthMS = 65'003; // more than three parts, and the last stretch of less
    Samples samples(size_t(lengthMS * WaveformMaker::samplesPerMS));
    std::ranges::generate(samples, [&] { return qint16(number(-300, 200) * number(0, 100)); });
    // In blocks of any size.
    WaveformMaker maker;
    for (std::span<const qint16> rest = samples; !rest.empty();) {
        const auto count = std::min(rest.size(), size_t(number(1, 40'000)));
        maker.add(rest.first(count));
        rest = rest.subspan(count);
    }
    const Waveform waveform = maker.waveform();
    for (int round = 0; round < 300; ++round) {
        const int begin = number(0, lengthMS / 5) * 5;
        const int end = std::min(begin + (1 << number(0, 16)), lengthMS + 2);
        const auto first = samples.begin() + begin * WaveformMaker::samplesPerMS;
        const auto last = samples.begin() + std::min((end + 4) / 5 * 5, lengthMS) * WaveformMaker::samplesPerMS;
        const auto [low, high] = std::minmax_element(first, std::max(last, first + 1));
        const Peak peak = waveform.between(begin, end);
        ASSERT_EQ(peak.low, steps(*low)) << begin << " to " << end;
        ASSERT_EQ(peak.high, steps(*high)) << begin << " to " << end;
    }
}

TEST(Waveform, knows_where_speech_begins_and_ends)
{
    const Waveform waveform = waveformOf(tone(10'000, 4'000, 5'500, 0.3));
    EXPECT_EQ(waveform.speech().onset(4'150, 200), 4'000);
    EXPECT_EQ(waveform.speech().onset(4'250, 200), std::nullopt);
    EXPECT_EQ(waveform.speech().end(5'400, 200), 5'500);
    EXPECT_FALSE(waveform.between(3'900, 4'000).isSpeech);
    EXPECT_TRUE(waveform.between(3'900, 4'005).isSpeech);
    EXPECT_TRUE(waveform.between(5'495, 5'600).isSpeech);
    EXPECT_FALSE(waveform.between(5'500, 5'600).isSpeech);
    EXPECT_TRUE(waveformOf(tone(10'000, 0, 10'000, 0.3)).speech().isEmpty()) << "it is never quiet";
}

TEST(Waveform, stays_as_it_is_while_more_is_read)
{
    WaveformMaker maker;
    maker.add(tone(1'000, 0, 500, 0.5));
    const Waveform before = maker.waveform();
    const Waveform expected = waveformOf(tone(1'000, 0, 500, 0.5));
    maker.add(tone(60'000, 0, 60'000, 1));
    EXPECT_EQ(before, expected);
    EXPECT_EQ(maker.waveform().lengthMS(), 61'000);
    EXPECT_EQ(maker.waveform().between(0, 61'000).high, 127);
}

TEST(Waveform, of_two_sounds_together_is_as_high_as_both_may_be)
{
    const Waveform early = waveformOf(tone(30'003, 1'000, 8'000, 0.25));
    const Waveform late = waveformOf(tone(61'000, 7'000, 40'000, 0.5));
    for (const Waveform &both : {Waveform::together(early, late), Waveform::together(late, early)}) {
        EXPECT_EQ(both.lengthMS(), 61'000);
        EXPECT_EQ(both.between(1'100, 6'900), early.between(1'100, 6'900));
        EXPECT_EQ(both.between(7'100, 7'900).high, 96);
        EXPECT_EQ(both.between(0, 61'000).low, -96);
        EXPECT_EQ(both.between(8'000, 61'000), late.between(8'000, 61'000));
        EXPECT_EQ(both.speech().onset(1'000, 50), 1'000);
    }
    // Silent for longer than is looked at in one piece.
    const Waveform afterSilence = waveformOf(tone(45'000, 30'000, 40'000, 0.25));
    const Waveform both = Waveform::together(afterSilence, waveformOf(tone(61'000, 0, 1'000, 0.5)));
    EXPECT_EQ(both.between(30'100, 39'900), afterSilence.between(30'100, 39'900));
    const Waveform loud = waveformOf(tone(1'000, 0, 1'000, 0.9));
    EXPECT_EQ(Waveform::together(loud, loud).between(0, 500).high, 127);
    EXPECT_EQ(Waveform::together(Waveform(), loud), loud);
}

TEST(Waveform, comes_back_from_its_bytes)
{
    for (const qint64 lengthMS : {0, 3, 5, 10, 10'000, 20'480, 50'003}) {
        const Waveform waveform = waveformOf(tone(lengthMS, lengthMS / 4, lengthMS / 2, 0.7));
        const auto back = fromBytes(bytesOf(waveform));
        ASSERT_TRUE(back) << lengthMS;
        EXPECT_EQ(*back, waveform) << lengthMS;
        EXPECT_EQ(back->speech().onset(lengthMS / 4, 50), waveform.speech().onset(lengthMS / 4, 50)) << lengthMS;
        EXPECT_EQ(back->between(0, lengthMS), waveform.between(0, lengthMS)) << lengthMS;
    }
    EXPECT_FALSE(fromBytes(QByteArray(5, '\0'))) << "no whole stretch";
    EXPECT_FALSE(fromBytes(QByteArray::fromHex("02010000"))) << "low above high";
}
