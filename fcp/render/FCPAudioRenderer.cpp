#include "fcp/render/FCPAudioRenderer.h"

#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "core/ConversionError.h"
#include "fcp/render/MissingMedia.h"
#include "fcp/render/RangeCues.h"
#include "fcp/render/RenderArguments.h"
#include "fcp/render/RenderedSound.h"
#include "fcp/render/SpeechRanges.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace FCPAudioRenderer {

namespace {

/// How far the recognition of all ranges is, from how far that of the current one is.
class RangeProgress
{
public:
    explicit RangeProgress(const QList<SpeechRange> &ranges)
        : m_ranges(ranges)
    {
        for (const SpeechRange &range : ranges)
            m_total += range.end - range.begin;
        m_clock.start();
    }

    /// Of the range at place `k`, of which `share` is done.
    Progress at(qsizetype k, double share) const
    {
        constexpr double enough = 0.05;   // of the whole, before a forecast is more than a guess
        constexpr qint64 settled = 3'000; // milliseconds
        qint64 before = 0;
        for (const SpeechRange &range : m_ranges.first(k))
            before += range.end - range.begin;
        const double done = double(before) + share * double(m_ranges[k].end - m_ranges[k].begin);
        Progress progress{.what = u"正在识别时间线音频范围 %1 / %2"_s.arg(k + 1).arg(m_ranges.size()),
                          .share = std::min(1.0, done / double(m_total))};
        if (*progress.share >= enough && m_clock.elapsed() >= settled)
            progress.leftMS = qint64(double(m_clock.elapsed()) * (1 - *progress.share) / *progress.share);
        return progress;
    }

private:
    const QList<SpeechRange> &m_ranges;
    qint64 m_total = 0; ///< Milliseconds.
    QElapsedTimer m_clock;
};

QList<Subtitle> recognizeRanges(RenderedSound &sound, LocalAIJob &job, const Workspace &workspace,
                                const Recognizer &recognize, const ProgressReport &progress)
{
    const qint64 durationMS = sound.size() / RenderedSound::samplesPerMS;
    const QList<SpeechRange> ranges = SpeechRanges::divide(SpeechRanges::peaks(sound, job), durationMS);
    const RangeProgress places(ranges);
    const QString part = workspace.file(u"fcp-range.wav"_s);
    RangeCues cues;
    for (qsizetype k = 0; k < ranges.size(); ++k) {
        job.check();
        progress(places.at(k, 0));
        const SpeechRange &range = ranges[k];
        sound.copy(range.heardBegin * RenderedSound::samplesPerMS, range.heardEnd * RenderedSound::samplesPerMS, part);
        cues.add(range, recognize(part, range.heardEnd - range.heardBegin, workspace,
                                  [&](const Progress &news) { progress(places.at(k, news.share.value_or(0))); }));
    }
    return cues.merged(durationMS);
}

} // namespace

QString render(const FCPAudioPlan &plan, LocalAIJob &job, const QString &directory, const ProgressReport &progress,
               const Growing &growing)
{
    const QString helper = LocalModels::helper(u"ffmpeg-audio"_s);
    MissingMedia::refuse(plan);
    const QDir folder(directory);
    const qsizetype count = plan.segments.size();
    QStringList stems;
    const auto write = [&](const QString &wav, const QStringList &arguments) {
        const Check meanwhile = growing ? Check([&] { growing(wav); }) : Check();
        job.run(helper, arguments, directory, {}, meanwhile);
    };
    for (qsizetype begin = 0; begin < count; begin += RenderArguments::largestBatch) {
        job.check();
        const QList<FCPAudioSegment> batch = plan.segments.mid(begin, RenderArguments::largestBatch);
        progress({.what = u"正在读取 FCP 音轨 %1 / %2"_s.arg(begin + batch.size()).arg(count)});
        stems.append(folder.filePath(u"fcp-stem%1.wav"_s.arg(stems.size())));
        write(stems.last(), RenderArguments::stem(batch, plan.duration, stems.last()));
    }
    if (stems.size() > 1) {
        job.check();
        const QString mix = folder.filePath(u"fcp-mix.wav"_s);
        write(mix, RenderArguments::mix(stems, plan.duration, mix));
        // Each is as long as the plan: those of three hours take 4.5 GB.
        for (const QString &stem : std::as_const(stems))
            QFile::remove(stem);
        stems = {mix};
    }
    QString result = stems.value(0);
    RenderedSound sound(result);
    if (sound.size() == 0)
        throw ConversionError(u"所选 FCP 内容没有可读取的音轨。"_s, job.lastWords());
    sound.resize(std::llround(plan.duration * RenderArguments::sampleRate));
    return result;
}

QList<Subtitle> transcribe(const FCPAudioPlan &plan, LocalAIJob &job, const Recognizer &recognize,
                           const ProgressReport &progress, const SubtitleAI::TrackReady &trackReady)
{
    const Workspace workspace;
    const QString track = render(plan, job, workspace.path(), progress);
    if (trackReady)
        trackReady(track);
    RenderedSound sound(track);
    QList<Subtitle> cues = recognizeRanges(sound, job, workspace, recognize, progress);
    if (cues.isEmpty())
        throw ConversionError(u"未识别到有效语音，请检查时间线人声。"_s);
    return cues;
}

} // namespace FCPAudioRenderer
