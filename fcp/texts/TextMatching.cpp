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

bool isKin(const Subtitle &cue, const Subtitle &standing)
{
    return cue.text == standing.text || (cue.start < standing.end && standing.start < cue.end);
}

/// What is left between two matches goes by order: all of it where it is as many on both sides, else what says the same
/// or is seen at the same time.
void matchGap(Matches &matches, const QList<Subtitle> &cues, const std::vector<size_t> &cueOrder,
              const std::vector<Standing> &standing, const std::vector<size_t> &texts)
{
    size_t next = 0;
    for (size_t i = 0; i < cueOrder.size(); ++i) {
        if (cueOrder.size() == texts.size()) {
            matches[cueOrder[i]] = texts[i];
            continue;
        }
        for (size_t j = next; j < texts.size(); ++j) {
            if (!isKin(cues[qsizetype(cueOrder[i])], standing[texts[j]].cue))
                continue;
            matches[cueOrder[i]] = texts[j];
            next = j + 1;
            break;
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
            matchGap(matches, cues, gap, standing, texts);
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
