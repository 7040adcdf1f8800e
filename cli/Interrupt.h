#pragma once

/// Ctrl-C and SIGTERM, seen by a command at the points where it can stop without leaving anything half done.
namespace Interrupt {

/// Starts watching both signals, and lets writes to a closed pipe fail instead of ending the process. Once, at start.
void watch();

/// @throws Cancelled once one of the signals has come.
void check();

/// A descriptor that becomes readable when a signal comes, for waiting on it and on a stream at once.
int descriptor();

} // namespace Interrupt
