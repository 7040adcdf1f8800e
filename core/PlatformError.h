#pragma once

#include <QString>

#include <exception>

/// A failed file, XML, JSON or network call, in the description that the platform gives it.
///
/// The description is shown to the user as it stands. It is Chinese where the platform's translations are loaded. A
/// detail may go with it as with a ConversionError.
class PlatformError : public std::exception
{
public:
    explicit PlatformError(const QString &description, const QString &detail = {});

    /// A description that does not say which file it is about: the detail does.
    static PlatformError aboutFile(const QString &path, const QString &description);

    const QString &description() const noexcept { return m_description; }
    const QString &detail() const noexcept { return m_detail; }               ///< Empty when there is nothing to add.
    const char *what() const noexcept override { return m_utf8.constData(); } ///< The description in UTF-8.

    void addDetail(const QString &detail); ///< What somebody nearer to the user knows, behind what is there.

private:
    QString m_description;
    QString m_detail;
    QByteArray m_utf8;
};
