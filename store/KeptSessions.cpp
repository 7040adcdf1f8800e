#include "store/KeptSessions.h"

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

std::optional<KeptSessions::Entry> entryFor(const QString &folder, const QString &name)
{
    static const QRegularExpression form(u"\\A([0-9]{8}-[0-9]{9}) (.+)\\.json\\z"_s);
    const QRegularExpressionMatch match = form.match(name);
    QDateTime kept = QDateTime::fromString(match.captured(1), timeForm);
    if (!match.hasMatch() || !kept.isValid())
        return std::nullopt;
    kept.setTimeSpec(Qt::UTC);
    return KeptSessions::Entry{.file = folder + u'/' + name, .title = match.captured(2), .kept = kept.toLocalTime()};
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

KeptSessions::KeptSessions(QString folder, Limits limits)
    : m_folder(std::move(folder))
    , m_limits(limits)
{}

QList<KeptSessions::Entry> KeptSessions::list() const
{
    QList<Entry> entries;
    const QStringList names = QDir(m_folder).entryList({u"*.json"_s}, QDir::Files, QDir::Name | QDir::Reversed);
    for (const QString &name : names) {
        if (const auto entry = entryFor(m_folder, name))
            entries += *entry;
    }
    return entries;
}

void KeptSessions::keep(const LintoraSession &session, const QString &title, const QDateTime &at) const
{
    const QByteArray bytes = session.encoded();
    if (bytes.size() > LintoraSession::sizeLimit)
        throw ConversionError(u"字幕会话过大。"_s);
    QDir().mkpath(m_folder);
    const QList<Entry> before = list();
    // After every other one, also when the clock was set back or two come in one millisecond.
    QDateTime now = at.toUTC();
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

    // Once one must go, all older ones do: what is left has no gap.
    qsizetype count = 1;
    qint64 size = bytes.size();
    for (const Entry &entry : before) {
        if (holds(entry.file, bytes)) {
            QFile::remove(entry.file);
            continue;
        }
        size += QFileInfo(entry.file).size();
        if (++count > m_limits.count || size > m_limits.bytes)
            QFile::remove(entry.file);
    }
}
