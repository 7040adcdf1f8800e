#include "core/text/KeywordReplacement.h"

#include "core/ConversionError.h"
#include "core/text/Characters.h"

#include <QVarLengthArray>

#include <algorithm>
#include <span>

using namespace Qt::StringLiterals;

bool KeywordMatch::becomesEmpty() const
{
    return QStringView(after).trimmed().isEmpty();
}

namespace KeywordReplacement {

namespace {

bool isWithinLimits(const QString &query, const QString &replacement)
{
    return !Characters::isLonger(query, longestQuery) && !Characters::isLonger(replacement, longestReplacement);
}

/// Looks for one keyword in many short texts. The built-in search prepares itself anew for every text, which takes as
/// long as the search; this one goes from one occurrence of the first code unit to the next.
class Finder
{
public:
    explicit Finder(QStringView query)
        : m_rest(query.sliced(1))
        , m_first(query.front())
    {}

    /// Where the keyword stands in `text` at or after `from`, or -1.
    qsizetype find(QStringView text, qsizetype from) const
    {
        const qsizetype last = text.size() - m_rest.size() - 1;
        while (from <= last) {
            const QStringView candidates = text.sliced(from, last + 1 - from);
            const qsizetype hit = candidates.indexOf(m_first);
            if (hit < 0)
                return -1;
            if (text.sliced(from + hit + 1, m_rest.size()) == m_rest)
                return from + hit;
            from += hit + 1;
        }
        return -1;
    }

private:
    QStringView m_rest;
    QChar m_first;
};

/// `text` with `length` units at each of `hits` replaced.
QString replaced(QStringView text, std::span<const qsizetype> hits, qsizetype length, QStringView replacement)
{
    QString result(text.size() + qsizetype(hits.size()) * (replacement.size() - length), Qt::Uninitialized);
    QChar *out = result.data();
    qsizetype copied = 0;
    for (const qsizetype hit : hits) {
        out = std::copy(text.begin() + copied, text.begin() + hit, out);
        out = std::copy(replacement.begin(), replacement.end(), out);
        copied = hit + length;
    }
    std::copy(text.begin() + copied, text.end(), out);
    return result;
}

} // namespace

QList<KeywordMatch> matches(const QList<Subtitle> &items, const QString &query, const QString &replacement)
{
    QList<KeywordMatch> found;
    if (query.isEmpty() || !isWithinLimits(query, replacement))
        return found;
    const Finder finder(query);
    QVarLengthArray<qsizetype, 64> hits;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QString &text = items[i].text;
        hits.clear();
        for (qsizetype at = finder.find(text, 0); at >= 0; at = finder.find(text, at + query.size()))
            hits.append(at);
        if (!hits.isEmpty())
            found.append({.id = i,
                          .cue = items[i],
                          .after = replaced(text, hits, query.size(), replacement),
                          .occurrences = hits.size()});
    }
    return found;
}

Outcome apply(const QList<Subtitle> &items, const QString &query, const QString &replacement)
{
    validate(query, replacement);
    Outcome outcome;
    outcome.items.reserve(items.size());
    qsizetype copied = 0;
    for (KeywordMatch &match : matches(items, query, replacement)) {
        if (match.after == match.cue.text)
            continue;
        outcome.occurrences += match.occurrences;
        ++outcome.changedCues;
        for (; copied < match.id; ++copied)
            outcome.items.append(items[copied]);
        ++copied;
        if (match.becomesEmpty())
            continue;
        match.cue.text = std::move(match.after);
        outcome.items.append(std::move(match.cue));
    }
    for (; copied < items.size(); ++copied)
        outcome.items.append(items[copied]);
    return outcome;
}

void validate(const QString &query, const QString &replacement)
{
    if (query.isEmpty())
        throw ConversionError(u"请输入要查找的关键词。"_s);
    if (!isWithinLimits(query, replacement))
        throw ConversionError(u"查找词最多 200 字，替换内容最多 2000 字。"_s);
    if (Characters::holdsControl(replacement))
        throw ConversionError(u"替换内容含无效控制字符。"_s);
}

} // namespace KeywordReplacement
