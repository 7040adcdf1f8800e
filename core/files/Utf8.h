#pragma once

#include <QByteArrayView>
#include <QString>

/// The few passes over UTF-8 that file readers and writers of many megabytes make. Each touches every byte once.
namespace Utf8 {

struct Survey
{
    bool valid = true; ///< Well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF, nothing cut off.
    bool hasMark = false; ///< Holds U+FEFF somewhere. Meaningful when valid.
};

Survey survey(QByteArrayView bytes);

/// The text of well-formed UTF-8, in a string that is no larger than it must be.
QString decode(QByteArrayView valid);

/// Room that encode needs for `units` UTF-16 code units.
constexpr qsizetype encodedRoom(qsizetype units)
{
    return units * 3;
}

/// Writes `text` at `out`, which has encodedRoom(text.size()) bytes, and returns the end. A lone surrogate becomes
/// U+FFFD.
char *encode(QStringView text, char *out);

/// Length in bytes of the white space character at the front or the back of `valid`, 0 when there is none. White space
/// is Unicode's White_Space property, line breaks included, as in QStringView::trimmed.
qsizetype leadingSpace(QByteArrayView valid);
qsizetype trailingSpace(QByteArrayView valid);

/// `valid` without white space and line breaks at both ends.
QByteArrayView trimmed(QByteArrayView valid);

} // namespace Utf8
