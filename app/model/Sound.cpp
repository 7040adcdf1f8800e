#include "app/model/Sound.h"

#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/sound/MediaWaveform.h"
#include "app/model/ai/Recognition.h"
#include "core/ConversionError.h"
#include "core/sound/WaveformCache.h"
#include "fcp/render/FCPAudioRenderer.h"
#include "fcp/render/MissingMedia.h"
#include "fcp/render/TimelineWaveform.h"
#include "store/Locations.h"

#include <QFileInfo>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// One whose waveform is known is seen at once, and rendered all the same: it is to be heard too.
TimelineWaveform hearTimeline(const FCPAudioPlan &plan, LocalAIJob &job, const QString &folder,
                              const ProgressReport &report, const WaveformTeller::Growth &grow)
{
    const WaveformCache cache(Locations::waveforms());
    const auto known = cache.find(TimelineWaveform::key(plan));
    if (!known)
        return TimelineWaveform::render(plan, cache, job, folder, report, grow);
    grow({.waveform = *known, .share = {}});
    return {.waveform = *known, .file = FCPAudioRenderer::render(plan, job, folder, report)};
}

} // namespace

/// The waveform that a worker has come to last, until it is shown, and whether its recording went away.
class Sound::Newest
{
public:
    void put(const Waveform &waveform)
    {
        const std::lock_guard lock(m_mutex);
        m_waveform = waveform;
    }

    std::optional<Waveform> take()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_waveform, std::nullopt);
    }

    void setGone(bool isGone) { m_isGone = isGone; }
    bool isGone() const { return m_isGone; }

private:
    std::mutex m_mutex;
    std::optional<Waveform> m_waveform;
    std::atomic<bool> m_isGone = false;
};

Sound::Sound(const Recognition &source)
    : m_source(source)
{
    connect(&source, &Recognition::sourceChanged, this, &Sound::follow);
    connect(&m_task, &BackgroundTask::progressChanged, this, &Sound::takeNewest);
}

Sound::~Sound() = default;

Sound::Medium Sound::medium() const
{
    if (m_source.source() == Recognition::Source::media)
        return m_source.aiMedia()->toLocalFile();
    if (m_source.source() == Recognition::Source::timeline)
        return *m_source.aiTimelinePlan();
    return {};
}

bool Sound::hasMedium() const
{
    return !std::holds_alternative<std::monostate>(m_medium);
}

QString Sound::title() const
{
    return m_source.title(m_source.source());
}

std::optional<double> Sound::share() const
{
    const auto progress = m_task.progress();
    return progress ? progress->share : std::nullopt;
}

void Sound::setShown(bool isShown)
{
    if (std::exchange(m_isShown, isShown) == isShown || !isShown)
        return;
    const bool isWhole = m_rendered != nullptr; // what was rendered stays as it is
    if (!isWhole && !isReading())
        read();
}

void Sound::readAgain()
{
    read();
}

void Sound::follow()
{
    const Medium now = medium();
    if (std::exchange(m_medium, now) == now)
        return;
    m_task.cancel();
    m_return.cancel();
    m_newest.reset();
    m_rendered.reset();
    m_waveform = {};
    m_trouble.clear();
    const auto *const recording = std::get_if<QString>(&m_medium);
    m_file = recording ? *recording : QString();
    Q_EMIT mediumChanged();
    Q_EMIT fileChanged();
    Q_EMIT waveformChanged();
    Q_EMIT troubleChanged();
    if (m_isShown)
        read();
}

Sound::Outcome Sound::hear(const Medium &medium, LocalAIJob &job, const ProgressReport &report,
                           const std::shared_ptr<Newest> &newest)
{
    const auto grow = [&](const WaveformTeller::News &news) {
        newest->put(news.waveform);
        report({.what = u"已读取声音 %1 秒"_s.arg(news.waveform.lengthMS() / 1'000), .share = news.share});
    };
    Outcome outcome;
    const auto *const plan = std::get_if<FCPAudioPlan>(&medium);
    if (plan) {
        const auto missing = MissingMedia::find(*plan).size();
        if (missing > 0)
            outcome.notice = u"%1 个媒体文件找不到，对应部分没有声音。"_s.arg(missing);
        outcome.rendered = std::make_shared<const Workspace>();
        const TimelineWaveform heard = hearTimeline(missing > 0 ? MissingMedia::leaveOut(*plan) : *plan, job,
                                                    outcome.rendered->path(), report, grow);
        outcome.waveform = heard.waveform;
        outcome.file = heard.file;
    } else {
        outcome.file = std::get<QString>(medium);
        const WaveformCache cache(Locations::waveforms());
        const MediaWaveform heard = MediaWaveform::read(outcome.file, &cache, job, grow);
        outcome.waveform = heard.waveform;
        outcome.notice = heard.notice;
    }
    return outcome;
}

void Sound::read()
{
    if (!hasMedium())
        return;
    m_return.cancel();
    m_newest = std::make_shared<Newest>();
    m_task.run<LocalAIJob>(
        u"正在读取声音…"_s,
        [medium = m_medium, newest = m_newest](LocalAIJob &job, const ProgressReport &report) {
            try {
                return hear(medium, job, report, newest);
            } catch (const ConversionError &) {
                const auto *const recording = std::get_if<QString>(&medium);
                newest->setGone(recording && !QFileInfo::exists(*recording));
                throw;
            }
        },
        [this](const Outcome &outcome) { take(outcome); }, [this](const Failure &failure) { refuse(failure); });
}

/// A drive that was unplugged comes back.
void Sound::refuse(const Failure &failure)
{
    setTrouble(failure.sentence);
    if (!m_newest->isGone())
        return;
    m_return.run(
        u"正在等待文件…"_s,
        [path = std::get<QString>(m_medium)](const Job &job, const ProgressReport & /*report*/) {
            constexpr std::chrono::milliseconds pause(50);
            while (!QFileInfo::exists(path)) {
                job.check();
                std::this_thread::sleep_for(pause);
            }
            return path;
        },
        [this](const QString & /*path*/) {
            if (m_isShown)
                read();
        },
        [](const Failure & /*failure*/) {});
}

void Sound::takeNewest()
{
    if (const auto waveform = m_newest ? m_newest->take() : std::nullopt) {
        m_waveform = *waveform;
        Q_EMIT waveformChanged();
    }
    Q_EMIT readingChanged();
}

void Sound::take(const Outcome &outcome)
{
    m_newest->take(); // which is less
    m_waveform = outcome.waveform;
    m_rendered = outcome.rendered;
    Q_EMIT waveformChanged();
    setFile(outcome.file);
    setTrouble(outcome.notice);
    Q_EMIT readingChanged(); // whoever waits for the end finds all of it
}

void Sound::setFile(const QString &file)
{
    if (std::exchange(m_file, file) != file)
        Q_EMIT fileChanged();
}

void Sound::setTrouble(const QString &trouble)
{
    if (std::exchange(m_trouble, trouble) != trouble)
        Q_EMIT troubleChanged();
}
