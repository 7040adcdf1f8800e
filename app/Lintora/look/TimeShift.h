#pragma once

#include <QString>

#include <optional>

/// Shifts of all times as people type them.
namespace TimeShift {

constexpr qint64 longest = 24 * 60 * 60 * 1000; ///< Milliseconds, either way.

/// Reads milliseconds ("-500", "+1200 毫秒") or a time with a colon ("-00:00:01,500", "1:02.5"). In milliseconds;
/// absent when it is neither, or longer than `longest`.
std::optional<qint64> parse(const QString &typed);

QString describe(qint64 shiftMS); ///< "所有字幕推后 00:00:01,500"

} // namespace TimeShift
