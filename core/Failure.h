#pragma once

#include "core/ConversionError.h"
#include "core/PlatformError.h"

#include <QString>

#include <exception>

/// What is told of an operation that failed, as a value that can be kept and handed on.
struct Failure
{
    QString sentence;    ///< Shown as it stands.
    QString detail = {}; ///< One line more for who asks for it: which line, clip or file. Mostly empty.

    friend bool operator==(const Failure &, const Failure &) = default;

    /// What `error` says: sentence and detail of ConversionError and PlatformError, the bare words of any other.
    static Failure of(const std::exception &error);

    /// The sentence, and on a line of its own the detail, when there is one.
    QString text() const;

    /// Two details on one line; either may be empty.
    static QString joined(const QString &first, const QString &second);

    /// The detail that names a file.
    static QString fileDetail(const QString &path);

    /// Returns what `read` returns; the detail of what it throws names the file at `path`.
    template <class Read>
    static auto naming(const QString &path, const Read &read)
    {
        try {
            return read();
        } catch (ConversionError &error) {
            error.addDetail(fileDetail(path));
            throw;
        } catch (PlatformError &error) {
            error.addDetail(fileDetail(path));
            throw;
        }
    }
};
