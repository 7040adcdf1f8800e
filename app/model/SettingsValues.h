#pragma once

#include <QVariant>

#include <optional>

/// Values as settings hold them.
namespace SettingsValues {

/// Absent for what is no boolean. Settings files of plain text hold booleans as words.
std::optional<bool> boolean(const QVariant &value);

} // namespace SettingsValues
