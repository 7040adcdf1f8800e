#include "app/Lintora/sound/Player.h"

#include "core/ConversionError.h"
#include "tests/support/Events.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// A device that notes what it is told and says what a test has it say.
class ScriptedDevice : public MediaDevice
{
public:
    ScriptedDevice(Listener toTell, QStringList &told)
        : listener(std::move(toTell))
        , m_told(told)
    {}

    void open(const QString &path) override { m_told += u"open "_s + path; }
    void play() override { m_told += u"play"_s; }
    void pause() override { m_told += u"pause"_s; }
    void seek(qint64 ms) override { m_told += u"seek %1"_s.arg(ms); }
    void setRate(double rate) override { m_told += u"rate %1"_s.arg(rate); }

    Listener listener;

private:
    QStringList &m_told;
};

class PlayerTest : public testing::Test
{
protected:
    PlayerTest()
    {
        QObject::connect(&player, &Player::positionChanged, [this](qint64 ms) { positions.append(ms); });
        QObject::connect(&player, &Player::unavailable, [this](const QString &sentence) { said += sentence; });
    }

    QStringList take() { return std::exchange(told, {}); }

    QStringList told;
    QStringList said;
    QList<qint64> positions;
    ScriptedDevice *device = nullptr; ///< Null until it was made.
    Player player{[this](MediaDevice::Listener listener) {
        auto made = std::make_unique<ScriptedDevice>(std::move(listener), told);
        device = made.get();
        return made;
    }};
};

} // namespace

TEST_F(PlayerTest, makes_its_device_when_something_is_played_first)
{
    player.setFile(u"a.mov"_s);
    player.setRate(1.5);
    EXPECT_EQ(device, nullptr);
    player.seek(2'000);
    EXPECT_EQ(take(), (QStringList{u"open a.mov"_s, u"rate 1.5"_s, u"seek 2000"_s}));
    player.play();
    player.pause();
    player.setFile(u"b.mov"_s);
    EXPECT_EQ(take(), (QStringList{u"play"_s, u"pause"_s, u"open b.mov"_s}));
    EXPECT_EQ(player.positionMS(), 0);
    player.setFile({});
    take();
    player.play();
    EXPECT_EQ(take(), QStringList()) << "there is nothing to play";
}

TEST_F(PlayerTest, stands_until_the_device_plays_and_then_follows_it)
{
    player.setFile(u"a.mov"_s);
    player.seek(1'000);
    player.play();
    EXPECT_EQ(player.positionMS(), 1'000);
    device->listener.framed(QImage(), 960); // the picture that is shown then
    EXPECT_TRUE(Events::waitFor([&] { return player.positionMS() >= 1'100; }));
    const qint64 before = player.positionMS();
    device->listener.moved(before + 60);
    EXPECT_LT(player.positionMS(), before + 60) << "it does not jump for little";
    device->listener.moved(5'000);
    EXPECT_NEAR(double(player.positionMS()), 5'000, 200);
    player.pause();
    const qint64 paused = player.positionMS();
    device->listener.moved(9'000);
    EXPECT_EQ(player.positionMS(), paused) << "a word from before";
}

TEST_F(PlayerTest, plays_a_stretch_to_its_end_and_no_further)
{
    player.playStretch(1'000, 1'150);
    EXPECT_EQ(player.positionMS(), 1'000);
    ASSERT_TRUE(Events::waitFor([&] { return !player.isPlaying(); }));
    EXPECT_EQ(player.positionMS(), 1'150);
    EXPECT_TRUE(std::ranges::is_sorted(positions));
    EXPECT_GE(positions.size(), 4);
    player.playStretch(3'000, 3'100);
    player.seek(50);
    EXPECT_TRUE(player.isPlaying()) << "a seek lets go of the stretch, and goes on";
    ASSERT_TRUE(Events::waitFor([&] { return player.positionMS() > 200; }));
}

TEST_F(PlayerTest, begins_a_looped_stretch_anew)
{
    player.playStretch(1'000, 1'100, Player::Repeat::forever);
    EXPECT_TRUE(player.isLooping());
    const auto rounds = [&] { return positions.count(1'000); };
    ASSERT_TRUE(Events::waitFor([&] { return rounds() >= 3; }));
    EXPECT_LE(std::ranges::max(positions), 1'100);
    player.pause();
    EXPECT_FALSE(player.isLooping());
}

TEST_F(PlayerTest, ends_with_the_medium_and_begins_anew)
{
    player.setLength(1'000);
    player.seek(5'000);
    EXPECT_EQ(player.positionMS(), 1'000);
    player.play();
    EXPECT_LT(player.positionMS(), 500);
    player.seek(950);
    ASSERT_TRUE(Events::waitFor([&] { return !player.isPlaying(); }));
    EXPECT_EQ(player.positionMS(), 1'000);
    // The device may know of an earlier end.
    player.setFile(u"a.mov"_s);
    player.play();
    device->listener.ended();
    EXPECT_FALSE(player.isPlaying());
}

TEST_F(PlayerTest, keeps_its_rate_within_bounds)
{
    player.setRate(0.1);
    EXPECT_EQ(player.rate(), Player::slowest);
    player.setRate(9);
    EXPECT_EQ(player.rate(), Player::fastest);
    // Twice as fast as the clock.
    QElapsedTimer clock;
    player.play();
    clock.start();
    ASSERT_TRUE(Events::waitFor([&] { return clock.elapsed() >= 200; }));
    const double elapsed = double(clock.nsecsElapsed()) / 1e6;
    EXPECT_NEAR(double(player.positionMS()) / elapsed, 2, 0.2);
}

TEST_F(PlayerTest, says_each_thing_that_is_missing_once_and_goes_on)
{
    player.setFile(u"a.mov"_s);
    player.play();
    device->listener.noticed(u"没有声音"_s);
    device->listener.noticed(u"没有声音"_s);
    EXPECT_EQ(said, QStringList{u"没有声音"_s});
    EXPECT_TRUE(player.isPlaying());
    device->listener.failed(u"文件已损坏"_s);
    EXPECT_FALSE(player.isPlaying());
    EXPECT_EQ(said.size(), 2);
}

TEST(PlayerWithoutADevice, moves_by_the_clock)
{
    Player player([](const MediaDevice::Listener &) -> std::unique_ptr<MediaDevice> {
        throw ConversionError(u"缺少播放组件"_s);
    });
    QStringList said;
    QObject::connect(&player, &Player::unavailable, [&](const QString &sentence) { said += sentence; });
    player.setFile(u"a.mov"_s);
    player.playStretch(0, 60);
    ASSERT_TRUE(Events::waitFor([&] { return !player.isPlaying(); }));
    player.playStretch(0, 60);
    EXPECT_TRUE(player.isPlaying());
    EXPECT_EQ(said, QStringList{u"缺少播放组件"_s});
}
