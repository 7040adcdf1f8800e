#pragma once

#include "cli/Arguments.h"
#include "core/json/JsonWriter.h"

#include <functional>

/// Delivers what a command made.
namespace Result {

/// Writes the command's result into its output file, whole or not at all, or to standard output.
/// @throws PlatformError, Cancelled
void write(const Arguments::Output &output, const std::function<void(Utf8Writer &)> &content);

/// Writes one JSON document and a line feed to standard output. @throws PlatformError, Cancelled
void writeJson(const std::function<void(JsonWriter &)> &content);

/// The usual pair: the JSON where it was asked for, the result unless the JSON takes its place on standard output.
/// @throws PlatformError, Cancelled
void deliver(const Arguments::Output &output, const std::function<void(Utf8Writer &)> &content,
             const std::function<void(JsonWriter &)> &json);

} // namespace Result
