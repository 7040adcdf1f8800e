#include "ai/sound/MediaWaveform.h"

#include "ai/LocalAIJob.h"
#include "ai/sound/MediaSamples.h"
#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/sound/WaveformCache.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/WavMaker.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class MediaReading : public testing::Test
{
protected:
    void SetUp() override
    {
        QFile media(path);
        ASSERT_TRUE(media.open(QIODevice::WriteOnly));
    }

    MediaWaveform read(const QString &file)
    {
        return MediaWaveform::read(file, &cache, job, [this](const WaveformTeller::News &news) {
            grown.append(news.waveform.lengthMS());
            shares.append(news.share.value_or(-1));
        });
    }

    /// The sentence of the refusal, with its detail on a second line.
    QString refusal(const QString &file)
    {
        try {
            read(file);
            return u"nothing was refused"_s;
        } catch (const ConversionError &error) {
            return error.message() + u'\n' + error.detail();
        }
    }

    QTemporaryDir folder;
    HelperFolder helpers;
    QString path = folder.filePath(u"片段 01.mov"_s);
    WaveformCache cache{folder.filePath(u"cache"_s)};
    LocalAIJob job;
    QList<qint64> grown;
    QList<double> shares;
};

const QString says10Seconds = u"complain [info]   Duration: 00:00:10.00, start: 0.000000, bitrate: 87 kb/s"_s;

} // namespace

TEST_F(MediaReading, shows_what_came_before_all_is_read)
{
    helpers.script(u"ffmpeg-audio"_s, {says10Seconds, u"sound 2000 3000"_s, u"pause"_s, u"sound 0 5000"_s});
    const auto waveform = MediaWaveform::read(path, &cache, job, [&](const WaveformTeller::News &news) {
        grown.append(news.waveform.lengthMS());
        shares.append(news.share.value_or(-1));
        // Nothing more comes until what is there has been shown.
        if (grown.size() == 1)
            QFile(helpers.file(u"go-on"_s)).open(QIODevice::WriteOnly);
    });
    EXPECT_EQ(waveform.waveform.lengthMS(), 10'000);
    EXPECT_EQ(waveform.notice, QString());
    ASSERT_FALSE(grown.isEmpty());
    EXPECT_LE(grown.first(), 5'000);
    EXPECT_DOUBLE_EQ(shares.first(), double(grown.first()) / 10'000);
    EXPECT_EQ(waveform.waveform.between(0, 2'000), Peak());
    EXPECT_EQ(waveform.waveform.between(2'500, 2'600).high, 64);
    EXPECT_EQ(helpers.runs(u"ffmpeg-audio"_s).first(), MediaSamples::arguments(path));
    EXPECT_EQ(helpers.scratchFolders(), QStringList());
}

TEST_F(MediaReading, reads_an_unchanged_recording_once)
{
    helpers.script(u"ffmpeg-audio"_s, {u"sound 0 1000"_s});
    const Waveform first = read(path).waveform;
    EXPECT_EQ(read(path).waveform, first);
    EXPECT_EQ(helpers.runs(u"ffmpeg-audio"_s).size(), 1);
    QFile media(path);
    ASSERT_TRUE(media.open(QIODevice::Append) && media.write("more") == 4);
    media.close();
    read(path);
    EXPECT_EQ(helpers.runs(u"ffmpeg-audio"_s).size(), 2);
}

TEST_F(MediaReading, says_where_the_sound_ends_before_the_medium)
{
    helpers.script(u"ffmpeg-audio"_s, {says10Seconds, u"sound 0 4000"_s});
    EXPECT_EQ(read(path).notice, u"声音只到 00:00:04，媒体全长 00:00:10。"_s);
    EXPECT_EQ(read(path).notice, u"声音只到 00:00:04，媒体全长 00:00:10。"_s) << "it is said again";
    helpers.script(u"ffmpeg-audio"_s, {says10Seconds, u"sound 0 8000"_s});
    EXPECT_EQ(read(path).notice, QString());
}

TEST_F(MediaReading, says_what_is_wrong)
{
    helpers.script(u"ffmpeg-audio"_s, {u"complain [fatal] Stream map '0:a:0' matches no streams."_s,
                                       u"complain To ignore this, add a trailing '?' to the map."_s, u"exit 1"_s});
    EXPECT_EQ(refusal(path), u"这个文件里没有声音。\nStream map '0:a:0' matches no streams."_s);
    helpers.script(u"ffmpeg-audio"_s, {u"complain [error] 片段 01.mov: Invalid data"_s, u"exit 1"_s});
    const QString broken = u"无法读取这个文件的声音，请确认它可以正常播放。\n"_s;
    EXPECT_EQ(refusal(path), broken + u"片段 01.mov: Invalid data"_s);
    helpers.script(u"ffmpeg-audio"_s, {});
    EXPECT_EQ(refusal(path), broken) << "not a single sample";
    const QString missing = folder.filePath(u"没有.mov"_s);
    EXPECT_EQ(refusal(missing), u"找不到这个音视频文件，可能已移动或删除。\n"_s + missing);
}

TEST_F(MediaReading, ends_at_once_when_it_is_cancelled)
{
    for (const QString &stage : {u"wait"_s, u"flood output 100000000"_s}) {
        helpers.script(u"ffmpeg-audio"_s, {u"sound 0 100"_s, stage});
        LocalAIJob cancelled;
        const auto cancel = [&](const WaveformTeller::News & /*news*/) { cancelled.cancel(); };
        EXPECT_THROW(MediaWaveform::read(path, &cache, cancelled, cancel), Cancelled) << stage.toStdString();
        EXPECT_EQ(helpers.running(), 0);
        EXPECT_EQ(helpers.scratchFolders(), QStringList());
        EXPECT_FALSE(cache.find(WaveformCache::Key::of(path).value()));
    }
}

/// The same through the real helper, where there is one.
TEST(RealMediaWaveform, is_that_of_the_file)
{
    const QString helper = QStringLiteral(LINTORA_HELPERS);
    if (!QFile::exists(helper + u"/ffmpeg-audio"_s))
        GTEST_SKIP() << "the engines are not installed: " << helper.toStdString();
    qputenv("VELMORA_SUBTITLE_HELPERS", QFile::encodeName(helper));
    const QTemporaryDir folder;
    std::vector<double> samples(48'000 * 10);
    for (size_t i = 48'000 * 4; i < 48'000 * 5; ++i)
        samples[i] = 0.5 * (i / 50 % 2 == 0 ? 1 : -1);
    const QString path = folder.filePath(u"a.wav"_s);
    ASSERT_TRUE((Wav{.rate = 48'000, .channels = {samples}}).write(path));
    LocalAIJob job;
    const auto [waveform, notice] = MediaWaveform::read(path, nullptr, job, [](const auto &) {});
    qunsetenv("VELMORA_SUBTITLE_HELPERS");
    EXPECT_EQ(waveform.lengthMS(), 10'000);
    EXPECT_EQ(notice, QString());
    EXPECT_NEAR(waveform.between(4'400, 4'600).high, 64, 12); // the resampler rings at such edges
    EXPECT_LE(waveform.between(0, 3'900).high, 1);
    EXPECT_EQ(waveform.speech().onset(4'100, 200), 4'000);
    EXPECT_NEAR(double(waveform.speech().end(5'100, 200).value_or(0)), 5'000, SpeechBorders::frameMS);
}
