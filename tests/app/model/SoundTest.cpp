#include "app/model/Sound.h"

#include "tests/support/Events.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/ModelTest.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class SoundTest : public ModelTest
{
protected:
    SoundTest() { helpers.script(u"ffmpeg-audio"_s, {u"sound 1000 1000"_s}); }

    ~SoundTest() override
    {
        model.reset();
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
        EXPECT_EQ(helpers.scratchFolders(), QStringList());
    }

    Sound &sound() { return model->sound(); }
    qsizetype runs() const { return helpers.runs(u"ffmpeg-audio"_s).size(); }

    QString choose(const QString &name)
    {
        const QString path = write(name, "media of " + name.toUtf8());
        model->recognition().setMedia(QUrl::fromLocalFile(path));
        return path;
    }

    void finish()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !sound().isReading(); }));
        Events::handle();
    }

    static FCPAudioPlan planOf(const QString &media)
    {
        FCPAudioPlan plan;
        plan.name = u"粗剪"_s;
        plan.duration = 2;
        plan.segments = {{.url = QUrl::fromLocalFile(media), .fileStart = 0, .offset = 0, .duration = 2, .gain = 1}};
        return plan;
    }

    HelperFolder helpers;
};

} // namespace

TEST_F(SoundTest, is_read_once_somebody_shows_it)
{
    const QString path = choose(u"访谈.mov"_s);
    EXPECT_TRUE(sound().hasMedium());
    EXPECT_EQ(sound().title(), u"访谈.mov"_s);
    EXPECT_EQ(sound().file(), path);
    EXPECT_FALSE(sound().isReading());
    EXPECT_EQ(runs(), 0);
    qint64 lengthAtEnd = 0;
    QObject::connect(&sound(), &Sound::readingChanged, [&] {
        if (!sound().isReading())
            lengthAtEnd = sound().waveform().lengthMS();
    });
    sound().setShown(true);
    EXPECT_TRUE(sound().isReading());
    finish();
    EXPECT_EQ(sound().waveform().lengthMS(), 2'000);
    EXPECT_EQ(lengthAtEnd, 2'000);
    EXPECT_EQ(sound().waveform().speech().onset(1'000, 50), 1'000);
    EXPECT_EQ(sound().trouble(), QString());
}

TEST_F(SoundTest, shows_what_there_is_while_it_reads_and_another_medium_in_its_place)
{
    helpers.script(u"ffmpeg-audio"_s, {u"sound 500 500"_s, u"pause"_s, u"sound 1000 0"_s});
    sound().setShown(true);
    choose(u"a.mov"_s);
    ASSERT_TRUE(Events::waitFor([&] { return sound().waveform().lengthMS() == 1'000; }));
    EXPECT_TRUE(sound().isReading());
    helpers.script(u"ffmpeg-audio"_s, {u"sound 3000 0"_s});
    choose(u"b.mov"_s);
    EXPECT_TRUE(sound().waveform().isEmpty());
    finish();
    EXPECT_EQ(sound().waveform().lengthMS(), 3'000);
}

TEST_F(SoundTest, says_what_is_wrong_and_tries_again)
{
    const QString path = choose(u"访谈.mov"_s);
    QFile::rename(path, path + u".away"_s);
    sound().setShown(true);
    finish();
    EXPECT_EQ(sound().trouble(), u"找不到这个音视频文件，可能已移动或删除。"_s);
    EXPECT_TRUE(sound().waveform().isEmpty());
    helpers.script(u"ffmpeg-audio"_s, {u"complain [error] Invalid data"_s, u"exit 1"_s});
    ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly)); // nothing that the helper can read
    ASSERT_TRUE(Events::waitFor([&] { return sound().trouble().startsWith(u"无法读取"); }));
    helpers.script(u"ffmpeg-audio"_s, {u"sound 1000 1000"_s});
    sound().readAgain();
    finish();
    EXPECT_EQ(sound().trouble(), QString());
    EXPECT_EQ(sound().waveform().lengthMS(), 2'000);
}

TEST_F(SoundTest, of_a_recording_that_vanished_goes_on_once_it_is_back)
{
    helpers.script(u"ffmpeg-audio"_s,
                   {u"complain [info]   Duration: 00:00:10.00, start: 0.000000"_s, u"sound 1000 1000"_s, u"pause"_s});
    const QString path = choose(u"访谈.mov"_s);
    sound().setShown(true);
    ASSERT_TRUE(Events::waitFor([&] { return sound().waveform().lengthMS() == 2'000; }));
    QFile::rename(path, path + u".away"_s);
    QFile(helpers.file(u"go-on"_s)).open(QIODevice::WriteOnly);
    finish();
    EXPECT_EQ(sound().trouble(), u"找不到这个音视频文件，可能已移动或删除。"_s);
    EXPECT_EQ(sound().waveform().lengthMS(), 2'000) << "what was read is still seen";
    helpers.script(u"ffmpeg-audio"_s, {u"sound 2000 8000"_s});
    QFile::rename(path + u".away"_s, path);
    ASSERT_TRUE(Events::waitFor([&] { return sound().waveform().lengthMS() == 10'000; }));
    finish();
    EXPECT_EQ(sound().trouble(), QString());
}

TEST_F(SoundTest, of_a_recording_that_changed_is_read_again)
{
    const QString path = choose(u"a.mov"_s);
    const auto show = [&] {
        sound().setShown(false);
        sound().setShown(true);
        finish();
        return runs();
    };
    EXPECT_EQ(show(), 1);
    EXPECT_EQ(show(), 1);
    QFile media(path);
    ASSERT_TRUE(media.open(QIODevice::Append) && media.write("more") == 4);
    media.close();
    EXPECT_EQ(show(), 2);
}

TEST_F(SoundTest, of_a_timeline_is_rendered_and_can_be_played)
{
    helpers.script(u"ffmpeg-audio"_s, {u"wav 2 1"_s, u"pause"_s});
    sound().setShown(true);
    const QString media = write(u"a.mov"_s, "x");
    model->recognition().setTimeline(planOf(media));
    EXPECT_EQ(sound().title(), u"FCP 时间线 · 粗剪"_s);
    ASSERT_TRUE(Events::waitFor([&] { return sound().waveform().lengthMS() == 2'000; }));
    EXPECT_TRUE(sound().isReading());
    EXPECT_EQ(sound().file(), QString());
    QFile(helpers.file(u"go-on"_s)).open(QIODevice::WriteOnly);
    finish();
    EXPECT_TRUE(QFile::exists(sound().file())) << sound().trouble().toStdString();
    EXPECT_EQ(sound().waveform().lengthMS(), 2'000);
    // It is not rendered again, and goes with its medium.
    const auto before = runs();
    const QString file = sound().file();
    sound().setShown(false);
    sound().setShown(true);
    finish();
    EXPECT_EQ(runs(), before);
    model->recognition().setTimeline({});
    EXPECT_FALSE(sound().hasMedium());
    EXPECT_EQ(sound().file(), QString());
    EXPECT_FALSE(QFile::exists(file));
    // The next time it is seen before it is rendered.
    QFile::remove(helpers.file(u"go-on"_s));
    helpers.script(u"ffmpeg-audio"_s, {u"pause"_s, u"wav 2 1"_s});
    model->recognition().setTimeline(planOf(media));
    ASSERT_TRUE(Events::waitFor([&] { return sound().waveform().lengthMS() == 2'000; }));
    EXPECT_TRUE(sound().isReading());
    QFile(helpers.file(u"go-on"_s)).open(QIODevice::WriteOnly);
    finish();
    EXPECT_TRUE(QFile::exists(sound().file()));
}
