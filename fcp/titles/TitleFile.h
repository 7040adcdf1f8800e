#pragma once

#include <QByteArrayView>
#include <QString>

#include <functional>

class TitleDocument;

/// Title documents on their way into files.
namespace TitleFile {

/// Throws when the bytes of a finished document are not what they should be. See WrittenTitles.
using Proof = std::function<void(QByteArrayView)>;

/// Writes `document` beside the target at `path`, reads it back and has it proof-read; only then does it take the
/// target's place, and has reached the disk when this returns. `check` is called between blocks, and throws to end the
/// work. Blocks.
/// @throws PlatformError when the file cannot be written or read, and what `proof` and `check` throw; the target is
/// then as it was.
void write(const QString &path, const TitleDocument &document, const Proof &proof, const std::function<void()> &check);

} // namespace TitleFile
