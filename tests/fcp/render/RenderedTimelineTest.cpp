#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "core/ConversionError.h"
#include "fcp/render/FCPAudioRenderer.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/StoryDocument.h"
#include "tests/support/WavMaker.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

using namespace Qt::StringLiterals;

namespace {

/// Where a click is and how high, between the samples.
struct Click
{
    double place; ///< Samples.
    double level; ///< Of full scale.
};

/// A click is a bell of this width: it has no frequency that 16 kHz could not carry.
constexpr double width = 0.0004; // seconds

/// A click of `level` in the middle of every half second of a recording, a little different in each channel.
Wav clicks(int rate, int channels, double seconds, double level)
{
    Wav wav{.rate = rate};
    for (int channel = 0; channel < channels; ++channel) {
        std::vector<double> samples(size_t(seconds * rate));
        for (size_t i = 0; i < samples.size(); ++i) {
            const double away = std::fmod(double(i) / rate, 0.5) - 0.25;
            samples[i] = level * std::pow(0.8, channel) * std::exp(-away * away / (2 * width * width));
        }
        wav.channels.push_back(std::move(samples));
    }
    return wav;
}

/// The highest place within a few samples of `expected`, by the parabola through three samples' logarithms, which for a
/// bell is exact.
Click findClick(const std::vector<double> &samples, double expected)
{
    const auto from = std::max<qint64>(std::llround(expected) - 40, 1);
    const auto to = std::min<qint64>(std::llround(expected) + 40, qint64(samples.size()) - 1);
    qint64 top = from;
    for (qint64 i = from; i < to; ++i) {
        if (samples[size_t(i)] > samples[size_t(top)])
            top = i;
    }
    const auto height = [&](qint64 i) { return std::log(std::max(samples[size_t(i)], 1e-9)); };
    const double left = height(top - 1);
    const double middle = height(top);
    const double right = height(top + 1);
    const double shift = (left - right) / (2 * (left - 2 * middle + right));
    return {.place = double(top) + shift, .level = std::exp(middle - (left - right) * shift / 4)};
}

class RenderedTimeline : public testing::Test
{
protected:
    void SetUp() override
    {
        try {
            helper = LocalModels::helper(u"ffmpeg-audio"_s);
        } catch (const ConversionError &error) {
            GTEST_SKIP() << "the engines are not installed: " << error.detail().toStdString();
        }
    }

    QString path(const QString &name) const { return folder.filePath(name); }

    /// A file of ten seconds of clicks, and the level that the helper's own mono mix of it has.
    QUrl source(int rate, int channels)
    {
        const QString name = path(u"%1-%2.wav"_s.arg(rate).arg(channels));
        if (!mixedLevel.contains(name)) {
            EXPECT_TRUE(clicks(rate, channels, 10, 0.15).write(name));
            const QString mono = path(u"mono.wav"_s);
            QProcess::execute(helper, {u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-y"_s, u"-i"_s, name, u"-af"_s,
                                       u"aresample=16000,aformat=sample_fmts=fltp:channel_layouts=mono"_s, mono});
            const auto wav = Wav::read(mono);
            mixedLevel[name] = wav ? findClick(wav->channels[0], 0.25 * 16'000).level : 0;
        }
        return QUrl::fromLocalFile(name);
    }

    std::vector<double> render(const FCPAudioPlan &plan)
    {
        LocalAIJob job;
        const QString wav =
            FCPAudioRenderer::render(plan, job, folder.path(), [&](const Progress &news) { lines.append(news.what); });
        const auto rendered = Wav::read(wav);
        EXPECT_TRUE(rendered && rendered->rate == 16'000 && rendered->channels.size() == 1);
        return rendered ? rendered->channels.front() : std::vector<double>();
    }

    QTemporaryDir folder;
    QString helper;
    std::map<QString, double> mixedLevel;
    QStringList lines;
};

class RenderedPlans : public RenderedTimeline, public testing::WithParamInterface<int>
{};

} // namespace

TEST_P(RenderedPlans, have_every_piece_at_its_sample_and_level)
{
    const std::vector<std::pair<int, int>> kinds = {{44'100, 1}, {44'100, 2}, {48'000, 1}, {48'000, 2}, {48'000, 6}};
    const std::vector<double> gains = {1, 0.5, 0.25, 1.25};
    FCPAudioPlan plan{.name = u"Film"_s};
    for (int i = 0; i < GetParam(); ++i) {
        const auto [rate, channels] = kinds[size_t(i) % kinds.size()];
        // Pieces overlap, now and then is a gap, and nothing falls on a whole sample.
        plan.segments.append({.url = source(rate, channels),
                              .fileStart = i % 19 * 0.5 + 0.0137 * (i % 7),
                              .offset = i * 6 * 1'001 / 24'000.0 + i / 10 * 0.3,
                              .duration = 0.4,
                              .gain = gains[size_t(i) % gains.size()]});
    }
    plan.duration = plan.segments.last().offset + 2.00001;
    const std::vector<double> sound = render(plan);
    EXPECT_EQ(qint64(sound.size()), std::llround(plan.duration * 16'000));
    for (const FCPAudioSegment &segment : plan.segments) {
        const double inFile = std::floor(segment.fileStart / 0.5) * 0.5 + 0.25;
        const double expected = (segment.offset + inFile - segment.fileStart) * 16'000;
        const Click click = findClick(sound, expected);
        EXPECT_NEAR(click.place, expected, 1);
        const double level = mixedLevel[segment.url.toLocalFile()] * segment.gain;
        EXPECT_NEAR(20 * std::log10(click.level / level), 0, 0.1) << segment.url.toLocalFile().toStdString();
    }
    const int batches = (GetParam() + 19) / 20;
    EXPECT_EQ(lines.size(), batches);
    EXPECT_EQ(lines.value(0), u"正在读取 FCP 音轨 %1 / %2"_s.arg(std::min(20, GetParam())).arg(GetParam()));
    EXPECT_EQ(QDir(folder.path()).exists(u"fcp-mix.wav"_s), batches > 1);
    // What has been added up is not kept: it would fill the disk.
    EXPECT_EQ(QDir(folder.path()).entryList({u"fcp-stem*.wav"_s}).size(), batches > 1 ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(of, RenderedPlans, testing::Values(1, 20, 21, 250));

TEST_F(RenderedTimeline, of_a_conformed_clip_stays_within_a_frame_of_its_picture)
{
    const QUrl url = source(48'000, 2);
    const QByteArray document = StoryDocument::sequence(
        "sequence format=p24 tcStart=0s duration=20s",
        {tag("gap offset=0s duration=3s"), tag("asset-clip ref=clicks offset=3s start=1001/24000s duration=9s",
                                               {tag("conform-rate srcFrameRate=23.98")})},
        {tag("asset id=clicks hasAudio=1 start=0s duration=10s", {tag("media-rep src=" + url.toEncoded())})});
    const std::vector<double> sound = render(FCPAudioPlan::parse(document));
    ASSERT_EQ(sound.size(), 320'000U);
    const double start = 1'001 / 24'000.0;
    for (double inFile = 0.25; inFile < 9; inFile += 0.5) {
        const double expected = 3 + inFile - start;
        const Click click = findClick(sound, expected * 16'000);
        EXPECT_NEAR(click.place, expected * 16'000, 1);
        EXPECT_NEAR(20 * std::log10(click.level / mixedLevel[url.toLocalFile()]), 0, 0.1);
        // The picture is faster by a thousandth.
        EXPECT_NEAR(click.place / 16'000, 3 + (inFile - start) / 1.001, 1 / 24.0);
    }
}

TEST_F(RenderedTimeline, is_silent_where_the_sound_ends_before_the_plan_does)
{
    const FCPAudioPlan plan{.segments = {{.url = source(48'000, 1), .fileStart = 9, .offset = 1, .duration = 5}},
                            .duration = 20};
    const std::vector<double> sound = render(plan);
    ASSERT_EQ(sound.size(), 320'000U);
    EXPECT_TRUE(std::all_of(sound.begin() + 33'000, sound.end(), [](double sample) { return sample == 0; }));
}

TEST_F(RenderedTimeline, is_silent_where_a_clip_lies_beyond_the_end_of_its_file)
{
    const std::vector<double> sound =
        render({.segments = {{.url = source(48'000, 1), .fileStart = 50, .offset = 1, .duration = 5}}, .duration = 20});
    EXPECT_EQ(sound, std::vector<double>(320'000));
}

TEST_F(RenderedTimeline, is_recognised_whole_and_each_phrase_once)
{
    // A phrase around each click; they follow each other without a pause, so that every border cuts one.
    constexpr qint64 half = 250;
    Wav minute = clicks(16'000, 1, 60, 0.5);
    for (size_t i = 0; i < minute.channels[0].size(); ++i)
        minute.channels[0][i] += i % 100 < 50 ? 0.01 : -0.01; // a hum: nowhere is silence
    ASSERT_TRUE(minute.write(path(u"minute.wav"_s)));
    FCPAudioPlan plan{.duration = 1'500};
    for (int i = 0; i < 23; ++i) {
        const double silence = i < 3 ? 0 : 100;
        plan.segments.append(
            {.url = QUrl::fromLocalFile(path(u"minute.wav"_s)), .offset = i * 60 + silence, .duration = 60});
    }
    int ranges = 0;
    LocalAIJob job;
    const auto recognize = [&](const QString &wav, qint64 durationMS, const Workspace &, const ProgressReport &) {
        const auto sound = Wav::read(wav);
        const std::vector<double> samples = sound ? sound->channels[0] : std::vector<double>();
        EXPECT_EQ(qint64(samples.size()), durationMS * 16);
        const qint64 jitter = ++ranges % 2 == 0 ? 60 : -60; // no two runs agree
        QList<Subtitle> cues;
        for (size_t i = 1; i + 1 < samples.size(); ++i) {
            if (samples[i] > 0.4 && samples[i] > samples[i - 1] && samples[i] >= samples[i + 1])
                cues.append({.start = std::max<qint64>(qint64(i) / 16 - half + jitter, 0),
                             .end = std::min(qint64(i) / 16 + half + jitter, durationMS),
                             .text = u"话"_s});
        }
        return cues;
    };
    const QList<Subtitle> cues =
        FCPAudioRenderer::transcribe(plan, job, recognize, [&](const Progress &news) { lines.append(news.what); });
    ASSERT_EQ(ranges, 3);
    EXPECT_EQ(lines.last(), u"正在识别时间线音频范围 3 / 3"_s);
    ASSERT_EQ(cues.size(), 23 * 120);
    for (qsizetype i = 0; i < cues.size(); ++i) {
        const qint64 middle = i * 500 + 250 + (i < 360 ? 0 : 100'000);
        EXPECT_EQ(cues[i].id, i + 1);
        EXPECT_NEAR(double(cues[i].start), double(middle - half), 70) << i;
        EXPECT_NEAR(double(cues[i].end), double(middle + half), 190) << i;
    }
}

TEST(FCPAudioRenderer, says_when_nobody_speaks_and_passes_on_why_a_file_cannot_be_read)
{
    HelperFolder helpers;
    helpers.script(u"ffmpeg-audio"_s, {u"wav 5"_s});
    QFile file(helpers.file(u"a.mov"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const FCPAudioPlan plan{.segments = {{.url = QUrl::fromLocalFile(file.fileName()), .duration = 5}}, .duration = 5};
    LocalAIJob job;
    const auto refusal = [&] {
        try {
            FCPAudioRenderer::transcribe(
                plan, job, [](auto &&...) { return QList<Subtitle>(); }, [](const Progress &) {});
            return QString();
        } catch (const ConversionError &error) {
            return error.message() + error.detail();
        }
    };
    EXPECT_EQ(refusal(), u"未识别到有效语音，请检查时间线人声。"_s);
    helpers.script(u"ffmpeg-audio"_s, {u"complain a.mov: no sound"_s, u"exit 1"_s});
    EXPECT_EQ(refusal(), u"本地处理未完成。请确认文件可正常播放、模型完整，并重试。a.mov: no sound"_s);
    helpers.script(u"ffmpeg-audio"_s, {u"complain no frames"_s});
    EXPECT_EQ(refusal(), u"所选 FCP 内容没有可读取的音轨。no frames"_s);
    EXPECT_EQ(helpers.scratchFolders(), QStringList());
}
