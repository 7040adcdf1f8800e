#include "core/text/LanguageMerging.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace LanguageMerging {

namespace {

/// The cues of a list by start; those that start together keep their order.
std::vector<const Subtitle *> byStart(const QList<Subtitle> &cues)
{
    std::vector<const Subtitle *> sorted;
    for (const Subtitle &cue : cues)
        sorted.push_back(&cue);
    std::ranges::stable_sort(sorted, {}, [](const Subtitle *cue) { return cue->start; });
    return sorted;
}

qint64 sharedTime(const Subtitle &a, const Subtitle &b)
{
    return std::min(a.end, b.end) - std::max(a.start, b.start);
}

/// Whether two cues are seen together long enough to say the same.
bool belongTogether(const Subtitle &a, const Subtitle &b)
{
    const qint64 shorter = std::min(a.end - a.start, b.end - b.start);
    return sharedTime(a, b) > 0 && sharedTime(a, b) >= shorter - sharedTime(a, b);
}

/// For each of `b` the index of its partner in `a`. Both are sorted by start.
std::vector<std::optional<size_t>> partners(const std::vector<const Subtitle *> &a,
                                            const std::vector<const Subtitle *> &b)
{
    std::vector<std::optional<size_t>> result(b.size());
    // How late anything in front of a cue ends: where that is too early, no cue before it can matter.
    std::vector<qint64> latestEnd(a.size());
    for (size_t i = 0; i < a.size(); ++i)
        latestEnd[i] = i == 0 ? a[i]->end : std::max(latestEnd[i - 1], a[i]->end);
    for (size_t j = 0; j < b.size(); ++j) {
        auto first = size_t(std::ranges::upper_bound(latestEnd, b[j]->start) - latestEnd.begin());
        for (; first < a.size() && a[first]->start < b[j]->end; ++first) {
            if (belongTogether(*a[first], *b[j]) &&
                (!result[j] || sharedTime(*a[first], *b[j]) > sharedTime(*a[*result[j]], *b[j])))
                result[j] = first;
        }
    }
    return result;
}

} // namespace

Merged merge(const QList<Subtitle> &a, const QList<Subtitle> &b, const QString &separator)
{
    const auto first = byStart(a);
    const auto second = byStart(b);
    const auto partner = partners(first, second);
    Merged merged;
    std::vector<bool> matched(first.size());
    for (const Subtitle *const cue : first)
        merged.items.append(*cue);
    for (size_t j = 0; j < second.size(); ++j) {
        if (const auto i = partner[j]) {
            merged.items[qsizetype(*i)].text += separator + second[j]->text;
            matched[*i] = true;
        } else {
            merged.unmatchedB.append(*second[j]);
        }
    }
    for (size_t i = 0; i < first.size(); ++i) {
        if (!matched[i])
            merged.unmatchedA.append(*first[i]);
    }
    merged.items += merged.unmatchedB;
    std::ranges::stable_sort(merged.items, {}, &Subtitle::start);
    for (qsizetype i = 0; i < merged.items.size(); ++i)
        merged.items[i].id = i + 1;
    return merged;
}

} // namespace LanguageMerging
