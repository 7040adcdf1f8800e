#include "core/text/breaking/CueJoining.h"

#include "core/text/ColumnWidth.h"
#include "core/text/LineJoining.h"

namespace CueJoining {

namespace {

/// The cue that grows, with the width of its text.
struct Grown
{
    Subtitle cue;
    int width;
};

class Joiner
{
public:
    explicit Joiner(const Limits &limits)
        : m_limits(limits)
    {}

    /// Takes the next cue in, if the two belong together.
    bool join(Grown &grown, const Subtitle &next) const
    {
        const qint64 gap = next.start - grown.cue.end;
        const qint64 length = next.end - grown.cue.start;
        const bool areSingle = !grown.cue.text.contains(u'\n') && !next.text.contains(u'\n');
        if (gap < 0 || gap > m_limits.closeMS || length > m_limits.longestMS || !areSingle || grown.cue.text.isEmpty())
            return false;
        const bool isShort = isBrief(grown.cue, grown.width) || isBrief(next, ColumnWidth::of(next.text));
        if (!isShort)
            return false;
        const QString text = LineJoining::joined(grown.cue.text, next.text);
        const int width = ColumnWidth::of(text);
        if (width > 2 * m_limits.columns)
            return false;
        grown.cue.text = text;
        grown.cue.end = next.end;
        grown.width = width;
        return true;
    }

private:
    bool isBrief(const Subtitle &cue, int width) const
    {
        return width <= m_limits.columns || cue.end - cue.start < m_limits.briefMS;
    }

    const Limits &m_limits;
};

} // namespace

QList<Subtitle> joined(const QList<Subtitle> &items, const Limits &limits, const std::function<void()> &check)
{
    constexpr qsizetype checkEvery = 1'024;
    const Joiner joiner(limits);
    QList<Subtitle> result;
    result.reserve(items.size());
    Grown grown;
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (i % checkEvery == 0)
            check();
        if (i > 0 && joiner.join(grown, items[i]))
            continue;
        if (i > 0)
            result.append(std::move(grown.cue));
        grown = {.cue = items[i], .width = ColumnWidth::of(items[i].text)};
    }
    if (!items.isEmpty())
        result.append(std::move(grown.cue));
    for (qsizetype i = 0; result.size() != items.size() && i < result.size(); ++i)
        result[i].id = i + 1;
    return result;
}

} // namespace CueJoining
