#pragma once

#include <QString>

/// Something that is wrong with a document, for the person who has to mend it.
struct Problem
{
    enum class Severity
    {
        error,  ///< Final Cut Pro refuses the document, or loses a part of it.
        warning ///< It is taken, but something moves, changes or looks wrong.
    };

    qint64 line = 0;      ///< From 1.
    QString element = {}; ///< Its name.
    QString rule = {};    ///< A short name that does not change, for scripts: "dtd.attribute".
    Severity severity = Severity::error;
    QString message = {}; ///< A sentence.
    QString fix = {};     ///< What to do, a sentence; empty where that is not known.

    /// One line for a person: where it is, how bad, what, and the way out.
    QString toText() const;

    friend bool operator==(const Problem &, const Problem &) = default;
};
