#include "app/model/ai/ModelDownloads.h"

#include "ai/LocalAIJob.h"
#include "ai/models/LocalModelDownload.h"
#include "ai/models/PartialDownload.h"
#include "core/ByteCount.h"
#include "core/PlatformError.h"

#include <QFile>
#include <QFileInfo>
#include <QTimerEvent>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int second = 1'000;          // milliseconds
constexpr qint64 window = 10 * second; // that the pace is measured in

void removePartial(const LocalModel &model)
{
    for (const PartialDownload::Kept &kept : PartialDownload::all()) {
        if (kept.sha256 == model.sha256)
            PartialDownload::remove(kept);
    }
}

void removeFiles(const LocalModel &model)
{
    QFile file(model.file());
    if (file.exists() && !file.remove())
        throw PlatformError(u"无法删除模型：%1"_s.arg(file.errorString()), Failure::fileDetail(model.file()));
    removePartial(model);
}

} // namespace

ModelDownloads::ModelDownloads(const AISettings &settings, QList<LocalModel> catalog)
    : m_settings(settings)
    , m_catalog(std::move(catalog))
{
    refresh();
}

void ModelDownloads::refresh()
{
    const QList<PartialDownload::Kept> partials = PartialDownload::all();
    QList<Row> rows;
    for (const LocalModel &model : std::as_const(m_catalog)) {
        Row row{.model = model,
                .status = model.statusLabel(),
                .isThere = QFileInfo::exists(model.file()),
                .isReady = model.ready()};
        const auto kept = std::ranges::find(partials, model.sha256, &PartialDownload::Kept::sha256);
        if (kept != partials.end())
            row.arrivedBytes = kept->bytes;
        if (row.arrivedBytes > 0 && !row.isReady)
            row.status = u"已下载 %1 / %2"_s.arg(ByteCount::text(row.arrivedBytes), model.sizeLabel());
        rows += row;
    }
    if (std::exchange(m_rows, rows) != rows)
        Q_EMIT rowsChanged();
}

std::optional<QString> ModelDownloads::aiDownloadingModelID() const
{
    return m_running && m_running->work == Work::download ? std::optional(m_running->id) : std::nullopt;
}

/// The model, when nothing is under way.
std::optional<LocalModel> ModelDownloads::wanted(const QString &id)
{
    if (m_running) {
        Q_EMIT refused(Failure{.sentence = u"请等待当前的模型处理完成。"_s});
        return std::nullopt;
    }
    const auto found = std::ranges::find(m_catalog, id, &LocalModel::id);
    return found == m_catalog.end() ? std::nullopt : std::optional(*found);
}

void ModelDownloads::begin(const LocalModel &model, Work work, const QString &first,
                           std::function<void(LocalAIJob &job, const ProgressReport &report)> operation,
                           const QString &message)
{
    m_running = Running{.id = model.id, .work = work};
    m_task.run<LocalAIJob>(
        first,
        [operation = std::move(operation)](LocalAIJob &job, const ProgressReport &report) {
            operation(job, report);
            return true;
        },
        [this, message](bool /*result*/) {
            end();
            Q_EMIT done(message);
        },
        [this](const Failure &failure) {
            end();
            Q_EMIT refused(failure);
        },
        [this] { end(); });
    Q_EMIT rowsChanged();
}

void ModelDownloads::end()
{
    m_running.reset();
    m_timer.stop();
    m_samples.clear();
    m_pace.reset();
    refresh();
    ++m_revision;
    Q_EMIT rowsChanged();
    Q_EMIT aiModelsRevisionChanged();
}

void ModelDownloads::download(const QString &id)
{
    const auto model = wanted(id);
    if (!model)
        return;
    QList<QUrl> hosts;
    for (const QString &typed : m_settings.choices().aiModelHosts) {
        if (const auto host = LocalModels::host(typed))
            hosts += *host;
    }
    m_clock.start();
    m_timer.start(second, this);
    begin(
        *model, Work::download, u"下载 "_s + model->title,
        [model = *model, hosts](LocalAIJob &job, const ProgressReport &report) {
            LocalModelDownload(model, hosts, job, report).download();
        },
        u"%1 已下载，可离线使用"_s.arg(model->title));
}

void ModelDownloads::verify(const QString &id)
{
    const auto model = wanted(id);
    if (!model)
        return;
    begin(
        *model, Work::verification, u"正在校验模型…"_s,
        [model = *model](LocalAIJob &job, const ProgressReport & /*report*/) {
            LocalModels::verify(model.file(), model, &job);
        },
        u"%1 校验通过"_s.arg(model->title));
}

void ModelDownloads::remove(const QString &id)
{
    const auto model = wanted(id);
    if (!model)
        return;
    begin(
        *model, Work::removal, u"正在删除模型…"_s,
        [model = *model](LocalAIJob & /*job*/, const ProgressReport & /*report*/) { removeFiles(model); },
        u"%1 已删除"_s.arg(model->title));
}

void ModelDownloads::pause()
{
    m_task.cancel();
}

void ModelDownloads::discard()
{
    const auto id = aiDownloadingModelID();
    if (!id)
        return;
    m_task.cancel();
    // Begins when the download has left its worker, and let go of its file. A model in its place stays.
    const auto model = *wanted(*id);
    begin(
        model, Work::removal, u"正在取消下载…"_s,
        [model](LocalAIJob & /*job*/, const ProgressReport & /*report*/) { removePartial(model); }, u"已取消下载"_s);
}

void ModelDownloads::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_timer.timerId())
        measure();
}

void ModelDownloads::measure()
{
    refresh();
    const auto row = std::ranges::find_if(m_rows, [&](const Row &each) { return each.model.id == m_running->id; });
    const qint64 now = m_clock.elapsed();
    m_samples.push_back({.atMS = now, .bytes = row->arrivedBytes});
    while (now - m_samples.front().atMS > window)
        m_samples.pop_front();
    const qint64 took = now - m_samples.front().atMS;
    if (took == 0)
        return;
    const qint64 came = m_samples.back().bytes - m_samples.front().bytes;
    Pace pace{.bytesPerSecond = std::max<qint64>(0, came) * second / took, .leftMS = {}};
    if (pace.bytesPerSecond > 0)
        pace.leftMS = (row->model.bytes - row->arrivedBytes) * second / pace.bytesPerSecond;
    m_pace = pace;
    Q_EMIT paceChanged();
}
