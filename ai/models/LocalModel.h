#pragma once

#include <QString>
#include <QUrl>

/// A file that a local engine works with, as the catalog knows it.
struct LocalModel
{
    QString id;         ///< Stands in the settings.
    QString title;      ///< What the person reads.
    QString filename;   ///< On the host and in the models folder.
    QString revision;   ///< On the host: 40 hexadecimal digits.
    QString repository; ///< On the host: owner/name.
    QString sha256;     ///< Of the whole file: 64 small hexadecimal digits.
    qint64 bytes = 0;   ///< Of the whole file, exactly.
    QString summary;    ///< One line under the title; may be empty.

    /// Where it is to be had from the host whose address is `host`.
    QUrl url(const QUrl &host) const;

    QString file() const;        ///< Its path in the models folder.
    bool ready() const;          ///< Whether the file is there in its full size. Its content is another matter.
    QString sizeLabel() const;   ///< ByteCount::text of `bytes`.
    QString statusLabel() const; ///< One of the four lines that the settings show, as things are now.

    friend bool operator==(const LocalModel &, const LocalModel &) = default;
};
