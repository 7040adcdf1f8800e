#pragma once

#include <QString>

#include <exception>

/// A failed file, XML, JSON or network call, in the description that the platform gives it.
///
/// The description is shown to the user as it stands. It is Chinese where the platform's translations are loaded.
class PlatformError : public std::exception
{
public:
    explicit PlatformError(const QString &description);

    const QString &description() const noexcept { return m_description; }
    const char *what() const noexcept override { return m_utf8.constData(); } ///< The description in UTF-8.

private:
    QString m_description;
    QByteArray m_utf8;
};
