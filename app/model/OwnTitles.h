#pragma once

#include "app/model/BackgroundTask.h"
#include "app/model/FCPProject.h"
#include "fcp/titles/TitleLooks.h"

/// Choosing the look of a title of the user's own: the titles of a project, read when they are asked for.
class OwnTitles : public QObject
{
    Q_OBJECT

public:
    OwnTitles() = default;

    void show(const FCPProject &project); ///< Begins to read its titles.
    void show(const QString &path);       ///< The same for a project file or bundle.
    void close();                         ///< Forgets what was read.

    const QList<TitleLooks::Offer> &offers() const { return m_offers; } ///< Each look once. Empty until they are read.
    const QString &source() const { return m_source; } ///< What the project is called; empty when none was asked for.
    const QString &status() const { return m_status; } ///< A sentence, while there are no offers.
    bool isRefused() const { return m_isRefused; }     ///< Whether the status says why there are none.

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void changed();

private:
    void read(const QString &source, std::function<XmlDocument(const Check &check)> document);
    void take(const QList<TitleLooks::Offer> &offers, const QString &status, bool isRefused);

    QList<TitleLooks::Offer> m_offers;
    QString m_source;
    QString m_status;
    bool m_isRefused = false;
    BackgroundTask m_task{BackgroundTask::Order::newestOnly};
};
