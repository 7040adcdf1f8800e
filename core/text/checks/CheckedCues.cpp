#include "core/text/checks/CheckedCues.h"

#include "core/text/ColumnWidth.h"
#include "core/text/checks/CheckFixes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype checkEvery = 512;

QString number(double value)
{
    return QString::number(value, 'f', value == std::floor(value) ? 0 : 1);
}

QString seconds(double ms)
{
    return QString::number(ms / 1000, 'g', 6);
}

} // namespace

QString CheckFinding::message() const
{
    switch (rule) {
    case CheckRule::readingSpeed:
        return (detail.isEmpty() ? u"读不完：每秒 %1 字，宜在 %2 字以内"_s
                                 : u"读不完：每秒 %1 个字符，宜在 %2 个以内"_s)
            .arg(number(value), number(limit));
    case CheckRule::tooShort:
        return u"只有 %1 毫秒，宜不短于 %2 秒"_s.arg(number(value), seconds(limit));
    case CheckRule::tooLong:
        return u"长达 %1 秒，宜不超过 %2 秒"_s.arg(QString::number(value / 1000, 'f', 1), seconds(limit));
    case CheckRule::smallGap:
        return u"与下一条只隔 %1 毫秒，宜相接或不少于 %2 毫秒"_s.arg(number(value), number(limit));
    case CheckRule::overlap:
        return u"与下一条重叠 %1 毫秒"_s.arg(number(value));
    case CheckRule::tooWide:
        return u"宽 %1 列，宜不超过 %2 列"_s.arg(number(value), number(limit));
    case CheckRule::tooManyLines:
        return u"共 %1 行，宜不超过%2行"_s.arg(number(value), limit == 2 ? u"两"_s : u" "_s + number(limit) + u" "_s);
    case CheckRule::doubled:
        return u"与上一条文字相同，相隔 %1 毫秒"_s.arg(number(value));
    case CheckRule::blanks:
        return u"%1 行首尾有空白，或为空行"_s.arg(number(value));
    case CheckRule::mixedWidth:
        return u"%1 个字符的全角半角与文字不符"_s.arg(number(value));
    case CheckRule::mixedDigits:
        return u"数字“%1”的写法与多数不同"_s.arg(detail);
    case CheckRule::brackets:
        return u"“%1”不成对"_s.arg(detail);
    case CheckRule::mixedTerms:
        return u"“%1”也写作“%2”"_s.arg(detail.section(u'\n', 0, 0), detail.section(u'\n', 1));
    case CheckRule::badCharacters:
        return u"有 %1 个控制字符、不可见字符或乱码（%2）"_s.arg(number(value), detail);
    case CheckRule::offFrame:
        return u"起止不在整帧上，相差 %1 毫秒"_s.arg(number(value));
    }
    return {};
}

/// Looks at cue after cue under one set of limits.
class CheckedCues::Finder
{
public:
    Finder(const CheckedCues &cues, const CheckLimits &limits, FrameGrid grid)
        : m_cues(cues)
        , m_limits(limits)
        , m_grid(grid)
        , m_gapMS(double(grid.time(limits.smallestGapFrames)))
    {}

    void look(qsizetype cue)
    {
        m_cue = cue;
        lookAtTimes();
        lookAtNeighbours();
        lookAtText();
        const Subtitle &item = m_cues.m_items[cue];
        const qint64 off =
            std::max(std::abs(m_grid.snapped(item.start) - item.start), std::abs(m_grid.snapped(item.end) - item.end));
        if (off > 0)
            add(CheckRule::offFrame, double(off), 0);
    }

    QList<CheckFinding> take() { return std::move(m_findings); }

private:
    void add(CheckRule rule, double value, double limit, const QString &detail = {})
    {
        if (!m_limits.looksAt(rule))
            return;
        m_findings += CheckFinding{.cue = m_cue, .rule = rule, .value = value, .limit = limit, .detail = detail};
        m_findings.back().isFixable = CheckFixes::isFixable(m_findings.back(), m_cues, m_limits, m_grid);
    }

    void lookAtTimes()
    {
        const Subtitle &cue = m_cues.m_items[m_cue];
        const qint64 length = cue.end - cue.start;
        const ReadingSpeed::Need need = m_cues.need(m_cue, m_limits.speed);
        if (length > 0 && need.ms > length) {
            const auto limit = double(need.isChinese ? m_limits.speed.chinese : m_limits.speed.latin);
            add(CheckRule::readingSpeed, ReadingSpeed::demanded(need, length, m_limits.speed), limit,
                need.isChinese ? QString() : u"latin"_s);
        }
        if (length < m_limits.shortestMS)
            add(CheckRule::tooShort, double(length), double(m_limits.shortestMS));
        if (length > m_limits.longestMS)
            add(CheckRule::tooLong, double(length), double(m_limits.longestMS));
    }

    void lookAtNeighbours()
    {
        const Subtitle *const next = m_cues.next(m_cue);
        if (!next)
            return;
        const auto gap = double(next->start - m_cues.m_items[m_cue].end);
        if (gap > 0 && gap < m_gapMS)
            add(CheckRule::smallGap, gap, m_gapMS);
        if (gap < 0)
            add(CheckRule::overlap, -gap, 0);
    }

    void lookAtText()
    {
        const Facts &facts = m_cues.m_facts[static_cast<size_t>(m_cue)];
        if (double(facts.width) > 2 * m_limits.columns)
            add(CheckRule::tooWide, double(facts.width) / 2, m_limits.columns);
        if (facts.lines > m_limits.lines)
            add(CheckRule::tooManyLines, facts.lines, double(m_limits.lines));
        if (facts.previous >= 0) {
            const Subtitle &previous = m_cues.m_items[facts.previous];
            const qint64 gap = m_cues.m_items[m_cue].start - previous.end;
            if (gap <= m_limits.doubledWithinMS && previous.text == m_cues.m_items[m_cue].text)
                add(CheckRule::doubled, double(gap), double(m_limits.doubledWithinMS));
        }
        if (facts.blanks > 0)
            add(CheckRule::blanks, facts.blanks, 0);
        if (facts.mixedWidth > 0)
            add(CheckRule::mixedWidth, facts.mixedWidth, 0);
        lookAtTrackFaults();
    }

    /// The lists are in the order of the cues, and so are the calls.
    void lookAtTrackFaults()
    {
        for (; m_number < m_cues.m_numbers.size() && m_cues.m_numbers[m_number].cue == m_cue; ++m_number)
            add(CheckRule::mixedDigits, 1, 0, m_cues.m_numbers[m_number].number);
        for (; m_bracket < m_cues.m_brackets.size() && m_cues.m_brackets[m_bracket].cue == m_cue; ++m_bracket)
            add(CheckRule::brackets, 1, 0, m_cues.m_brackets[m_bracket].mark);
        for (; m_variant < m_cues.m_variants.size() && m_cues.m_variants[m_variant].cue == m_cue; ++m_variant) {
            const TrackFaults::Variant &variant = m_cues.m_variants[m_variant];
            add(CheckRule::mixedTerms, double(variant.count), 0, variant.found + u'\n' + variant.usual);
        }
        if (m_bad < m_cues.m_badCharacters.size() && m_cues.m_badCharacters[m_bad].first == m_cue) {
            const TextFaults::BadCharacters &bad = m_cues.m_badCharacters[m_bad++].second;
            add(CheckRule::badCharacters, double(bad.count), 0, bad.first);
        }
    }

    const CheckedCues &m_cues;
    const CheckLimits &m_limits;
    FrameGrid m_grid;
    double m_gapMS;
    QList<CheckFinding> m_findings;
    qsizetype m_cue = 0;
    qsizetype m_number = 0;
    qsizetype m_bracket = 0;
    qsizetype m_variant = 0;
    size_t m_bad = 0;
};

CheckedCues::CheckedCues(QList<Subtitle> items, const QList<QStringList> &terms, const Check &check)
    : m_items(std::move(items))
    , m_facts(static_cast<size_t>(m_items.size()))
{
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        if (i % checkEvery == 0)
            check();
        look(i);
    }
    order();
    check();
    m_brackets = TrackFaults::loneBrackets(m_items);
    check();
    m_variants = TrackFaults::variants(m_items, terms);
    check();
    m_numbers = TrackFaults::oddNumbers(m_items);
}

void CheckedCues::look(qsizetype cue)
{
    const QStringView text = m_items[cue].text;
    Facts &facts = m_facts[static_cast<size_t>(cue)];
    facts.firstLine = m_lines.size();
    for (const QStringView line : text.tokenize(u'\n')) {
        m_lines.push_back(ReadingSpeed::of(line));
        ++facts.lines;
    }
    facts.width = ColumnWidth::ofWidestLine(text);
    facts.blanks = static_cast<int>(TextFaults::blanks(text));
    facts.mixedWidth = static_cast<int>(TextFaults::mixedWidth(text));
    const TextFaults::BadCharacters bad = TextFaults::badCharacters(text);
    if (bad.count > 0)
        m_badCharacters.emplace_back(cue, bad);
}

void CheckedCues::order()
{
    std::vector<qsizetype> byStart(m_facts.size());
    std::iota(byStart.begin(), byStart.end(), qsizetype(0));
    std::stable_sort(byStart.begin(), byStart.end(),
                     [&](qsizetype a, qsizetype b) { return m_items[a].start < m_items[b].start; });
    for (size_t i = 1; i < byStart.size(); ++i) {
        m_facts[static_cast<size_t>(byStart[i - 1])].next = byStart[i];
        m_facts[static_cast<size_t>(byStart[i])].previous = byStart[i - 1];
    }
}

const Subtitle *CheckedCues::next(qsizetype cue) const
{
    const qsizetype next = m_facts[static_cast<size_t>(cue)].next;
    return next < 0 ? nullptr : &m_items[next];
}

const Subtitle *CheckedCues::previous(qsizetype cue) const
{
    const qsizetype previous = m_facts[static_cast<size_t>(cue)].previous;
    return previous < 0 ? nullptr : &m_items[previous];
}

ReadingSpeed::Need CheckedCues::need(qsizetype cue, const ReadingSpeed::Speed &speed) const
{
    const Facts &facts = m_facts[static_cast<size_t>(cue)];
    return ReadingSpeed::needed(std::span(m_lines).subspan(facts.firstLine, static_cast<size_t>(facts.lines)), speed);
}

QList<CheckFinding> CheckedCues::findings(const CheckLimits &limits, FrameGrid grid, const Check &check) const
{
    Finder finder(*this, limits, grid);
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        if (i % checkEvery == 0)
            check();
        finder.look(i);
    }
    return finder.take();
}
