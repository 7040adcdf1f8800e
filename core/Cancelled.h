#pragma once

/// Thrown when the person gave up waiting. It is an outcome and not an error: callers end silently and change nothing.
struct Cancelled
{};
