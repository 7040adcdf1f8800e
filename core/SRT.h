#pragma once

#include "core/Check.h"
#include "core/Subtitle.h"

#include <QByteArray>

class Utf8Writer;

/// SubRip text in and out.
///
/// The reader is strict: the first bad cue ends the call, so that the user can mend the file. Every cue that it returns
/// can be written into a title: no control character that XML forbids, no formatting tag, no character entity is left.
/// The detail of a refusal tells the line of the file, and the number that the cue has there. Readers call `check`
/// every few milliseconds.
namespace SRT {

/// Reads the file at `path`: UTF-16 when it begins with FF FE or FE FF, else UTF-8.
/// @throws PlatformError when the file cannot be read.
/// @throws ConversionError as decode does. The detail of either names the file.
QList<Subtitle> read(const QString &path, const Check &check = {});

/// Reads the bytes of a file, encoding chosen as in read.
/// @throws ConversionError "字幕编码不支持。请先另存为 UTF-8 或 UTF-16。", or as parse does.
QList<Subtitle> decode(QByteArray bytes, const Check &check = {});

/// Reads every cue of `text`, in file order. Cues are numbered 1, 2, 3 …, whatever numbers the text gives them. They
/// are not sorted, and may overlap.
/// @throws ConversionError naming the cue, in the words the user sees.
QList<Subtitle> parse(QStringView text);

/// "HH:MM:SS,mmm" of a time in milliseconds. Hours may take more than two digits. A negative time is not clamped: each
/// field carries its own minus sign.
QString stamp(qint64 milliseconds);

/// The whole SRT text: cues numbered from 1, separated by an empty line, every line ended by a line feed. Text is
/// written as it stands. Nothing is lost but the cues' own ids.
QString serialize(const QList<Subtitle> &cues);

/// The same as UTF-8, written block by block. Calls out.finish() at the end.
void serialize(const QList<Subtitle> &cues, Utf8Writer &out);

} // namespace SRT
