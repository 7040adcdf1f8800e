#pragma once

#include <QString>

#include <optional>

/// Small models for runs of the real engines. They lie, packed, in the folder of SharedData.
namespace TestModels {

/// The path of the unpacked model "scripted-en.bin", "stories260K-ctx32k.gguf" and so on; absent when it is not there.
/// A test that needs it skips itself and says so.
std::optional<QString> find(const QString &name);

} // namespace TestModels
