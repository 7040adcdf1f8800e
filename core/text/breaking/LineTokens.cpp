#include "core/text/breaking/LineTokens.h"

#include "core/text/Brackets.h"
#include "core/text/Characters.h"
#include "core/text/UnitSet.h"
#include "core/text/breaking/BreakWords.h"
#include "core/text/breaking/WordBorders.h"

#include <algorithm>

namespace LineTokens {

namespace {

using Kind = LineToken::Kind;

bool isAsciiMark(QChar unit)
{
    return unit > u' ' && unit < QChar(0x7F) && !unit.isLetterOrNumber();
}

bool isLatinUnit(QChar unit)
{
    return unit < QChar(0x250) && unit.isLetterOrNumber();
}

class Collector
{
public:
    explicit Collector(QStringView line)
        : m_line(line)
        , m_pairsQuotes(line.count(u'"') % 2 == 0)
    {
        m_tokens.reserve(static_cast<size_t>(line.size()) / 2 + 1);
    }

    void add(qsizetype begin, qsizetype end)
    {
        const QStringView piece = m_line.sliced(begin, end - begin);
        if (Characters::isSpace(piece[0].unicode())) {
            if (!m_tokens.empty())
                m_tokens.back().next = end;
            return;
        }
        const Kind kind = kindOf(piece, end);
        if (!m_tokens.empty() && joins(m_tokens.back(), piece, kind, end)) {
            LineToken &last = m_tokens.back();
            last.kind = last.kind == Kind::latin || kind == Kind::latin ? Kind::latin : Kind::number;
            last.end = last.next = end;
            return;
        }
        m_tokens.push_back({.kind = kind, .begin = begin, .end = end, .next = end, .partner = -1});
    }

    std::vector<LineToken> take()
    {
        joinRepetitions();
        pairBrackets();
        return std::move(m_tokens);
    }

private:
    QStringView text(const LineToken &token) const { return m_line.sliced(token.begin, token.end - token.begin); }

    Kind kindOf(QStringView piece, qsizetype end)
    {
        const QChar first = piece[0];
        if (first == u'"' && m_pairsQuotes) {
            m_inQuotes = !m_inQuotes;
            return m_inQuotes ? Kind::opening : Kind::closing;
        }
        if (Brackets::isOpening(first))
            return Kind::opening;
        if (Brackets::isClosing(first))
            return Kind::closing;
        if (BreakWords::isNumeral(piece))
            return Kind::number;
        if (isLatinUnit(first))
            return Kind::latin;
        static constexpr UnitSet prefixes(u"$@#+-.￥¥");
        const bool beginsLatin =
            prefixes.contains(first) && end < m_line.size() && isLatinUnit(m_line[end]) && piece.size() == 1;
        if (beginsLatin)
            return Kind::latin;
        return Characters::isPunctuation(first.unicode()) || isAsciiMark(first) ? Kind::mark : Kind::word;
    }

    /// Whether `piece`, which ends at `end`, is one with the token before it.
    bool joins(const LineToken &last, QStringView piece, Kind kind, qsizetype end) const
    {
        const bool isAlphanumeric = last.kind == Kind::latin || last.kind == Kind::number;
        if (last.isSpaced())
            return last.kind == Kind::number && kind == Kind::latin && BreakWords::isUnit(piece) &&
                   m_line[last.end - 1].isDigit();
        const bool isLatinNumber = last.kind == Kind::number && m_line[last.end - 1].isDigit();
        switch (kind) {
        case Kind::latin:
            return last.kind == Kind::latin || isLatinNumber;
        case Kind::number:
            return last.kind == Kind::number || text(last) == u"第" ||
                   (last.kind == Kind::latin && piece[0] < QChar(0x80));
        case Kind::mark:
            // Within a name or a number, as in Rec.709, 24-70, 50%; not behind it.
            if (!isAlphanumeric || !isAsciiMark(piece[0]))
                return false;
            return (end < m_line.size() && isLatinUnit(m_line[end])) ||
                   (last.kind == Kind::number && BreakWords::isUnit(piece)) || (piece == u"." && isTitle(text(last)));
        case Kind::word:
            return last.kind == Kind::number && piece.size() <= 2 && BreakWords::isUnit(piece);
        case Kind::opening:
        case Kind::closing:
            return false;
        }
        return false;
    }

    static bool isTitle(QStringView word)
    {
        constexpr QStringView titles[] = {u"Mr", u"Mrs", u"Ms", u"Dr", u"St", u"No", u"vs"};
        return std::find(std::begin(titles), std::end(titles), word) != std::end(titles);
    }

    /// 聊一聊, 是不是, 看了看 are one.
    void joinRepetitions()
    {
        static constexpr UnitSet middles(u"一不没沒了");
        const auto isMiddle = [](QChar unit) { return middles.contains(unit); };
        if (std::none_of(m_line.begin(), m_line.end(), isMiddle))
            return;
        std::vector<LineToken> joined;
        joined.reserve(m_tokens.size());
        for (size_t i = 0; i < m_tokens.size(); ++i) {
            joined.push_back(m_tokens[i]);
            if (i + 2 >= m_tokens.size() || m_tokens[i].isSpaced() || m_tokens[i + 1].isSpaced())
                continue;
            const QStringView middle = text(m_tokens[i + 1]);
            const bool repeats = middle.size() == 1 && isMiddle(middle[0]) &&
                                 m_line[m_tokens[i].end - 1] == m_line[m_tokens[i + 2].begin];
            if (repeats) {
                joined.back().end = m_tokens[i + 2].end;
                joined.back().next = m_tokens[i + 2].next;
                i += 2;
            }
        }
        m_tokens.swap(joined);
    }

    void pairBrackets()
    {
        std::vector<size_t> open;
        for (size_t i = 0; i < m_tokens.size(); ++i) {
            if (m_tokens[i].kind == Kind::opening)
                open.push_back(i);
            if (m_tokens[i].kind != Kind::closing)
                continue;
            const QChar mark = m_line[m_tokens[i].begin];
            const auto match = std::find_if(open.rbegin(), open.rend(), [&](size_t candidate) {
                return Brackets::closing(m_line[m_tokens[candidate].begin]) == mark;
            });
            if (match == open.rend())
                continue;
            m_tokens[*match].partner = static_cast<qsizetype>(i);
            m_tokens[i].partner = static_cast<qsizetype>(*match);
            open.erase(std::prev(match.base()), open.end());
        }
    }

    QStringView m_line;
    std::vector<LineToken> m_tokens;
    bool m_pairsQuotes;
    bool m_inQuotes = false;
};

} // namespace

std::vector<LineToken> of(QStringView line, WordBorders &words)
{
    Collector collector(line);
    words.start(line);
    qsizetype begin = 0;
    for (qsizetype end = words.next(); end >= 0; end = words.next()) {
        if (end > begin)
            collector.add(begin, end);
        begin = end;
    }
    return collector.take();
}

} // namespace LineTokens
