#include "core/text/checks/TrackFaults.h"

#include "core/text/Brackets.h"
#include "core/text/Characters.h"
#include "core/text/breaking/BreakWords.h"

#include <QHash>

#include <algorithm>
#include <functional>
#include <map>

namespace TrackFaults {

namespace {

bool isLatinUnit(QChar unit)
{
    return unit < QChar(0x250) && unit.isLetterOrNumber();
}

/// Calls `use` with the begin and the end of every run of units that `isPart` says.
template <class IsPart, class Use>
void eachRun(QStringView text, IsPart &&isPart, Use &&use)
{
    for (qsizetype begin = 0; begin < text.size();) {
        if (!isPart(text[begin])) {
            ++begin;
            continue;
        }
        qsizetype end = begin + 1;
        while (end < text.size() && isPart(text[end]))
            ++end;
        use(begin, end);
        begin = end;
    }
}

bool beginsSentence(QStringView text, qsizetype at)
{
    while (at > 0 && text[at - 1].isSpace() && text[at - 1] != u'\n')
        --at;
    return at == 0 || QStringView(u"\n.!?。！？\"“‘(（-…").contains(text[at - 1]);
}

/// The ways in which one name is written, and where.
struct Ways
{
    std::map<QString, QList<qsizetype>> cues;
    std::vector<QString> order; ///< As they come.
};

/// A way that differs from another in its first capital alone, as words do where sentences begin.
bool differsInFirstLetter(const QString &a, const QString &b)
{
    return QStringView(a).sliced(1) == QStringView(b).sliced(1);
}

QHash<QString, Ways> latinNames(const QList<Subtitle> &items)
{
    QHash<QString, Ways> names;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QStringView text = items[i].text;
        eachRun(text, isLatinUnit, [&](qsizetype begin, qsizetype end) {
            const QStringView name = text.sliced(begin, end - begin);
            if (name.size() < 3 || std::none_of(name.begin(), name.end(), [](QChar c) { return c.isLetter(); }))
                return;
            // Where a sentence begins any word has a capital.
            if (name[0].isUpper() && name.sliced(1).toString().toLower() == name.sliced(1) &&
                beginsSentence(text, begin))
                return;
            Ways &ways = names[name.toString().toLower()];
            const QString way = name.toString();
            if (!ways.cues.contains(way))
                ways.order.push_back(way);
            ways.cues[way] += i;
        });
    }
    return names;
}

void addVariants(const Ways &ways, const QString &usual, QList<Variant> &result)
{
    for (const auto &[way, cues] : ways.cues) {
        if (way == usual)
            continue;
        for (const qsizetype cue : cues) {
            if (!result.isEmpty() && result.back().cue == cue && result.back().found == way)
                ++result.back().count;
            else
                result += Variant{.cue = cue, .found = way, .usual = usual, .count = 1};
        }
    }
}

const QString &mostFrequent(const Ways &ways)
{
    const auto fewer = [&](const QString &a, const QString &b) {
        return ways.cues.at(a).size() < ways.cues.at(b).size();
    };
    return *std::max_element(ways.order.begin(), ways.order.end(), fewer);
}

Ways listed(const QList<Subtitle> &items, const QStringList &term)
{
    Ways ways;
    for (const QString &way : term) {
        for (qsizetype i = 0; i < items.size(); ++i) {
            for (qsizetype count = items[i].text.count(way); count > 0; --count)
                ways.cues[way] += i;
        }
        if (ways.cues.contains(way))
            ways.order.push_back(way);
    }
    return ways;
}

/// Whether a run of Chinese numerals says a number from ten on: 二十, 三百二十五, 一九九八; not 一, 几, 第一 or 万一.
bool isLargeNumber(QStringView run)
{
    const QStringView digits = u"一二三四五六七八九两零〇兩";
    const auto isDigit = [&](QChar unit) { return digits.contains(unit); };
    const auto isMultiple = [](QChar unit) { return QStringView(u"十百千万亿萬億").contains(unit); };
    if (run.size() < 2 || std::any_of(run.begin(), run.end(), [&](QChar c) { return !isDigit(c) && !isMultiple(c); }))
        return false;
    return run.size() > 2 || (isDigit(run[0]) && run[1] == u'十') || (run[0] == u'十' && isDigit(run[1]));
}

} // namespace

QList<LoneBracket> loneBrackets(const QList<Subtitle> &items)
{
    // A quotation may run over cues, but not over many.
    constexpr qsizetype farthest = 8;
    struct Open
    {
        qsizetype cue;
        QChar mark;
    };
    QList<LoneBracket> lone;
    QList<Open> open;
    const auto giveUp = [&](auto isLost) {
        for (qsizetype i = open.size() - 1; i >= 0; --i) {
            if (isLost(open[i])) {
                lone += LoneBracket{.cue = open[i].cue, .mark = open[i].mark};
                open.removeAt(i);
            }
        }
    };
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QStringView text = items[i].text;
        for (qsizetype at = 0; at < text.size(); ++at) {
            const QChar mark = text[at];
            if (mark < QChar(0x80) ? mark != u'(' && mark != u')' && mark != u'[' && mark != u']'
                                   : Characters::isCommonIdeograph(mark.unicode()))
                continue;
            const bool isApostrophe = mark == u'’' && at > 0 && text[at - 1].isLetterOrNumber();
            if (Brackets::isOpening(mark)) {
                open += Open{.cue = i, .mark = mark};
            } else if (Brackets::isClosing(mark)) {
                const auto match = std::find_if(open.rbegin(), open.rend(),
                                                [&](const Open &each) { return Brackets::closing(each.mark) == mark; });
                if (match != open.rend())
                    open.erase(std::prev(match.base()));
                else if (!isApostrophe)
                    lone += LoneBracket{.cue = i, .mark = mark};
            }
        }
        giveUp([&](const Open &each) { return each.cue + farthest <= i; });
    }
    giveUp([](const Open &) { return true; });
    std::stable_sort(lone.begin(), lone.end(), [](const auto &a, const auto &b) { return a.cue < b.cue; });
    return lone;
}

QList<Variant> variants(const QList<Subtitle> &items, const QList<QStringList> &terms)
{
    QList<Variant> result;
    for (const Ways &ways : latinNames(items)) {
        if (ways.order.size() < 2)
            continue;
        const QString &usual = mostFrequent(ways);
        Ways others = ways;
        // "apple" and "Apple" are two words.
        std::erase_if(others.cues,
                      [&](const auto &each) { return each.first != usual && differsInFirstLetter(each.first, usual); });
        addVariants(others, usual, result);
    }
    for (const QStringList &term : terms) {
        const Ways ways = listed(items, term);
        if (ways.order.size() > 1)
            addVariants(ways, ways.order.front(), result);
    }
    std::sort(result.begin(), result.end(),
              [](const Variant &a, const Variant &b) { return a.cue != b.cue ? a.cue < b.cue : a.found < b.found; });
    return result;
}

QString unified(const QString &text, const QString &found, const QString &usual)
{
    QString result;
    qsizetype from = 0;
    for (qsizetype at = text.indexOf(found); at >= 0; at = text.indexOf(found, from)) {
        const qsizetype end = at + found.size();
        const bool isLatin = isLatinUnit(found[0]);
        const bool isAlone =
            !isLatin || ((at == 0 || !isLatinUnit(text[at - 1])) && (end == text.size() || !isLatinUnit(text[end])));
        result += QStringView(text).sliced(from, at - from);
        result += isAlone ? usual : found;
        from = end;
    }
    result += QStringView(text).sliced(from);
    return result;
}

QList<OddNumber> oddNumbers(const QList<Subtitle> &items)
{
    QList<OddNumber> digits;
    QList<OddNumber> characters;
    const auto isDigit = [](QChar unit) { return unit >= u'0' && unit <= u'9'; };
    const auto isCharacter = [](QChar unit) {
        return QStringView(u"零〇一二三四五六七八九十百千万亿两萬億兩").contains(unit);
    };
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QStringView text = items[i].text;
        eachRun(text, isDigit, [&](qsizetype begin, qsizetype end) {
            const bool isNamePart = (begin > 0 && (isLatinUnit(text[begin - 1]) || text[begin - 1] == u'.')) ||
                                    (end < text.size() && isLatinUnit(text[end]));
            const bool counts = end < text.size() && BreakWords::isUnit(text.sliced(end, 1));
            if (end - begin > 1 && !isNamePart && counts)
                digits += OddNumber{.cue = i, .number = text.sliced(begin, end - begin).toString()};
        });
        eachRun(text, isCharacter, [&](qsizetype begin, qsizetype end) {
            const QStringView run = text.sliced(begin, end - begin);
            const bool counts = end < text.size() && BreakWords::isUnit(text.sliced(end, 1));
            if (counts && isLargeNumber(run) && !(begin > 0 && text[begin - 1] == u'第'))
                characters += OddNumber{.cue = i, .number = run.toString()};
        });
    }
    if (digits.isEmpty() || characters.isEmpty())
        return {};
    return digits.size() >= characters.size() ? characters : digits;
}

} // namespace TrackFaults
