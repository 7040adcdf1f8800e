#include "app/Lintora/cues/CueWarnings.h"

#include "core/text/checks/CheckedCues.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace CueWarnings {

namespace {

/// What the sheet that checks a whole track goes by too.
const CheckLimits &limits()
{
    return CheckLimits::builtIn().front();
}

std::vector<ReadingSpeed::Characters> charactersOf(const QString &text)
{
    std::vector<ReadingSpeed::Characters> lines;
    for (const QStringView line : QStringView(text).tokenize(u'\n'))
        lines.push_back(ReadingSpeed::of(line));
    return lines;
}

Warning warning(Kind kind, CheckRule rule, double value, double limit, const QString &detail = {})
{
    const CheckFinding finding{.rule = rule, .value = value, .limit = limit, .detail = detail};
    return {.kind = kind, .sentence = finding.message()};
}

} // namespace

Read readCharacters(const QString &text)
{
    Read read;
    for (const ReadingSpeed::Characters &line : charactersOf(text))
        (ReadingSpeed::isChinese(line, limits().speed) ? read.chinese : read.latin) += line.chinese + line.latin;
    return read;
}

QList<Warning> of(const Subtitle &cue, const Subtitle *next, const IsTooWide &isTooWide)
{
    QList<Warning> warnings;
    const qint64 lengthMS = cue.end - cue.start;
    const ReadingSpeed::Speed &speed = limits().speed;
    const ReadingSpeed::Need need = ReadingSpeed::needed(charactersOf(cue.text), speed);
    if (lengthMS > 0 && need.ms > lengthMS)
        warnings +=
            warning(Kind::tooFast, CheckRule::readingSpeed, ReadingSpeed::demanded(need, lengthMS, speed),
                    double(need.isChinese ? speed.chinese : speed.latin), need.isChinese ? QString() : u"latin"_s);
    if (lengthMS < limits().shortestMS)
        warnings += warning(Kind::tooShort, CheckRule::tooShort, double(lengthMS), double(limits().shortestMS));
    if (lengthMS > limits().longestMS)
        warnings += warning(Kind::tooLong, CheckRule::tooLong, double(lengthMS), double(limits().longestMS));
    if (next && cue.end > next->start)
        warnings += warning(Kind::overlapping, CheckRule::overlap, double(cue.end - next->start), 0);
    if (const qsizetype lines = cue.text.count(u'\n') + 1; lines > limits().lines)
        warnings += warning(Kind::tooManyLines, CheckRule::tooManyLines, double(lines), double(limits().lines));
    // In the style's own font this is more exact than in columns.
    if (isTooWide && isTooWide(cue.text))
        warnings += Warning{.kind = Kind::tooWide, .sentence = u"宽出字幕安全区"_s};
    return warnings;
}

} // namespace CueWarnings
