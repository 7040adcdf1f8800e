#include "app/Lintora/cues/CueWarnings.h"

#include "core/text/Characters.h"

using namespace Qt::StringLiterals;

namespace CueWarnings {

namespace {

struct Reading
{
    qint64 chinese = 0;
    qint64 latin = 0;
};

bool isWide(char32_t letter)
{
    if (Characters::isCommonIdeograph(letter))
        return true;
    switch (Characters::script(letter)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Bopomofo:
    case QChar::Script_Hangul:
        return true;
    default:
        return letter == U'ー' || letter == U'〇';
    }
}

Reading readingOf(QStringView text)
{
    Reading reading;
    for (const char32_t scalar : Characters::Scalars(text)) {
        if (isWide(scalar))
            ++reading.chinese;
        else if (Characters::isLetterOrDigit(scalar) && QChar::category(scalar) != QChar::Mark_NonSpacing)
            ++reading.latin;
    }
    return reading;
}

QString inSeconds(qint64 milliseconds)
{
    return QString::number(double(milliseconds) / 1000.0, 'f', 1);
}

Warning tooFast(const Reading &reading, qint64 lengthMS)
{
    const qint64 characters = reading.chinese + reading.latin;
    const QString speed = QString::number(double(characters) * 1000.0 / double(lengthMS), 'f', 1);
    const bool isChinese = reading.chinese * latinPerSecond >= reading.latin * chinesePerSecond;
    return {.kind = Kind::tooFast,
            .sentence =
                (isChinese ? u"读不完：每秒 %1 字，宜在 %2 字以内"_s : u"读不完：每秒 %1 个字符，宜在 %2 个以内"_s)
                    .arg(speed)
                    .arg(isChinese ? chinesePerSecond : latinPerSecond)};
}

} // namespace

qint64 readCharacters(QStringView text)
{
    const Reading reading = readingOf(text);
    return reading.chinese + reading.latin;
}

QList<Warning> of(const Subtitle &cue, const Subtitle *next, const IsTooWide &isTooWide)
{
    QList<Warning> warnings;
    const qint64 lengthMS = cue.end - cue.start;
    const Reading reading = readingOf(cue.text);
    // Compared in whole numbers, so that a cue exactly at the limit passes.
    const qint64 needed = (reading.chinese * latinPerSecond + reading.latin * chinesePerSecond) * 1000;
    if (lengthMS > 0 && needed > lengthMS * chinesePerSecond * latinPerSecond)
        warnings += tooFast(reading, lengthMS);
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
