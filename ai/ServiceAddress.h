#pragma once

#include <QString>
#include <QUrl>

#include <optional>

/// Addresses of online services, as a person types them.
namespace ServiceAddress {

/// `typed` without white space around it and slashes at its end. Absent unless it is an https address, or an http one
/// of this machine, with a host and without user, password, query and fragment.
std::optional<QUrl> parse(const QString &typed);

/// Whether `host` is "127.0.0.1", "localhost" or "::1".
bool isLocal(const QString &host);

/// `address` with `operation` ("chat/completions") behind its path, unless the path ends with it already.
QUrl withOperation(const QUrl &address, const QString &operation);

} // namespace ServiceAddress
