#include "fcp/texts/TextMatching.h"

#include <algorithm>
#include <map>

namespace TextMatching {

namespace {

using Matches = std::vector<std::optional<size_t>>;

void matchOrigins(Matches &matches, std::vector<bool> &taken, const QList<Subtitle> &cues,
                  const QList<TextOrigin> &origins, const std::vector<Standing> &standing)
{
    std::map<qint64, size_t> byNumber;
    for (size_t i = 0; i < standing.size(); ++i)
        byNumber.emplace(standing[i].number, i);
    std::map<qint64, size_t> known;
    for (const TextOrigin &origin : origins) {
        const auto found = byNumber.find(origin.number);
        if (found != byNumber.end() && standing[found->second].cue.text == origin.text)
            known.emplace(origin.cue, found->second);
    }
    for (size_t i = 0; i < matches.size(); ++i) {
        const auto found = known.find(cues[qsizetype(i)].id);
        if (found != known.end() && !taken[found->second]) {
            matches[i] = found->second;
            taken[found->second] = true;
        }
    }
}

void matchFrames(Matches &matches, std::vector<bool> &taken, const QList<Subtitle> &cues,
                 const std::vector<Standing> &standing, const std::optional<Rational> &frameDuration)
{
    std::multimap<qint64, size_t> byFrame;
    for (size_t i = 0; i < standing.size(); ++i) {
        if (!taken[i])
            byFrame.emplace(frame(standing[i].cue.start, frameDuration), i);
    }
    for (size_t i = 0; i < matches.size(); ++i) {
        const auto found = matches[i] ? byFrame.end() : byFrame.find(frame(cues[qsizetype(i)].start, frameDuration));
        if (found == byFrame.end())
            continue;
        matches[i] = found->second;
        taken[found->second] = true;
        byFrame.erase(found);
    }
}

bool overlap(const Subtitle &a, const Subtitle &b)
{
    return a.start < b.end && b.start < a.end;
}

bool sayTheSame(const Subtitle &a, const Subtitle &b)
{
    return a.text == b.text;
}

/// Cues and texts that are left between two matches, in order.
struct Gap
{
    std::vector<size_t> cues;
    std::vector<size_t> texts;
};

/// Pairs those that are `alike`, each cue with the first text that is left, and returns the gaps between the pairs.
std::vector<Gap> matchAlike(Matches &matches, const Gap &gap, const QList<Subtitle> &cues,
                            const std::vector<Standing> &standing, bool (*alike)(const Subtitle &, const Subtitle &))
{
    std::vector<Gap> rest(1);
    size_t next = 0;
    for (const size_t cue : gap.cues) {
        size_t found = next;
        while (found < gap.texts.size() && !alike(cues[qsizetype(cue)], standing[gap.texts[found]].cue))
            ++found;
        if (found == gap.texts.size()) {
            rest.back().cues.push_back(cue);
            continue;
        }
        matches[cue] = gap.texts[found];
        for (; next < found; ++next)
            rest.back().texts.push_back(gap.texts[next]);
        ++next;
        rest.emplace_back();
    }
    rest.back().texts.assign(gap.texts.begin() + ptrdiff_t(next), gap.texts.end());
    return rest;
}

/// What says the same belongs together. Between such pairs, as many cues as texts go by order; else what is seen at the
/// same time does, and the rest is left.
void matchGap(Matches &matches, const Gap &gap, const QList<Subtitle> &cues, const std::vector<Standing> &standing)
{
    for (const Gap &rest : matchAlike(matches, gap, cues, standing, sayTheSame)) {
        if (rest.cues.size() == rest.texts.size()) {
            for (size_t i = 0; i < rest.cues.size(); ++i)
                matches[rest.cues[i]] = rest.texts[i];
        } else {
            matchAlike(matches, rest, cues, standing, overlap);
        }
    }
}

void matchOrder(Matches &matches, const std::vector<bool> &taken, const QList<Subtitle> &cues,
                const std::vector<Standing> &standing)
{
    std::vector<size_t> order(matches.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::ranges::stable_sort(order, {}, [&](size_t i) { return cues[qsizetype(i)].start; });
    std::vector<size_t> gap;
    size_t from = 0;
    const auto close = [&](size_t to) {
        std::vector<size_t> texts;
        for (size_t i = from; i < to; ++i) {
            if (!taken[i])
                texts.push_back(i);
        }
        if (!gap.empty() && !texts.empty())
            matchGap(matches, {.cues = gap, .texts = texts}, cues, standing);
        gap.clear();
        from = std::max(from, to);
    };
    for (const size_t i : order) {
        if (matches[i])
            close(*matches[i]);
        else
            gap.push_back(i);
    }
    close(standing.size());
}

} // namespace

std::vector<std::optional<size_t>> match(const QList<Subtitle> &cues, const QList<TextOrigin> &origins,
                                         const std::vector<Standing> &standing,
                                         const std::optional<Rational> &frameDuration)
{
    Matches matches(size_t(cues.size()));
    std::vector<bool> taken(standing.size());
    matchOrigins(matches, taken, cues, origins, standing);
    matchFrames(matches, taken, cues, standing, frameDuration);
    matchOrder(matches, taken, cues, standing);
    return matches;
}

qint64 frame(qint64 milliseconds, const std::optional<Rational> &frameDuration)
{
    return frameDuration ? (Rational(milliseconds, 1'000) / *frameDuration).rounded() : milliseconds;
}

} // namespace TextMatching
