#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>

/// The names that a font gives itself, from the `name` table of the OpenType format.
namespace FontNames {

struct Names
{
    QString chinese;      ///< Of the mainland if there is one, else of Taiwan or Hong Kong; may be empty.
    QString english;      ///< May be empty.
    QStringList families; ///< Every family name in the languages that are read, each once.

    friend bool operator==(const Names &, const Names &) = default;
};

/// Reads family names (1, and 16, which goes before it) of a table of format 0 or 1: Chinese and English ones of the
/// Windows platform, and plain ASCII ones of the Macintosh platform. Strict: a table with a record that reaches out of
/// it, or with one of these names malformed, gives nothing.
Names read(QByteArrayView table);

} // namespace FontNames
