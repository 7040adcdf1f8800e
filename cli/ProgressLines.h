#pragma once

#include "cli/Arguments.h"
#include "core/Progress.h"

#include <QElapsedTimer>

/// Tells of a long operation in lines on standard error: what is being done, its share, the time it has taken and,
/// where somebody knows, the time left. A new sentence at once, news of the same one at most once a second.
class ProgressLines
{
public:
    explicit ProgressLines(const Arguments::Output &output);

    void show(const Progress &progress);

private:
    const Arguments::Output &m_output;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceLine;
    QString m_shown; ///< The sentence of the last line, without its numbers.
};
