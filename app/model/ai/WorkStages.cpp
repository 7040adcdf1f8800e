#include "app/model/ai/WorkStages.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// "正在识别时间线音频范围 2 / 3" and "音频转写中 · 已用时 0:05" go on as the same stage.
QString sentence(const Progress &progress)
{
    static const QRegularExpression counted(u"\\s*\\d+ / \\d+$"_s);
    return progress.what.section(u" · "_s, 0, 0).remove(counted);
}

} // namespace

void WorkStages::take(const Progress &progress, qint64 nowMS)
{
    const QString what = sentence(progress);
    if (m_stages.isEmpty() || m_stages.last().what != what) {
        end(nowMS);
        m_stages.append({.what = what, .beganMS = nowMS});
    }
    m_progress = progress;
    m_toldMS = nowMS;
}

void WorkStages::end(qint64 nowMS)
{
    if (!m_stages.isEmpty() && !m_stages.last().endedMS)
        m_stages.last().endedMS = nowMS;
}

std::optional<qint64> WorkStages::leftMS(qint64 nowMS) const
{
    if (!m_progress.leftMS)
        return std::nullopt;
    constexpr qint64 second = 1'000;
    const qint64 passed = nowMS - m_toldMS;
    return std::max({*m_progress.leftMS - passed, passed, second});
}
