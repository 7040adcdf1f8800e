#include "ai/speech/RecognitionProgress.h"

#include <QList>

#include <algorithm>

namespace {

/// The milliseconds of "01:02:03.456"; -1 when it is not of that form.
qint64 milliseconds(QByteArrayView stamp)
{
    constexpr QByteArrayView form = "00:00:00.000";
    if (stamp.size() != form.size())
        return -1;
    qint64 parts[4] = {};
    int part = 0;
    for (qsizetype i = 0; i < form.size(); ++i) {
        const bool isDigit = stamp[i] >= '0' && stamp[i] <= '9';
        if (isDigit != (form[i] == '0') || (!isDigit && stamp[i] != form[i]))
            return -1;
        if (isDigit)
            parts[part] = parts[part] * 10 + (stamp[i] - '0');
        else
            ++part;
    }
    return ((parts[0] * 60 + parts[1]) * 60 + parts[2]) * 1'000 + parts[3];
}

/// Where the segment of a line ends; -1 when it is none.
qint64 segmentEnd(QByteArrayView line)
{
    constexpr QByteArrayView arrow = " --> ";
    const qsizetype at = line.indexOf(arrow);
    const qsizetype close = line.indexOf(']');
    if (!line.startsWith('[') || at < 0 || close < at)
        return -1;
    return milliseconds(line.sliced(at + arrow.size(), close - at - arrow.size()));
}

} // namespace

RecognitionProgress::RecognitionProgress(QString what, qint64 durationMS)
    : m_what(std::move(what))
    , m_durationMS(durationMS)
{}

Progress RecognitionProgress::hear(QByteArrayView printed, qint64 elapsedMS)
{
    constexpr double enough = 0.05;   // of the recording, before a forecast is more than a guess
    constexpr qint64 settled = 3'000; // milliseconds, of which loading the model is a part
    m_line.append(printed);
    const qsizetype end = m_line.lastIndexOf('\n');
    for (const QByteArray &line : m_line.left(std::max<qsizetype>(end, 0)).split('\n'))
        m_reachedMS = std::max(m_reachedMS, segmentEnd(line));
    m_line.remove(0, end + 1);
    const double share = std::min(1.0, double(m_reachedMS) / double(m_durationMS));
    Progress progress{.what = m_what, .share = share};
    if (share >= enough && elapsedMS >= settled)
        progress.leftMS = qint64(double(elapsedMS) * (1 - share) / share);
    return progress;
}
