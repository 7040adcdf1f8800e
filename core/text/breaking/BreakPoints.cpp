#include "core/text/breaking/BreakPoints.h"

#include "core/text/Characters.h"
#include "core/text/ColumnWidth.h"
#include "core/text/breaking/BreakWords.h"
#include "core/text/breaking/LineTokens.h"

namespace BreakPoints {

namespace {

using Kind = LineToken::Kind;

// What a break costs, by its place. The unit is a hundredth of what an empty line among filled ones costs twice over;
// the values were found by breaking sentences as an editor would and are held by a table of them.
constexpr int sentence = 0;
constexpr int clause = 3;
constexpr int blank = 4; ///< Between Chinese words, where it stands for a comma.
constexpr int conjunction = 18;
constexpr int particle = 22;
constexpr int enumeration = 20;
constexpr int pair = 30;
constexpr int preposition = 50;
constexpr int possessive = 60;
constexpr int word = 64;
constexpr int name = 100;
constexpr int clingNext = 110;
constexpr int clingPrevious = 200;
constexpr int insideWord = 1'000;
constexpr int insideLatin = 2'000;
constexpr int insideNumber = 3'000;
constexpr int besideMark = 5'000; ///< Before 。 or behind 「.

int costAfterMark(QChar mark)
{
    if (QStringView(u"。！？!?.…").contains(mark))
        return sentence;
    return mark == u'、' || mark == u'·' || mark == u'/' ? enumeration : clause;
}

bool isChinese(QChar unit)
{
    return ColumnWidth::ofScalar(unit.unicode()) == 2;
}

/// The places of one line, worked out from its tokens.
class Finder
{
public:
    Finder(QStringView line, WordBorders &words, std::vector<BreakPoint> &points)
        : m_line(line)
        , m_tokens(LineTokens::of(line, words))
        , m_points(points)
    {}

    void find()
    {
        size_t token = 0;
        int width = 0;
        for (Characters::Cursor at(m_line); at.next();) {
            while (token < m_tokens.size() && at.begin() >= m_tokens[token].next)
                pass(token++);
            addBefore(at.begin(), width, token);
            width += ColumnWidth::of(at.character());
            if (token < m_tokens.size() && at.end() <= m_tokens[token].end)
                m_endWidth = width;
        }
    }

private:
    QStringView text(const LineToken &token) const { return m_line.sliced(token.begin, token.end - token.begin); }

    /// Keeps the brackets that are open behind `token`.
    void pass(size_t token)
    {
        const LineToken &passed = m_tokens[token];
        if (passed.partner < 0)
            return;
        if (passed.kind == Kind::opening)
            m_open.push_back(widthOfPair(passed));
        else if (!m_open.empty())
            m_open.pop_back();
    }

    int widthOfPair(const LineToken &opening) const
    {
        const qsizetype end = m_tokens[static_cast<size_t>(opening.partner)].end;
        return ColumnWidth::of(m_line.sliced(opening.begin, end - opening.begin));
    }

    /// Adds the place before the character at `position`, which is part of `token` or of the blanks behind it.
    void addBefore(qsizetype position, int width, size_t token)
    {
        if (token >= m_tokens.size() || position < m_tokens[token].begin || position >= m_tokens[token].end ||
            position == m_tokens.front().begin)
            return;
        const bool atBorder = position == m_tokens[token].begin;
        BreakPoint point{.end = position, .begin = position, .endWidth = width, .beginWidth = width};
        point.pairWidth = m_open.empty() ? 0 : m_open.back();
        if (atBorder) {
            point.end = m_tokens[token - 1].end;
            point.endWidth = m_endWidth;
            point.cost = costBetween(token - 1);
        } else {
            // Between a number and its unit there may be a blank.
            if (Characters::isSpace(m_line[position].unicode()))
                return;
            while (Characters::isSpace(m_line[point.end - 1].unicode()))
                point.endWidth -= ColumnWidth::ofScalar(m_line[--point.end].unicode());
            point.cost = costInside(m_tokens[token].kind, position);
        }
        m_points.push_back(point);
    }

    int costInside(Kind kind, qsizetype position) const
    {
        switch (kind) {
        case Kind::latin:
            return QStringView(u"-/_.@:").contains(m_line[position - 1]) ? insideWord : insideLatin;
        case Kind::number:
            return insideNumber;
        default:
            return insideWord;
        }
    }

    int costBetween(size_t token)
    {
        const LineToken &previous = m_tokens[token];
        const LineToken &next = m_tokens[token + 1];
        if (next.kind == Kind::closing || next.kind == Kind::mark || previous.kind == Kind::opening)
            return previous.isSpaced() && next.kind == Kind::mark ? clause : besideMark;
        if (previous.kind == Kind::mark)
            return costAfterMark(m_line[previous.end - 1]);
        if (previous.kind == Kind::closing) {
            const bool endsClause = token > 0 && m_tokens[token - 1].kind == Kind::mark;
            if (endsClause)
                return costAfterMark(m_line[m_tokens[token - 1].end - 1]);
            return (BreakWords::traits(text(next)) & BreakWords::clingsToPrevious) != 0 ? clingPrevious : pair;
        }
        const bool bothChinese = isChinese(m_line[previous.end - 1]) && isChinese(m_line[next.begin]);
        if (previous.isSpaced() && bothChinese)
            return blank;
        return costBetweenWords(token);
    }

    int costBetweenWords(size_t token)
    {
        const LineToken &previous = m_tokens[token];
        const LineToken &next = m_tokens[token + 1];
        const QStringView before = text(previous);
        const QStringView after = text(next);
        const quint8 ending = m_known.token == token ? m_known.traits : BreakWords::traits(before);
        const quint8 beginning = BreakWords::traits(after);
        m_known = {.token = token + 1, .traits = beginning};
        if (next.kind == Kind::opening)
            return (ending & BreakWords::clingsToNext) != 0 ? clingNext : pair;
        if ((beginning & BreakWords::clingsToPrevious) != 0)
            return clingPrevious;
        if ((ending & BreakWords::clingsToNext) != 0)
            return clingNext;
        if ((beginning & BreakWords::conjunction) != 0)
            return conjunction;
        if ((ending & BreakWords::finalParticle) != 0)
            return particle;
        if ((beginning & BreakWords::preposition) != 0)
            return preposition;
        if (before.endsWith(u'的'))
            return possessive;
        const bool isName = previous.kind == Kind::latin && next.kind == Kind::latin && before[0].isUpper() &&
                            (after[0].isUpper() || after[0].isDigit());
        return isName ? name : word;
    }

    /// The traits of the word that was looked up last: mostly it is the next to be asked for.
    struct Known
    {
        size_t token = 0;
        quint8 traits = 0;
    };

    QStringView m_line;
    std::vector<LineToken> m_tokens;
    std::vector<BreakPoint> &m_points;
    Known m_known{.token = m_tokens.size(), .traits = 0};
    std::vector<int> m_open; ///< Widths of the pairs around the place, the innermost last.
    int m_endWidth = 0;      ///< Width up to the end of the token passed last.
};

} // namespace

void find(QStringView line, WordBorders &words, std::vector<BreakPoint> &points)
{
    Finder(line, words, points).find();
}

} // namespace BreakPoints
