#pragma once

#include <QString>

namespace LocalModels {

/// The path of a helper program: "ffmpeg-audio", "whisper-cli" or "llama-server".
///
/// They lie in the folder that the environment variable VELMORA_SUBTITLE_HELPERS names. Without it they are looked for
/// where they belong to the program: in its bundle, beside an installation, in the build folder, or in the user's own
/// folder of data, lintora/AI, where scripts/engines.sh puts them for an installed program.
/// @throws ConversionError when no executable file of that name is there; the detail names the file
QString helper(const QString &name);

} // namespace LocalModels
