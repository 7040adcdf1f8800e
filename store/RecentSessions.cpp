#include "store/RecentSessions.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString timeForm = u"yyyyMMdd-HHmmsszzz"_s; // in UTC, so that names are in the order of time

std::optional<RecentSessions::Entry> entryFor(const QString &folder, const QString &name)
{
    static const QRegularExpression form(u"\\A([0-9]{8}-[0-9]{9}) (.+)\\.json\\z"_s);
    const QRegularExpressionMatch match = form.match(name);
    QDateTime kept = QDateTime::fromString(match.captured(1), timeForm);
    if (!match.hasMatch() || !kept.isValid())
        return std::nullopt;
    kept.setTimeSpec(Qt::UTC);
    return RecentSessions::Entry{.file = folder + u'/' + name, .title = match.captured(2), .kept = kept.toLocalTime()};
}

bool holds(const QString &file, const QByteArray &bytes)
{
    try {
        return QFileInfo(file).size() == bytes.size() && FileReader::readUpTo(file, bytes.size()) == bytes;
    } catch (const PlatformError &) {
        return false; // What cannot be read is another one.
    }
}

} // namespace

RecentSessions::RecentSessions(QString folder)
    : m_folder(std::move(folder))
{}

QList<RecentSessions::Entry> RecentSessions::list() const
{
    QList<Entry> entries;
    const QStringList names = QDir(m_folder).entryList({u"*.json"_s}, QDir::Files, QDir::Name | QDir::Reversed);
    for (const QString &name : names) {
        if (const auto entry = entryFor(m_folder, name))
            entries += *entry;
    }
    return entries;
}

void RecentSessions::keep(const LintoraSession &session, const QString &title) const
{
    const QByteArray bytes = session.encoded();
    if (bytes.size() > LintoraSession::sizeLimit)
        throw ConversionError(u"字幕会话过大。"_s);
    QDir().mkpath(m_folder);
    const QList<Entry> before = list();
    // After every other one, also when the clock was set back or two come in one millisecond.
    QDateTime now = QDateTime::currentDateTimeUtc();
    if (!before.isEmpty())
        now = std::max(now, before.first().kept.toUTC().addMSecs(1));
    // Names take 255 bytes; three for a Chinese character.
    constexpr qsizetype longest = 70;
    QString shown = title.left(longest);
    if (!shown.isEmpty() && shown.back().isHighSurrogate())
        shown.chop(1);
    AtomicFile file(u"%1/%2 %3.json"_s.arg(m_folder, now.toString(timeForm), shown));
    file.write(bytes);
    file.sync();
    file.commit(AtomicFile::Durability::powerCut);

    qsizetype others = 0;
    for (const Entry &entry : before) {
        const bool isSame = holds(entry.file, bytes);
        others += isSame ? 0 : 1;
        if (isSame || others >= most)
            QFile::remove(entry.file);
    }
}
