// Plays real media. Run by playback.sh, with and without an audio device.

#include "app/Lintora/sound/Player.h"
#include "app/Lintora/sound/device/QtMediaDevice.h"
#include "tests/support/Events.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int rate = 25; ///< Pictures a second.
constexpr int bits = 8;
constexpr qint64 lengthMS = 10'000;

/// The number that is written into a picture as white and black stripes, the lowest bit to the left.
int numberOf(const QImage &picture)
{
    int number = 0;
    for (int bit = 0; bit < bits; ++bit) {
        const int x = (2 * bit + 1) * picture.width() / (2 * bits);
        if (qGray(picture.pixel(x, picture.height() / 2)) > 128)
            number |= 1 << bit;
    }
    return number;
}

class Playback : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        if (!qEnvironmentVariableIsSet("QT_MEDIA_BACKEND"))
            qputenv("QT_MEDIA_BACKEND", "gstreamer");
        media = std::make_unique<QTemporaryDir>();
        const QString stripes =
            u"nullsrc=s=160x90:r=%1:d=%2,geq=lum='if(mod(floor(N/pow(2,floor(X/20))),2),235,16)':cb=128:cr=128"_s
                .arg(rate)
                .arg(lengthMS / 1'000);
        const QString tone = u"sine=440:d=%1"_s.arg(lengthMS / 1'000);
        isMade = make({u"-i"_s, stripes, u"-f"_s, u"lavfi"_s, u"-i"_s, tone, u"-pix_fmt"_s, u"yuv420p"_s, u"-g"_s,
                       u"40"_s, path(u"numbered.mp4"_s)}) &&
                 make({u"-i"_s, tone, path(u"tone.wav"_s)});
    }
    static void TearDownTestSuite() { media.reset(); }

    static bool make(const QStringList &arguments)
    {
        const QStringList common{u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s};
        return QProcess::execute(u"ffmpeg"_s, common + arguments) == 0;
    }

    static QString path(const QString &name) { return media->filePath(name); }

    void SetUp() override
    {
        if (!isMade)
            GTEST_SKIP() << "ffmpeg, which makes what is played, is not installed";
        QObject::connect(&player, &Player::framed, [this](const QImage &picture) {
            if (!picture.isNull())
                shown = numberOf(picture);
        });
        QObject::connect(&player, &Player::unavailable, [this](const QString &sentence) { said += sentence; });
    }

    static inline std::unique_ptr<QTemporaryDir> media;
    static inline bool isMade = false;
    std::optional<int> shown; ///< The number of the picture shown last.
    QStringList said;
    Player player{[](MediaDevice::Listener listener) { return std::make_unique<QtMediaDevice>(std::move(listener)); }};
};

} // namespace

TEST_F(Playback, shows_the_picture_at_the_position_while_it_stands)
{
    player.setFile(path(u"numbered.mp4"_s));
    for (const qint64 ms : {3'480, 3'519, 3'520, 40, 9'960, 0, 5'000}) {
        shown.reset();
        player.seek(ms);
        EXPECT_TRUE(Events::waitFor([&] { return shown == int(ms * rate / 1'000); }))
            << ms << " ms shows " << shown.value_or(-1);
        EXPECT_EQ(player.positionMS(), ms);
    }
}

TEST_F(Playback, shows_the_newest_of_many_positions)
{
    player.setFile(path(u"numbered.mp4"_s));
    for (qint64 ms = 0; ms < 8'000; ms += 40)
        player.seek(ms);
    EXPECT_TRUE(Events::waitFor([&] { return shown == 199; })) << shown.value_or(-1);
}

TEST_F(Playback, goes_as_the_clock_goes_and_the_pictures_with_it)
{
    player.setFile(path(u"numbered.mp4"_s));
    player.seek(1'000);
    for (const double speed : {1.0, 2.0, 0.5}) {
        player.setRate(speed);
        player.seek(1'000);
        player.play();
        ASSERT_TRUE(Events::waitFor([&] { return player.positionMS() > 1'300; }));
        QElapsedTimer clock;
        clock.start();
        const qint64 from = player.positionMS();
        ASSERT_TRUE(Events::waitFor([&] { return clock.elapsed() > 1'500; }));
        const double passed = double(player.positionMS() - from) / double(clock.elapsed());
        EXPECT_NEAR(passed, speed, speed * 0.1);
        EXPECT_NEAR(double(*shown), double(player.positionMS()) * rate / 1'000, std::max(3.0, 4 * speed)) << speed;
        player.pause();
    }
}

TEST_F(Playback, plays_a_cue_and_stays_at_its_end)
{
    for (const QString &name : {u"numbered.mp4"_s, u"tone.wav"_s}) {
        player.setFile(path(name));
        player.playStretch(2'000, 2'600);
        ASSERT_TRUE(Events::waitFor([&] { return !player.isPlaying(); })) << name.toStdString();
        EXPECT_EQ(player.positionMS(), 2'600);
    }
}

TEST_F(Playback, ends_where_the_medium_ends)
{
    for (const QString &name : {u"numbered.mp4"_s, u"tone.wav"_s}) {
        player.setFile(path(name));
        player.seek(9'500);
        player.play();
        ASSERT_TRUE(Events::waitFor([&] { return !player.isPlaying(); })) << name.toStdString();
        EXPECT_NEAR(double(player.positionMS()), double(lengthMS), 150);
        player.playStretch(500, 700);
        ASSERT_TRUE(Events::waitFor([&] { return !player.isPlaying(); })) << "it can be played again";
        EXPECT_EQ(player.positionMS(), 700);
    }
}

TEST_F(Playback, says_what_cannot_be_played)
{
    QFile text(path(u"text.mp4"_s));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly) && text.write("no medium") > 0);
    text.close();
    for (const QString &name : {u"text.mp4"_s, u"missing.mp4"_s}) {
        player.setFile(path(name));
        player.play();
        const auto isSaid = [&] { return said.join(u' ').contains(u"无法播放这个文件"); };
        EXPECT_TRUE(Events::waitFor(isSaid)) << said.join(u' ').toStdString();
        EXPECT_FALSE(player.isPlaying());
        said.clear();
    }
    player.setFile(path(u"numbered.mp4"_s));
    player.seek(2'000);
    EXPECT_TRUE(Events::waitFor([&] { return shown == 50; })) << "another file plays";
}

/// The file goes while it plays, as a drive that is unplugged does not: it is read to its end.
TEST_F(Playback, goes_on_when_its_file_is_deleted)
{
    const QString copy = path(u"copy.mp4"_s);
    ASSERT_TRUE(QFile::copy(path(u"numbered.mp4"_s), copy));
    player.setFile(copy);
    player.seek(1'000);
    player.play();
    ASSERT_TRUE(Events::waitFor([&] { return player.positionMS() > 1'200; }));
    QFile::remove(copy);
    ASSERT_TRUE(Events::waitFor([&] { return player.positionMS() > 2'000; }));
    EXPECT_TRUE(player.isPlaying());
}

TEST_F(Playback, says_that_there_is_no_audio_device)
{
    player.setFile(path(u"tone.wav"_s));
    player.play();
    ASSERT_TRUE(Events::waitFor([&] { return player.positionMS() > 300; }));
    const bool hasDevice = qEnvironmentVariableIsSet("LINTORA_NULL_SINK");
    EXPECT_EQ(said, hasDevice ? QStringList() : QStringList{u"没有可用的音频输出设备，播放时没有声音。"_s});
}
