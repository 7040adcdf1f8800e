#pragma once

#include <QString>

#include <optional>

/// Test data that is too large or not ours to keep in the project. It may lie in a folder "shared" beside the checkout.
namespace SharedData {

/// The path of `name` in that folder, absent when it is not there. A test that needs it skips itself and says so.
std::optional<QString> find(const QString &name);

} // namespace SharedData
