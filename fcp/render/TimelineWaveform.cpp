#include "fcp/render/TimelineWaveform.h"

#include "ai/LocalAIJob.h"
#include "ai/speech/WavFile.h"
#include "core/sound/WaveformMaker.h"
#include "fcp/render/FCPAudioRenderer.h"
#include "fcp/render/RenderArguments.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSet>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <span>

using namespace Qt::StringLiterals;

namespace {

/// Makes a waveform of a WAV file of 16 kHz, mono, 16 bits while somebody writes it.
class GrowingWav
{
public:
    /// No more than `most` samples are taken.
    GrowingWav(const QString &path, qint64 most)
        : m_file(path)
        , m_left(most)
    {}

    QString path() const { return m_file.fileName(); }
    const WaveformMaker &maker() const { return m_maker; }
    qint64 left() const { return m_left; } ///< Samples.

    /// Takes what has been written since the last time.
    void takeOn(LocalAIJob &job)
    {
        if (!m_file.isOpen() && !open())
            return;
        for (;;) {
            job.check();
            const qint64 wanted = std::min(m_left, qint64(m_block.size())) * sampleSize;
            const qint64 bytes = m_file.read(reinterpret_cast<char *>(m_block.data()), wanted);
            const qint64 count = std::max<qint64>(bytes, 0) / sampleSize;
            if (count == 0)
                break;
            qFromLittleEndian<qint16>(m_block.data(), count, m_block.data());
            m_maker.add(std::span(m_block).first(size_t(count)));
            m_left -= count;
            m_place += count * sampleSize;
            m_file.seek(m_place); // half a sample is read again
        }
        m_file.seek(m_place);
    }

private:
    static constexpr qint64 sampleSize = sizeof(qint16);

    bool open()
    {
        const auto sound = WavFile::sound(path());
        if (!sound || !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return false;
        m_place = sound->begin;
        return m_file.seek(m_place);
    }

    QFile m_file;
    WaveformMaker m_maker;
    std::array<qint16, 16 * 1024> m_block = {};
    qint64 m_place = 0; ///< Bytes before what is read next.
    qint64 m_left;
};

/// The sound of a plan as it comes, batch by batch.
class ComingSound
{
public:
    explicit ComingSound(const FCPAudioPlan &plan)
        : m_samples(std::llround(plan.duration * RenderArguments::sampleRate))
    {
        const qsizetype batches =
            (plan.segments.size() + RenderArguments::largestBatch - 1) / RenderArguments::largestBatch;
        m_files = batches > 1 ? batches + 1 : 1; // and their mix
    }

    void takeOn(const QString &wav, LocalAIJob &job)
    {
        if (!m_current || m_current->path() != wav) {
            if (m_current)
                m_before = Waveform::together(m_before, m_current->maker().waveform());
            m_current = std::make_unique<GrowingWav>(wav, m_samples);
            ++m_begun;
        }
        m_current->takeOn(job);
    }

    bool hasCome() const { return m_current->left() < m_samples || !m_before.isEmpty(); } ///< Some of it.

    WaveformTeller::News news() const
    {
        const double done = 1 - double(m_current->left()) / double(m_samples);
        const bool isMixing = m_files > 1 && m_begun == m_files; // of what is seen already
        return {.waveform = isMixing ? m_before : Waveform::together(m_before, m_current->maker().waveform()),
                .share = (double(m_begun - 1) + done) / double(m_files)};
    }

    /// Of the last file alone.
    Waveform whole() const { return m_current->maker().waveform(); }

private:
    qint64 m_samples;       ///< Of the whole.
    qsizetype m_files;      ///< That are written one after the other ...
    qsizetype m_begun = 0;  ///< ... and those of them that were begun.
    Waveform m_before = {}; ///< What they are together that are complete.
    std::unique_ptr<GrowingWav> m_current;
};

} // namespace

WaveformCache::Key TimelineWaveform::key(const FCPAudioPlan &plan)
{
    // What the helper is asked says all that the plan has to say.
    const QStringList asked = RenderArguments::stem(plan.segments, plan.duration, {});
    WaveformCache::Key key{
        .name =
            u"timeline "_s +
            QString::fromLatin1(
                QCryptographicHash::hash(asked.join(QChar(u'\0')).toUtf8(), QCryptographicHash::Blake2b_256).toHex())};
    QSet<QUrl> told;
    for (const FCPAudioSegment &segment : plan.segments) {
        if (told.contains(segment.url))
            continue;
        told.insert(segment.url);
        const auto file = WaveformCache::Key::of(segment.url.toLocalFile());
        key.state += file ? file->name.toUtf8() + '\0' + file->state + '\n' : QByteArray("missing\n");
    }
    return key;
}

TimelineWaveform TimelineWaveform::render(const FCPAudioPlan &plan, const WaveformCache &cache, LocalAIJob &job,
                                          const QString &directory, const ProgressReport &progress,
                                          const WaveformTeller::Growth &growth)
{
    const WaveformCache::Key before = key(plan);
    ComingSound sound(plan);
    WaveformTeller teller(growth);
    TimelineWaveform result;
    result.file = FCPAudioRenderer::render(plan, job, directory, progress, [&](const QString &wav) {
        sound.takeOn(wav, job);
        if (sound.hasCome())
            teller.tell([&] { return sound.news(); });
    });
    sound.takeOn(result.file, job); // by which it was lengthened
    result.waveform = sound.whole();
    if (key(plan).state == before.state)
        cache.keepWhereItMay(before, result.waveform);
    return result;
}
