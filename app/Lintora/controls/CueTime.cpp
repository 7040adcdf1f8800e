#include "app/Lintora/controls/CueTime.h"

#include <QList>

#include <cmath>

using namespace Qt::StringLiterals;

namespace CueTime {

namespace {

constexpr qsizetype mostDigits = 9; // of one number; far beyond any timeline, far below an overflow

/// `typed` without blanks at its ends, in narrow digits and marks.
QString narrow(QStringView typed)
{
    QString result = typed.trimmed().toString();
    for (QChar &unit : result) {
        if (unit >= u'！' && unit <= u'～')
            unit = QChar(unit.unicode() - u'！' + u'!');
        else if (unit == u'。')
            unit = u'.';
        if (unit == u',')
            unit = u'.';
    }
    return result;
}

std::optional<qint64> number(QStringView digits)
{
    if (digits.isEmpty() || digits.size() > mostDigits)
        return std::nullopt;
    qint64 value = 0;
    for (const QChar digit : digits) {
        if (digit < u'0' || digit > u'9')
            return std::nullopt;
        value = value * 10 + (digit.unicode() - u'0');
    }
    return value;
}

/// "2.5" and "2" as milliseconds.
std::optional<qint64> seconds(QStringView typed)
{
    const qsizetype point = typed.indexOf(u'.');
    const auto whole = number(point < 0 ? typed : typed.first(point));
    if (!whole || point < 0)
        return whole ? std::optional(*whole * 1000) : std::nullopt;
    const QStringView decimals = typed.sliced(point + 1);
    const auto fraction = number(decimals);
    if (!fraction)
        return std::nullopt;
    return *whole * 1000 + std::llround(double(*fraction) * std::pow(10.0, 3.0 - double(decimals.size())));
}

std::optional<qint64> timeOf(qint64 frames, const FrameRate &rate)
{
    if (rate.numerator <= 0 || rate.denominator <= 0)
        return std::nullopt;
    return std::llround(double(frames) * double(rate.denominator) * 1000.0 / double(rate.numerator));
}

/// Frames that a second of timecode counts: 30 at 29.97.
qint64 framesPerSecond(const FrameRate &rate)
{
    return rate.denominator <= 0 ? 0 : (rate.numerator + rate.denominator - 1) / rate.denominator;
}

} // namespace

std::optional<qint64> parse(QStringView typed, const FrameRate &rate)
{
    const QString text = narrow(typed);
    if (text.endsWith(u'f') || text.endsWith(u'帧')) {
        const auto frames = number(QStringView(text).chopped(1).trimmed());
        return frames ? timeOf(*frames, rate) : std::nullopt;
    }
    QList<QStringView> fields = QStringView(text).split(u':');
    if (fields.size() > 4)
        return std::nullopt;
    const bool countsFrames = fields.size() == 4;
    const auto last = countsFrames ? number(fields.takeLast()) : std::optional<qint64>(0);
    const auto tail = countsFrames ? number(fields.last()) : seconds(fields.last());
    if (!last || !tail)
        return std::nullopt;
    const qint64 tailMS = countsFrames ? *tail * 1000 : *tail;
    if (fields.size() > 1 && tailMS >= 60'000)
        return std::nullopt;
    qint64 minutes = 0;
    for (qsizetype i = 0; i + 1 < fields.size(); ++i) {
        const auto value = number(fields.at(i));
        if (!value || (i > 0 && *value >= 60))
            return std::nullopt;
        minutes = minutes * 60 + *value;
    }
    const qint64 milliseconds = minutes * 60'000 + tailMS;
    if (!countsFrames)
        return milliseconds;
    if (*last >= framesPerSecond(rate))
        return std::nullopt;
    return timeOf(milliseconds / 1000 * framesPerSecond(rate) + *last, rate);
}

std::optional<CueShift::Distance> parseDistance(QStringView typed, const FrameRate &rate, Unit unit)
{
    QString text = narrow(typed);
    const bool isEarlier = text.startsWith(u'-') || text.startsWith(u'−');
    if (isEarlier || text.startsWith(u'+'))
        text.remove(0, 1);
    const auto distance = [isEarlier](qint64 count, std::optional<FrameGrid> grid = {}) {
        return CueShift::Distance{.count = isEarlier ? -count : count, .grid = grid};
    };
    if (rate.numerator <= 0 || rate.denominator <= 0)
        return std::nullopt;
    const bool isAlone = !text.contains(u':') && !text.endsWith(u'f') && !text.endsWith(u'帧');
    if (isAlone && unit == Unit::frames)
        text += u'f';
    const auto length = parse(text, rate);
    if (!length)
        return std::nullopt;
    const bool namesFrames = text.count(u':') == 3 || text.endsWith(u'f') || text.endsWith(u'帧');
    if (!namesFrames)
        return distance(*length);
    const FrameGrid grid{.numerator = rate.numerator, .denominator = rate.denominator};
    return distance(grid.frame(*length), grid);
}

} // namespace CueTime
