#include "app/model/OwnTitles.h"

#include "app/model/Imports.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/NewDocument.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

void OwnTitles::show(const FCPProject &project)
{
    read(project.name, [project](const Check &check) { return Imports::document(project, check); });
}

void OwnTitles::show(const QString &path)
{
    read(QFileInfo(path).fileName(), [path](const Check & /*check*/) { return FCPXML::document(path); });
}

void OwnTitles::close()
{
    m_task.cancel();
    m_source.clear();
    take({}, {}, false);
}

void OwnTitles::read(const QString &source, std::function<XmlDocument(const Check &check)> document)
{
    m_task.run(
        u"正在读取标题…"_s,
        [document = std::move(document)](Job &job, const ProgressReport & /*report*/) {
            const Check check = [&] { job.check(); };
            // Kept so that every document can take it.
            return TitleLooks::offered(document(check), NewDocument::minorVersion, check);
        },
        [this](const QList<TitleLooks::Offer> &offers) {
            take(offers, offers.isEmpty() ? u"项目中没有可以用作样式的标题。"_s : QString(), false);
        },
        [this](const Failure &failure) { take({}, failure.sentence, true); }, [this] { take({}, u"已取消"_s, false); });
    m_source = source;
    take({}, u"正在读取标题…"_s, false);
}

void OwnTitles::take(const QList<TitleLooks::Offer> &offers, const QString &status, bool isRefused)
{
    m_offers = offers;
    m_status = status;
    m_isRefused = isRefused;
    Q_EMIT changed();
}
