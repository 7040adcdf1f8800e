#include "app/Lintora/sound/TimeScale.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

void TimeScale::setWidth(int points)
{
    m_width = std::max(1, points);
    keepWithin();
}

void TimeScale::setLength(qint64 ms)
{
    m_lengthMS = std::max(shortestMS, ms);
    keepWithin();
}

qint64 TimeScale::time(double x) const
{
    return std::llround(m_left + x * m_msPerPoint);
}

void TimeScale::zoom(double factor, double x)
{
    const double held = m_left + x * m_msPerPoint;
    const double coarsest = std::max(finest, double(m_lengthMS) / m_width);
    m_msPerPoint = std::clamp(m_msPerPoint / factor, finest, coarsest);
    m_left = held - x * m_msPerPoint;
    keepWithin();
}

void TimeScale::scroll(double points)
{
    m_left += points * m_msPerPoint;
    keepWithin();
}

void TimeScale::centre(qint64 startMS, qint64 endMS)
{
    // Of a cue that is wider than the strip, its beginning is looked at.
    const double room = double(m_width) * m_msPerPoint;
    const double length = double(endMS - startMS);
    m_left = double(startMS) - (length < room ? (room - length) / 2 : room / 8);
    keepWithin();
}

bool TimeScale::turnTo(qint64 ms)
{
    const double room = double(m_width) * m_msPerPoint;
    if (double(ms) >= m_left && double(ms) < m_left + room)
        return false;
    const double before = m_left;
    m_left = double(ms) - room / 8;
    keepWithin();
    return m_left != before;
}

void TimeScale::keepWithin()
{
    m_msPerPoint = std::clamp(m_msPerPoint, finest, std::max(finest, double(m_lengthMS) / m_width));
    m_left = std::clamp(m_left, 0.0, std::max(0.0, double(m_lengthMS) - double(m_width) * m_msPerPoint));
}

namespace TimeRuler {

namespace {

constexpr double widestText = 64;    // points, of the figures with a gap
constexpr double narrowestFrame = 5; // points

struct Step
{
    qint64 written;
    qint64 lines;
};

constexpr Step steps[] = {
    {100, 20},         {200, 50},          {500, 100},           {1'000, 200},        {2'000, 500},
    {5'000, 1'000},    {10'000, 2'000},    {30'000, 10'000},     {60'000, 15'000},    {120'000, 30'000},
    {300'000, 60'000}, {600'000, 120'000}, {1'800'000, 600'000}, {3'600'000, 900'000}};

} // namespace

Marks marks(double msPerPoint)
{
    for (const Step &step : steps) {
        if (double(step.written) / msPerPoint >= widestText)
            return {.written = step.written, .lines = step.lines};
    }
    const Step &last = steps[std::size(steps) - 1];
    const auto hours = qint64(std::ceil(widestText * msPerPoint / double(last.written)));
    return {.written = hours * last.written, .lines = last.written};
}

bool showsFrames(double msPerPoint, const FrameGrid &grid)
{
    const double frameMS = 1'000.0 * double(grid.denominator) / double(grid.numerator);
    return frameMS / msPerPoint >= narrowestFrame;
}

QString text(qint64 ms, qint64 writtenMS)
{
    constexpr QChar zero = u'0';
    const qint64 seconds = ms / 1'000;
    const QString rest =
        u"%1:%2"_s.arg(seconds / 60 % 60, seconds >= 3'600 ? 2 : 1, 10, zero).arg(seconds % 60, 2, 10, zero);
    const QString whole = seconds >= 3'600 ? u"%1:%2"_s.arg(seconds / 3'600).arg(rest) : rest;
    return writtenMS < 1'000 ? u"%1.%2"_s.arg(whole).arg(ms / 100 % 10) : whole;
}

} // namespace TimeRuler
