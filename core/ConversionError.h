#pragma once

#include <QString>

#include <exception>

/// A refusal in the words that the user sees.
///
/// The message is a finished Simplified Chinese sentence with its closing 。; whoever waits for the result shows it as
/// it stands. There are no error codes. Errors of the platform (files, XML, network) are PlatformError instead.
///
/// A detail may go with it, for who wants to know more: which line, clip or file. It is one line of its own, never a
/// part of the message, and is shown on demand.
class ConversionError : public std::exception
{
public:
    explicit ConversionError(const QString &message, const QString &detail = {});

    /// A message about one cue: "第 " + `number` + `problem`. `problem` begins with a space.
    static ConversionError aboutCue(qint64 number, QStringView problem, const QString &detail = {});

    const QString &message() const noexcept { return m_message; }
    const QString &detail() const noexcept { return m_detail; }               ///< Empty when there is nothing to add.
    const char *what() const noexcept override { return m_utf8.constData(); } ///< The message in UTF-8.

    void addDetail(const QString &detail); ///< What somebody nearer to the user knows, behind what is there.

private:
    QString m_message;
    QString m_detail;
    QByteArray m_utf8;
};
