#pragma once

#include <QSslConfiguration>
#include <QString>

/// A certificate that a test makes for itself and nobody trusts, with the settings of a server that shows it.
struct TestCertificate
{
    /// For the host `name`, signed by itself. Throws std::runtime_error where openssl cannot make one.
    explicit TestCertificate(const QString &name);

    QSslCertificate certificate;
    QSslConfiguration server;
};
