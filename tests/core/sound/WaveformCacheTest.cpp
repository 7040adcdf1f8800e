#include "core/sound/WaveformCache.h"

#include "core/sound/WaveformMaker.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class WaveformCaching : public testing::Test
{
protected:
    QString recording(const QString &name, const QByteArray &content = "sound") const
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

    static Waveform waveform(qint16 level, size_t ms = 1'000)
    {
        WaveformMaker maker;
        maker.add(std::vector<qint16>(ms * WaveformMaker::samplesPerMS, level));
        return maker.waveform();
    }

    QStringList entries() const { return QDir(kept).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir folder;
    QString kept = folder.filePath(u"kept/here"_s);
    WaveformCache cache{kept};
};

} // namespace

TEST_F(WaveformCaching, finds_what_it_kept_of_an_unchanged_recording)
{
    const auto key = WaveformCache::Key::of(recording(u"访谈.wav"_s)).value();
    EXPECT_EQ(cache.find(key), std::nullopt);
    cache.keep(key, waveform(5'000));
    EXPECT_EQ(WaveformCache(kept).find(key), waveform(5'000));
    EXPECT_EQ(QFile::permissions(kept) & (QFile::ReadOther | QFile::ReadGroup), QFile::Permissions());
}

TEST_F(WaveformCaching, knows_a_recording_that_changed)
{
    const QString path = recording(u"a.wav"_s);
    const auto key = WaveformCache::Key::of(path).value();
    cache.keep(key, waveform(5'000));
    const auto longer = WaveformCache::Key::of(recording(u"a.wav"_s, "longer")).value();
    EXPECT_EQ(cache.find(longer), std::nullopt);
    QFile changed(recording(u"a.wav"_s));
    ASSERT_TRUE(changed.open(QIODevice::ReadWrite));
    changed.setFileTime(QDateTime::currentDateTime().addSecs(-9), QFileDevice::FileModificationTime);
    changed.close();
    const auto later = WaveformCache::Key::of(path).value();
    EXPECT_EQ(cache.find(later), std::nullopt);
    EXPECT_EQ(cache.find(WaveformCache::Key::of(recording(u"b.wav"_s)).value()), std::nullopt);
    EXPECT_FALSE(WaveformCache::Key::of(folder.path())) << "a folder";
    // The changed one takes the place of the former.
    cache.keep(later, waveform(6'000));
    EXPECT_EQ(cache.find(later), waveform(6'000));
    EXPECT_EQ(entries().size(), 1);
}

TEST_F(WaveformCaching, takes_what_is_damaged_for_missing)
{
    const auto key = WaveformCache::Key::of(recording(u"a.wav"_s)).value();
    cache.keep(key, waveform(5'000));
    QFile entry(kept + u'/' + entries().first());
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    const QByteArray whole = entry.readAll();
    entry.close();
    QByteArray flipped = whole;
    flipped[whole.size() / 2] ^= 1;
    for (const QByteArray &damaged : {QByteArray(), whole.first(10), whole.chopped(6), flipped, whole + "123456"}) {
        ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
        entry.write(damaged);
        entry.close();
        EXPECT_EQ(cache.find(key), std::nullopt) << damaged.size();
    }
    cache.keep(key, waveform(5'000));
    EXPECT_EQ(cache.find(key), waveform(5'000));
}

TEST_F(WaveformCaching, drops_what_was_not_looked_at_for_longest)
{
    const WaveformCache small(kept, 3 * waveform(1).byteCount() + 500);
    QList<WaveformCache::Key> keys;
    for (const QString &name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s, u"d.wav"_s})
        keys.append(WaveformCache::Key::of(recording(name)).value());
    for (qsizetype i = 0; i < 3; ++i) {
        small.keep(keys[i], waveform(1));
        for (const QString &name : entries()) {
            QFile entry(kept + u'/' + name);
            ASSERT_TRUE(entry.open(QIODevice::ReadWrite));
            const QDateTime before = entry.fileTime(QFileDevice::FileModificationTime);
            entry.setFileTime(before.addSecs(-60), QFileDevice::FileModificationTime);
        }
    }
    EXPECT_TRUE(small.find(keys[0])); // which makes it the newest
    small.keep(keys[3], waveform(1));
    EXPECT_TRUE(small.find(keys[0]));
    EXPECT_FALSE(small.find(keys[1]));
    EXPECT_TRUE(small.find(keys[2]));
    EXPECT_TRUE(small.find(keys[3]));
}
