#include "fcp/render/TimelineWaveform.h"

#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/sound/WaveformMaker.h"
#include "fcp/render/RenderedSound.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/WavMaker.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

class TimelineDrawing : public testing::Test
{
protected:
    /// `count` pieces of half a second, one a second, of one file.
    FCPAudioPlan planOf(int count) const
    {
        FCPAudioPlan plan{.duration = double(count)};
        for (int i = 0; i < count; ++i)
            plan.segments.append({.url = QUrl::fromLocalFile(media),
                                  .fileStart = 0.25,
                                  .offset = double(i),
                                  .duration = 0.5,
                                  .gain = 1});
        return plan;
    }

    void SetUp() override
    {
        std::vector<double> samples(48'000);
        for (size_t i = 0; i < samples.size(); ++i)
            samples[i] = 0.5 * std::sin(double(i) / 10);
        ASSERT_TRUE((Wav{.rate = 48'000, .channels = {samples}}).write(media));
    }

    TimelineWaveform render(const FCPAudioPlan &plan)
    {
        return TimelineWaveform::render(
            plan, cache, job, folder.path(), [](const Progress & /*progress*/) {},
            [this](const WaveformTeller::News &news) { told.append(news); });
    }

    static Waveform waveformOf(const QString &wav)
    {
        WaveformMaker maker;
        RenderedSound(wav).forEachBlock([&](const std::vector<qint16> &samples) { maker.add(samples); });
        return maker.waveform();
    }

    QTemporaryDir folder;
    QString media = folder.filePath(u"a.wav"_s);
    WaveformCache cache{folder.filePath(u"cache"_s)};
    LocalAIJob job;
    QList<WaveformTeller::News> told;
};

} // namespace

TEST_F(TimelineDrawing, shows_and_keeps_what_is_rendered_batch_by_batch)
{
    try {
        LocalModels::helper(u"ffmpeg-audio"_s);
    } catch (const ConversionError &error) {
        GTEST_SKIP() << "the engines are not installed: " << error.detail().toStdString();
    }
    for (const int pieces : {3, 45}) {
        const FCPAudioPlan plan = planOf(pieces);
        told.clear();
        const TimelineWaveform drawn = render(plan);
        EXPECT_EQ(drawn.waveform, waveformOf(drawn.file)) << pieces;
        EXPECT_EQ(drawn.waveform.lengthMS(), pieces * 1'000);
        EXPECT_EQ(drawn.waveform.speech().count(), pieces);
        EXPECT_EQ(cache.find(TimelineWaveform::key(plan)), drawn.waveform);
        double before = 0;
        for (const auto &news : std::as_const(told)) {
            EXPECT_GE(news.share, before) << pieces;
            before = *news.share;
            // No piece lies over another: what is told while the batches are added up is no louder.
            EXPECT_LE(news.waveform.between(0, 45'000).high, drawn.waveform.between(0, 45'000).high) << pieces;
        }
        EXPECT_TRUE(std::ranges::any_of(told, [](const auto &news) { return !news.waveform.isEmpty(); })) << pieces;
    }
}

TEST_F(TimelineDrawing, shows_what_there_is_before_the_helper_ends)
{
    HelperFolder helpers;
    helpers.script(u"ffmpeg-audio"_s, {u"wav 2 1"_s, u"pause"_s});
    FCPAudioPlan plan = planOf(1);
    plan.duration = 4;
    const auto goOn = [&](const WaveformTeller::News &news) {
        told.append(news);
        if (news.waveform.lengthMS() == 3'000)
            QFile(helpers.file(u"go-on"_s)).open(QIODevice::WriteOnly);
    };
    const auto drawn = TimelineWaveform::render(
        plan, cache, job, folder.path(), [](const auto & /*now*/) {}, goOn);
    EXPECT_EQ(told.last().waveform.lengthMS(), 3'000);
    EXPECT_EQ(told.last().share, 0.75);
    EXPECT_EQ(drawn.waveform.lengthMS(), 4'000) << "it is as long as the plan";
    EXPECT_EQ(drawn.waveform, waveformOf(drawn.file));
    const auto cancel = [&](const WaveformTeller::News & /*news*/) { job.cancel(); };
    QFile::remove(helpers.file(u"go-on"_s));
    EXPECT_THROW(TimelineWaveform::render(
                     plan, cache, job, folder.path(), [](const auto & /*now*/) {}, cancel),
                 Cancelled);
    EXPECT_EQ(helpers.running(), 0);
}

TEST_F(TimelineDrawing, is_kept_by_all_that_it_depends_on)
{
    const auto key = TimelineWaveform::key(planOf(45));
    FCPAudioPlan named = planOf(45);
    named.name = u"another"_s;
    EXPECT_EQ(TimelineWaveform::key(named), key);
    QList<FCPAudioPlan> others(5, planOf(45));
    others[0].duration += 1;
    others[1].segments.last().gain = 0.5;
    others[2].segments[30].offset += 0.001;
    others[3].segments.removeLast();
    others[4].segments[7].url = QUrl::fromLocalFile(media + u".other"_s);
    for (const FCPAudioPlan &other : std::as_const(others))
        EXPECT_NE(TimelineWaveform::key(other).name, key.name);
    QFile file(media);
    ASSERT_TRUE(file.open(QIODevice::Append) && file.write("more") == 4);
    file.close();
    EXPECT_EQ(TimelineWaveform::key(planOf(45)).name, key.name);
    EXPECT_NE(TimelineWaveform::key(planOf(45)).state, key.state);
}
