#include "cli/ProgressLines.h"

using namespace Qt::StringLiterals;

namespace {

/// "8 秒", "2 分 05 秒"
QString duration(qint64 milliseconds)
{
    const qint64 seconds = (milliseconds + 500) / 1'000;
    if (seconds < 60)
        return u"%1 秒"_s.arg(seconds);
    return u"%1 分 %2 秒"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

ProgressLines::ProgressLines(const Arguments::Output &output)
    : m_output(output)
{
    m_sinceStart.start();
}

void ProgressLines::show(const Progress &progress)
{
    constexpr qint64 interval = 1'000; // milliseconds
    const QString sentence = progress.what.section(u" · "_s, 0, 0);
    const bool isDone = progress.share == 1.0;
    if (sentence == m_shown && !isDone && m_sinceLine.elapsed() < interval)
        return;
    m_shown = sentence;
    m_sinceLine.start();
    QString line = progress.what;
    if (progress.share)
        line += u" · %1%"_s.arg(int(*progress.share * 100));
    if (progress.share || m_sinceStart.elapsed() >= interval)
        line += u" · 已用 "_s + duration(m_sinceStart.elapsed());
    if (progress.leftMS && !isDone)
        line += u" · 还需约 "_s + duration(*progress.leftMS);
    m_output.report(line);
}
