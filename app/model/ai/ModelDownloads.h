#pragma once

#include "app/model/ai/AISettings.h"

#include <QBasicTimer>
#include <QElapsedTimer>

#include <deque>
#include <optional>

class LocalAIJob;

/// The models of the local engines: which are there, and bringing, checking and removing them, one thing at a time.
///
/// None of it owns the cues: editing and importing go on meanwhile. Lives on the main thread, which never waits.
class ModelDownloads : public QObject
{
    Q_OBJECT

public:
    /// A model, and what of it lay in the models folder when it was looked at last.
    struct Row
    {
        LocalModel model;
        QString status;          ///< The model's own line, or how much of a stopped download is there.
        bool isThere = false;    ///< There is a file in its place, whole or not.
        bool isReady = false;    ///< It has its full size.
        qint64 arrivedBytes = 0; ///< Of a download that has not ended.

        friend bool operator==(const Row &, const Row &) = default;
    };

    enum class Work
    {
        download,
        verification,
        removal
    };

    /// Work under way.
    struct Running
    {
        QString id; ///< Of the model.
        Work work = Work::download;
    };

    /// How fast a download is, by its last seconds.
    struct Pace
    {
        qint64 bytesPerSecond = 0;
        std::optional<qint64> leftMS; ///< Absent while nothing comes.
    };

    /// `settings` must live as long as this.
    ModelDownloads(const AISettings &settings, QList<LocalModel> catalog);

    const QList<Row> &rows() const { return m_rows; } ///< In the order of the catalog.
    void refresh();                                   ///< Looks into the models folder again.

    qint64 aiModelsRevision() const { return m_revision; } ///< Grows whenever a model comes or goes.
    std::optional<QString> aiDownloadingModelID() const;
    const std::optional<Running> &running() const { return m_running; }
    const std::optional<Pace> &pace() const { return m_pace; } ///< Absent until something can be said of a download.

    // Refused while something else is under way. Models are named by their ids.

    void download(const QString &id); ///< On from where it stopped. Takes the place of a model that is there.
    void verify(const QString &id);
    void remove(const QString &id); ///< The model, and what has arrived of it.

    void pause();   ///< Ends what is under way, and keeps what has arrived.
    void discard(); ///< Ends the download, and throws away what has arrived.

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void rowsChanged(); ///< Or what is under way.
    void paceChanged();
    void aiModelsRevisionChanged();
    void done(const QString &message);
    void refused(const Failure &failure);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    /// How much of a download was there at a moment.
    struct Sample
    {
        qint64 atMS = 0;
        qint64 bytes = 0;
    };

    std::optional<LocalModel> wanted(const QString &id);
    void begin(const LocalModel &model, Work work, const QString &first,
               std::function<void(LocalAIJob &job, const ProgressReport &report)> operation, const QString &message);
    void end();
    void measure();

    const AISettings &m_settings;
    QList<LocalModel> m_catalog;
    QList<Row> m_rows;
    qint64 m_revision = 0;
    std::optional<Running> m_running;
    std::optional<Pace> m_pace;
    std::deque<Sample> m_samples; ///< Of the last seconds, oldest first.
    QElapsedTimer m_clock;
    QBasicTimer m_timer; ///< Runs while there is a download.
    /// A removal waits until a cancelled download has let go of its file. Last, so that it ends first.
    BackgroundTask m_task{BackgroundTask::Order::newestAfterTheOld};
};
