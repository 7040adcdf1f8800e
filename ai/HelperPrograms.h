#pragma once

#include <QString>

namespace LocalModels {

/// The path of a helper program: "ffmpeg-audio", "whisper-cli" or "llama-server".
///
/// They lie in the folder that the environment variable VELMORA_SUBTITLE_HELPERS names. Without it they are looked for
/// where they belong to the program: in its bundle, beside an installation, or in the build folder.
/// @throws ConversionError when no executable file of that name is there; the detail names the file
QString helper(const QString &name);

} // namespace LocalModels
