#include "app/Lintora/cues/CueWarnings.h"

#include "core/text/checks/ReadingSpeed.h"

#include <QStringTokenizer>

#include <optional>

using namespace Qt::StringLiterals;

namespace CueWarnings {

namespace {

/// Of one or more lines of the same writing, in which words of the other may stand.
using Reading = ReadingSpeed::Characters;

struct Readings
{
    Reading chinese; ///< Of the lines of Chinese writing.
    Reading latin;   ///< Of the others.
};

/// Time that it takes, in units of which a second has chinesePerSecond * latinPerSecond.
qint64 need(const Reading &reading)
{
    return reading.chinese * latinPerSecond + reading.latin * chinesePerSecond;
}

Readings readingsOf(const QString &text)
{
    Readings readings;
    for (const QStringView line : QStringTokenizer(text, u'\n')) {
        const Reading reading = ReadingSpeed::of(line);
        const bool isChinese = reading.chinese * latinPerSecond > reading.latin * chinesePerSecond;
        Reading &lines = isChinese ? readings.chinese : readings.latin;
        lines.chinese += reading.chinese;
        lines.latin += reading.latin;
    }
    return readings;
}

QString inSeconds(qint64 milliseconds)
{
    return QString::number(double(milliseconds) / 1000.0, 'f', 1);
}

/// `reading` a second in characters of which `limit` can be read. Rounded up: what is beyond the limit looks so too.
QString speed(const Reading &reading, qint64 limit, qint64 lengthMS)
{
    const qint64 whole = chinesePerSecond * latinPerSecond * lengthMS;
    const qint64 tenths = (need(reading) * limit * 10'000 + whole - 1) / whole;
    return u"%1.%2"_s.arg(tenths / 10).arg(tenths % 10);
}

std::optional<Warning> tooFast(const Readings &readings, qint64 lengthMS)
{
    const bool isChinese = need(readings.chinese) >= need(readings.latin);
    const Reading &reading = isChinese ? readings.chinese : readings.latin;
    // Compared in whole numbers, so that a cue exactly at the limit passes.
    if (lengthMS <= 0 || need(reading) * 1000 <= lengthMS * chinesePerSecond * latinPerSecond)
        return std::nullopt;
    const qint64 limit = isChinese ? chinesePerSecond : latinPerSecond;
    return Warning{
        .kind = Kind::tooFast,
        .sentence = (isChinese ? u"读不完：每秒 %1 字，宜在 %2 字以内"_s : u"读不完：每秒 %1 个字符，宜在 %2 个以内"_s)
                        .arg(speed(reading, limit, lengthMS))
                        .arg(limit)};
}

} // namespace

Read readCharacters(const QString &text)
{
    const auto [chinese, latin] = readingsOf(text);
    return {.chinese = chinese.chinese + chinese.latin, .latin = latin.chinese + latin.latin};
}

QList<Warning> of(const Subtitle &cue, const Subtitle *next, const IsTooWide &isTooWide)
{
    QList<Warning> warnings;
    const qint64 lengthMS = cue.end - cue.start;
    if (const auto warning = tooFast(readingsOf(cue.text), lengthMS))
        warnings += *warning;
    if (lengthMS < shortestMS)
        warnings += Warning{.kind = Kind::tooShort, .sentence = u"只有 %1 毫秒，宜不短于 0.7 秒"_s.arg(lengthMS)};
    if (lengthMS > longestMS)
        warnings += Warning{.kind = Kind::tooLong, .sentence = u"长达 %1 秒，宜不超过 7 秒"_s.arg(inSeconds(lengthMS))};
    if (next && cue.end > next->start)
        warnings +=
            Warning{.kind = Kind::overlapping, .sentence = u"与下一条重叠 %1 毫秒"_s.arg(cue.end - next->start)};
    if (const qsizetype lines = cue.text.count(u'\n') + 1; lines > mostLines)
        warnings += Warning{.kind = Kind::tooManyLines, .sentence = u"共 %1 行，宜不超过两行"_s.arg(lines)};
    if (isTooWide && isTooWide(cue.text))
        warnings += Warning{.kind = Kind::tooWide, .sentence = u"宽出字幕安全区"_s};
    return warnings;
}

} // namespace CueWarnings
