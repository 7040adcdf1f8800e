#pragma once

#include <QString>

#include <functional>
#include <optional>

/// How far a long operation is.
///
/// A sentence alone is progress. Only the newest counts: whoever shows it may leave out any but the last.
struct Progress
{
    QString what;                      ///< What is being done, in the words that the person sees. Not empty.
    std::optional<double> share = {};  ///< Of the whole operation that is done, 0 to 1; absent where nobody knows.
    std::optional<qint64> leftMS = {}; ///< Milliseconds it will take yet; absent where nobody can say so honestly.

    friend bool operator==(const Progress &, const Progress &) = default;
};

/// How an operation tells of its progress, from its own thread. Cheap: it may be called as often as there is news. Does
/// not throw, and is not called any more once the operation has returned.
using ProgressReport = std::function<void(const Progress &)>;
