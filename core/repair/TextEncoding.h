#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Texts of files that say nothing of their encoding.
namespace TextEncoding {

/// What a file may be written in.
struct Guess
{
    QString name;         ///< One of names().
    double certainty = 0; ///< 0 to 1.
    QString sample;       ///< The first lines that look different in different encodings, at most 80 characters.

    friend bool operator==(const Guess &, const Guess &) = default;
};

/// UTF-8, UTF-16LE, UTF-16BE, GB18030, Big5, Shift_JIS and windows-1250 to windows-1258.
const QStringList &names();

/// The encodings in which `bytes` can be read, the likeliest first. A byte order mark or well-formed UTF-8 leave no
/// doubt. Empty when it is none of ours.
QList<Guess> guesses(const QByteArray &bytes);

struct Decoded
{
    QString text;       ///< Without byte order marks, line breaks as line feeds.
    qsizetype lost = 0; ///< Characters that could not be read; each is a U+FFFD.
};

/// @throws ConversionError for a name that is none of names(), whatever its case
Decoded decoded(const QByteArray &bytes, const QString &name);

} // namespace TextEncoding
