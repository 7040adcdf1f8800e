#include "store/LaunchLink.h"

#include "core/ConversionError.h"
#include "core/files/Utf8.h"
#include "store/Locations.h"
#include "store/Uuid.h"

#include <QDir>
#include <QFileInfo>

#include <climits>
#include <optional>

using namespace Qt::StringLiterals;

namespace LaunchLink {

namespace {

/// What a query value holds unescaped. "&", "=" and ";" would end it, "#" the query; "+" stands for itself here, but
/// other readers of links take it for a blank.
constexpr QByteArrayView unescaped = "!$'()*,:@/?";

/// Resolves percent escapes. Absent when what they spell is no UTF-8.
std::optional<QString> decoded(QByteArrayView escaped)
{
    const QByteArray bytes = QByteArray::fromPercentEncoding(escaped.toByteArray());
    if (!Utf8::survey(bytes).valid)
        return std::nullopt;
    return Utf8::decode(bytes);
}

/// The value of the first query item "session". Absent when there is none, or when it has no "=".
std::optional<QString> sessionValue(const QUrl &link)
{
    const QByteArray query = link.query(QUrl::FullyEncoded).toLatin1();
    for (const QByteArray &item : query.split('&')) {
        const qsizetype equals = item.indexOf('=');
        const QByteArray name = equals < 0 ? item : item.first(equals);
        if (decoded(name) == u"session"_s)
            return equals < 0 ? std::nullopt : decoded(QByteArrayView(item).sliced(equals + 1));
    }
    return std::nullopt;
}

/// `path` as an absolute path without "." and "..", all symbolic links resolved as far as the path exists. Absent for a
/// link that leads nowhere: nobody knows what will be there when the file is written.
std::optional<QString> normalized(const QString &path)
{
    // QFileInfo takes a leading colon for a resource of the program, and nothing for no file at all.
    QString existing = QDir::cleanPath(path.startsWith(u'/') ? path : QDir::currentPath() + u'/' + path);
    QString rest;
    while (!QFileInfo::exists(existing) && existing != u"/") {
        const QFileInfo missing(existing);
        if (missing.isSymLink())
            return std::nullopt;
        rest = u'/' + missing.fileName() + rest;
        existing = missing.path();
    }
    return QDir::cleanPath(QFileInfo(existing).canonicalFilePath() + rest);
}

/// Whether the system could open it. Anybody may send a link, of any length; what follows walks up the path.
bool isOpenable(const QString &path)
{
    return !path.contains(QChar::Null) && path.toUtf8().size() < PATH_MAX;
}

bool isSessionFile(const QString &file)
{
    const QFileInfo info(file);
    return info.path() == normalized(Locations::sessions()) && info.suffix() == u"json" &&
           Uuid::parse(info.completeBaseName());
}

} // namespace

QUrl launchURL(const QString &file)
{
    QUrl link;
    link.setScheme(u"lintora"_s);
    link.setHost(u"floating"_s);
    const QByteArray path = file.toUtf8().toPercentEncoding(unescaped.toByteArray());
    link.setQuery(u"session="_s + QString::fromLatin1(path), QUrl::StrictMode);
    return link;
}

QString sessionFile(const QUrl &link)
{
    const std::optional<QString> path = sessionValue(link);
    if (!link.isValid() || link.scheme() != u"lintora" || link.host() != u"floating" || !path)
        throw ConversionError(u"悬浮窗口链接无效。"_s);
    const std::optional<QString> file = isOpenable(*path) ? normalized(*path) : std::nullopt;
    if (!file || !isSessionFile(*file))
        throw ConversionError(u"字幕会话位置无效。"_s);
    return *file;
}

} // namespace LaunchLink
