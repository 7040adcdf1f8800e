#include "tests/support/TestCertificate.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

QByteArray content(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

} // namespace

TestCertificate::TestCertificate(const QString &name)
{
    const QTemporaryDir folder;
    const QString key = folder.filePath(u"key.pem"_s);
    const QString document = folder.filePath(u"certificate.pem"_s);
    QProcess openssl;
    openssl.setStandardErrorFile(QProcess::nullDevice());
    openssl.start(u"openssl"_s, {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-days"_s, u"30"_s,
                                 u"-batch"_s, u"-subj"_s, u"/CN="_s + name, u"-addext"_s,
                                 u"subjectAltName=DNS:"_s + name, u"-keyout"_s, key, u"-out"_s, document});
    openssl.waitForFinished();
    certificate = QSslCertificate(content(document));
    const QSslKey secret(content(key), QSsl::Rsa);
    if (openssl.exitCode() != 0 || certificate.isNull() || secret.isNull())
        throw std::runtime_error("openssl made no certificate");
    server.setLocalCertificate(certificate);
    server.setPrivateKey(secret);
}
