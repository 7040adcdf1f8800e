#include "app/titles/TitleWrapping.h"

#include "core/text/Characters.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// How a character behaves at the end of a line.
enum class Kind
{
    ideograph, ///< May be parted from its neighbours.
    letter,    ///< Part of a word or number, with all that is no other kind.
    closing,   ///< Never begins a line.
    opening,   ///< Never ends a line.
    dash,      ///< Stays with its like, and otherwise behaves as an ideograph.
    glue,      ///< Never parted from either neighbour.
    blank,
    breaking, ///< Has no width; the next line may begin behind it.
};

constexpr QStringView closingMarks = u"。，、！？；：」』）】》〉〕〗〙〛｝］｣”’…‥·・‧～〜％‰℃°々〻ゝゞヽヾーぁぃぅぇぉ"
                                     u"っゃゅょゎァィゥェォッャュョヮヵヶ"
                                     u"．｡､!?;:,.)]}%»›–‐";
constexpr QStringView openingMarks = u"「『（【《〈〔〖〘〚｛［｢“‘￥＄￡＃([{$¥£€#«‹";

constexpr bool isFullWidthLetter(char32_t scalar)
{
    return (scalar >= 0xFF10 && scalar <= 0xFF19) || (scalar >= 0xFF21 && scalar <= 0xFF3A) ||
           (scalar >= 0xFF41 && scalar <= 0xFF5A);
}

/// Whether `scalar` is set in a square of its own: East Asian scripts and signs, and emoji.
constexpr bool isWide(char32_t scalar)
{
    struct Range
    {
        char32_t first;
        char32_t last;
    };
    constexpr Range ranges[] = {
        {0x1100, 0x115F}, {0x2E80, 0x303F}, {0x3041, 0x33FF},   {0x3400, 0x4DBF},   {0x4E00, 0x9FFF},
        {0xA000, 0xA4CF}, {0xA960, 0xA97F}, {0xAC00, 0xD7FF},   {0xF900, 0xFAFF},   {0xFE30, 0xFE4F},
        {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1B000, 0x1B2FF}, {0x1F000, 0x1FAFF}, {0x20000, 0x3FFFD},
    };
    return std::ranges::any_of(ranges,
                               [&](const Range &range) { return scalar >= range.first && scalar <= range.last; }) &&
           !isFullWidthLetter(scalar);
}

Kind kindOf(char32_t scalar)
{
    if (Characters::isCommonIdeograph(scalar))
        return Kind::ideograph;
    if (scalar == 0xA0 || scalar == 0x202F || scalar == 0x2060 || scalar == 0xFEFF || scalar == U'/' ||
        scalar == U'\'' || scalar == U'／')
        return Kind::glue;
    if (scalar == 0x200B)
        return Kind::breaking;
    if (Characters::isBlank(scalar))
        return Kind::blank;
    if (scalar == U'—' || scalar == U'―' || scalar == U'⸺')
        return Kind::dash;
    if (scalar <= 0xFFFF) {
        if (closingMarks.contains(QChar(scalar)))
            return Kind::closing;
        if (openingMarks.contains(QChar(scalar)))
            return Kind::opening;
    }
    return isWide(scalar) ? Kind::ideograph : Kind::letter;
}

/// A character of a line.
struct Cluster
{
    qsizetype begin; ///< In UTF-16 code units.
    char32_t scalar; ///< Its first.
    Kind kind;
};

/// The characters of `line`, straight double quotes told apart by turns.
std::vector<Cluster> clusters(QStringView line)
{
    std::vector<Cluster> list;
    list.reserve(static_cast<size_t>(line.size()));
    bool inQuotes = false;
    for (Characters::Cursor at(line); at.next();) {
        const char32_t scalar = *Characters::Scalars(at.character()).begin();
        Kind kind = kindOf(scalar);
        if (scalar == U'"') {
            kind = inQuotes ? Kind::closing : Kind::opening;
            inQuotes = !inQuotes;
        }
        list.push_back({.begin = at.begin(), .scalar = scalar, .kind = kind});
    }
    return list;
}

/// Whether marks allow a line to end before and to begin with the character at `index`.
bool marksAllow(const std::vector<Cluster> &line, size_t index)
{
    const Cluster &next = line[index];
    if (next.kind == Kind::closing || next.kind == Kind::blank || next.kind == Kind::glue ||
        next.kind == Kind::breaking)
        return false;
    size_t last = index - 1;
    if (line[last].kind == Kind::glue)
        return false;
    if (next.kind == Kind::dash && line[last].scalar == next.scalar)
        return false;
    // "（ 甲" breaks neither before nor behind the blank.
    while (last > 0 && (line[last].kind == Kind::blank || line[last].kind == Kind::breaking))
        --last;
    return line[last].kind != Kind::opening;
}

/// Whether `mark` belongs to the number or word around it: the comma of 1,000, the point of 3.5, the colon of 10:30.
bool isAsciiMark(const Cluster &mark)
{
    return mark.kind == Kind::closing && mark.scalar < 0x80;
}

bool mayBreakBefore(const std::vector<Cluster> &line, size_t index)
{
    if (!marksAllow(line, index))
        return false;
    const Cluster &last = line[index - 1];
    if (last.kind == Kind::blank || last.kind == Kind::breaking)
        return true;
    const bool nextIsWord = line[index].kind == Kind::letter || line[index].kind == Kind::opening;
    const bool lastIsWord = last.kind == Kind::letter || isAsciiMark(last) || last.scalar == U'’' ||
                            last.scalar == U'–' || last.scalar == U'‐' || last.scalar == U'°' || last.scalar == U'·';
    // An opening mark of the wide kind parts from a word; an ASCII bracket may belong to it, as in f(x).
    const bool nextIsJoined = nextIsWord && (line[index].kind == Kind::letter || line[index].scalar < 0x80);
    return !(lastIsWord && nextIsJoined);
}

/// Wraps the lines between two line feeds.
class Paragraph
{
public:
    Paragraph(QStringView text, const TitleWrapping::Measure &widthOf)
        : m_text(text)
        , m_widthOf(widthOf)
        , m_clusters(clusters(text))
    {}

    /// The lines, and whether each break is one that the rules allow.
    struct Result
    {
        QList<TitleWrapping::Line> lines;
        bool isGood = true;
    };

    Result wrapped(double width) const
    {
        Result result;
        size_t first = 0;
        while (first < m_clusters.size() && !fits(first, m_clusters.size(), width)) {
            const size_t next = nextLine(first, width);
            if (next == m_clusters.size()) {
                result.isGood = false;
                break;
            }
            result.isGood = result.isGood && mayBreakBefore(m_clusters, next) && fits(first, next, width);
            const size_t shown = withoutBlanks(first, next);
            result.lines.append({piece(first, shown).toString(), piece(shown, next).toString()});
            first = next;
        }
        result.lines.append({piece(first, m_clusters.size()).toString(), QString()});
        return result;
    }

    /// Halves the range of widths until the lines are as narrow as their number allows.
    Result balanced(double width) const
    {
        Result best = wrapped(width);
        if (best.lines.size() < 2 || !best.isGood)
            return best;
        double tooNarrow = 0;
        for (int step = 0; step < 10; ++step) {
            const double middle = (tooNarrow + width) / 2;
            Result narrower = wrapped(middle);
            if (narrower.isGood && narrower.lines.size() == best.lines.size()) {
                best = std::move(narrower);
                width = middle;
            } else {
                tooNarrow = middle;
            }
        }
        return best;
    }

private:
    qsizetype position(size_t index) const
    {
        return index < m_clusters.size() ? m_clusters[index].begin : m_text.size();
    }
    QStringView piece(size_t first, size_t end) const
    {
        return m_text.sliced(position(first), position(end) - position(first));
    }

    size_t withoutBlanks(size_t first, size_t end) const
    {
        while (end > first && m_clusters[end - 1].kind == Kind::blank)
            --end;
        return end;
    }

    bool fits(size_t first, size_t end, double width) const
    {
        return m_widthOf(piece(first, withoutBlanks(first, end))) <= width;
    }

    /// Where the line after the one that begins at `first` begins: the last good place, else the last bearable one,
    /// else the first place at all.
    size_t nextLine(size_t first, double width) const
    {
        // A break behind nothing but blanks would show an empty line.
        size_t content = first;
        while (content < m_clusters.size() && m_clusters[content].kind == Kind::blank)
            ++content;
        size_t good = 0;
        size_t bearable = 0;
        for (size_t index = content + 1; index < m_clusters.size(); ++index) {
            const bool isGood = mayBreakBefore(m_clusters, index);
            if (!isGood && !marksAllow(m_clusters, index))
                continue;
            if (!fits(first, index, width)) {
                if (good)
                    return good;
                return bearable ? bearable : index;
            }
            (isGood ? good : bearable) = index;
        }
        if (good)
            return good;
        return bearable ? bearable : m_clusters.size();
    }

    QStringView m_text;
    const TitleWrapping::Measure &m_widthOf;
    std::vector<Cluster> m_clusters;
};

/// Wraps what stands between line feeds, one after the other.
template <class Wrap>
QList<TitleWrapping::Line> eachParagraph(QStringView text, const TitleWrapping::Measure &widthOf, Wrap &&wrap)
{
    QList<TitleWrapping::Line> lines;
    for (qsizetype begin = 0;;) {
        const qsizetype feed = text.indexOf(u'\n', begin);
        const qsizetype end = feed < 0 ? text.size() : feed;
        lines.append(wrap(Paragraph(text.sliced(begin, end - begin), widthOf)));
        if (feed < 0)
            return lines;
        lines.last().ending += u'\n';
        begin = feed + 1;
    }
}

} // namespace

namespace TitleWrapping {

QList<Line> wrap(QStringView text, double width, const Measure &widthOf)
{
    return eachParagraph(text, widthOf, [&](const Paragraph &paragraph) { return paragraph.wrapped(width).lines; });
}

QList<Line> wrapBalanced(QStringView text, double width, const Measure &widthOf)
{
    return eachParagraph(text, widthOf, [&](const Paragraph &paragraph) { return paragraph.balanced(width).lines; });
}

bool mayBreak(QStringView line, qsizetype position)
{
    const std::vector<Cluster> list = clusters(line);
    for (size_t index = 1; index < list.size(); ++index) {
        if (list[index].begin == position)
            return mayBreakBefore(list, index);
    }
    return false;
}

} // namespace TitleWrapping
