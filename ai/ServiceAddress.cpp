#include "ai/ServiceAddress.h"

using namespace Qt::StringLiterals;

namespace ServiceAddress {

std::optional<QUrl> parse(const QString &typed)
{
    QString text = typed.trimmed();
    while (text.endsWith(u'/'))
        text.chop(1);
    const QUrl url(text, QUrl::StrictMode);
    const bool isPlain = url.userInfo().isEmpty() && !url.hasQuery() && !url.hasFragment();
    const bool isSafe = url.scheme() == u"https" || (url.scheme() == u"http" && isLocal(url.host()));
    return url.isValid() && !url.host().isEmpty() && isPlain && isSafe ? std::optional(url) : std::nullopt;
}

bool isLocal(const QString &host)
{
    const QString name = host.toLower();
    return name == u"127.0.0.1" || name == u"localhost" || name == u"::1";
}

QUrl withOperation(const QUrl &address, const QString &operation)
{
    QUrl url = address;
    if (!url.path().endsWith(u'/' + operation))
        url.setPath(url.path() + u'/' + operation);
    return url;
}

} // namespace ServiceAddress
