#pragma once

#include <QString>

#include <exception>

/// A refusal in the words that the user sees.
///
/// The message is a finished Simplified Chinese sentence with its closing 。; whoever waits for the result shows it as
/// it stands. There are no error codes. Errors of the platform (files, XML, network) are PlatformError instead.
class ConversionError : public std::exception
{
public:
    explicit ConversionError(const QString &message, const QString &detail = {});

    /// A message about one cue: "第 " + `number` + `problem`. `problem` begins with a space.
    static ConversionError aboutCue(qint64 number, QStringView problem);

    const QString &message() const noexcept { return m_message; }
    const QString &detail() const noexcept { return m_detail; } ///< Empty when there is nothing to add.
    const char *what() const noexcept override { return m_utf8.constData(); } ///< The message in UTF-8.

private:
    QString m_message;
    QString m_detail;
    QByteArray m_utf8;
};
