#pragma once

#include <functional>

/// Waiting in tests: for a condition, never for time.
namespace Events {

/// Handles events until `condition` holds. False when it does not within half a minute.
bool waitFor(const std::function<bool()> &condition);

/// Handles the events that are there, and those that they cause.
void handle();

} // namespace Events
