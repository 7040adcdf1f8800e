#include "core/text/SequenceAlignment.h"

#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace {

using Key = SequenceAlignment::Key;
using Keys = std::vector<Key>;

size_t lengthByTheTable(const Keys &first, const Keys &second)
{
    std::vector<std::vector<size_t>> length(first.size() + 1, std::vector<size_t>(second.size() + 1, 0));
    for (size_t i = 1; i <= first.size(); ++i) {
        for (size_t j = 1; j <= second.size(); ++j)
            length[i][j] =
                first[i - 1] == second[j - 1] ? length[i - 1][j - 1] + 1 : std::max(length[i - 1][j], length[i][j - 1]);
    }
    return length.back().back();
}

Keys generated(Generator &generator, int most, int keys)
{
    Keys sequence(static_cast<size_t>(generator.number(0, most)));
    std::generate(sequence.begin(), sequence.end(), [&] { return static_cast<Key>(generator.number(1, keys)); });
    return sequence;
}

/// `count` keys from `first` on, all different.
Keys run(Key first, size_t count)
{
    Keys keys(count);
    std::iota(keys.begin(), keys.end(), first);
    return keys;
}

Keys joined(std::initializer_list<Keys> parts)
{
    Keys whole;
    for (const Keys &part : parts)
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

std::vector<qint32> match(const Keys &source, const Keys &script)
{
    const auto partners = SequenceAlignment::match(source, script, 10'000, [] {});
    EXPECT_EQ(partners.size(), source.size());
    qint32 last = -1;
    for (size_t i = 0; i < partners.size(); ++i) {
        if (partners[i] < 0)
            continue;
        EXPECT_GT(partners[i], last);
        last = partners[i];
        EXPECT_EQ(source[i], script.at(static_cast<size_t>(last)));
    }
    return partners;
}

size_t paired(const std::vector<qint32> &partners)
{
    return static_cast<size_t>(std::count_if(partners.begin(), partners.end(), [](qint32 at) { return at >= 0; }));
}

} // namespace

TEST(CommonSubsequence, is_as_long_as_the_tables)
{
    Generator generator(6);
    CommonSubsequence subsequence(1'000);
    for (int round = 0; round < 4'000; ++round) {
        // Up to three words of 64 columns, few keys and many, equal ends and none.
        const int most = generator.chance(20) ? 200 : 12;
        const int keys = static_cast<int>(generator.number(1, generator.chance(50) ? 4 : 300));
        const Keys first = generated(generator, most, keys);
        const Keys second = generated(generator, most, keys);
        qint32 lastFirst = -1;
        qint32 lastSecond = -1;
        const auto &pairs = subsequence.find(first, second);
        for (const auto [inFirst, inSecond] : pairs) {
            ASSERT_GT(inFirst, lastFirst);
            ASSERT_GT(inSecond, lastSecond);
            ASSERT_EQ(first.at(static_cast<size_t>(inFirst)), second.at(static_cast<size_t>(inSecond)));
            lastFirst = inFirst;
            lastSecond = inSecond;
        }
        ASSERT_EQ(pairs.size(), lengthByTheTable(first, second));
    }
}

TEST(CommonSubsequence, stays_in_step_with_the_ends)
{
    const auto partners = [](const Keys &first, const Keys &second) {
        CommonSubsequence subsequence(100);
        std::vector<qint32> found;
        for (const auto [inFirst, inSecond] : subsequence.find(first, second))
            found.push_back(inSecond);
        return found;
    };
    // A misheard key (91 for 1), then keys that stand once more in a passage of the second sequence alone.
    EXPECT_EQ(partners({91, 2, 3, 4}, {1, 2, 3, 50, 2, 51, 3, 52, 4}), (std::vector<qint32>{1, 2, 8}));
    EXPECT_EQ(partners({4, 2, 3, 91}, {4, 50, 2, 51, 3, 52, 2, 3, 1}), (std::vector<qint32>{0, 6, 7}));
    EXPECT_EQ(partners({91, 2, 92}, {50, 51, 2, 52, 2, 53, 2, 54}), (std::vector<qint32>{6}));
}

TEST(SequenceAlignment, pairs_a_longest_common_subsequence_where_there_are_no_anchors)
{
    Generator generator(7);
    for (int round = 0; round < 2'000; ++round) {
        // No stretch of eight is common: every fourth key of the script is its own.
        const Keys source = generated(generator, 60, 20);
        Keys script = generated(generator, 60, 20);
        for (size_t i = 0; i < script.size(); i += 4)
            script[i] = static_cast<Key>(100 + i);
        ASSERT_EQ(paired(match(source, script)), lengthByTheTable(source, script));
    }
}

TEST(SequenceAlignment, anchors_lead_over_stretches_that_are_too_long_for_a_table)
{
    // 2,000 × 2,000 cells are too many; the anchor behind them still holds.
    const Keys source = joined({run(1, 2'000), run(9'000, 8), run(100, 3)});
    const Keys script = joined({run(4'000, 2'000), run(9'000, 8), run(100, 3)});
    const auto partners = match(source, script);
    EXPECT_EQ(paired(partners), 11U);
    EXPECT_EQ(partners.back(), 2'010);
}

TEST(SequenceAlignment, a_table_may_have_exactly_its_limit_of_cells)
{
    const auto pairsWith = [](size_t sourceSize, size_t scriptSize) {
        const Keys source = joined({run(1, sourceSize - 1), {9'999}});
        const Keys script = joined({{9'999}, run(5'000, scriptSize - 1)});
        return paired(match(source, script));
    };
    EXPECT_EQ(pairsWith(1'499, 1'999), 1U);
    EXPECT_EQ(pairsWith(1'500, 1'999), 0U);
    EXPECT_EQ(pairsWith(1'499, 2'000), 0U);
    EXPECT_EQ(pairsWith(1, 1'499'999), 1U);
    EXPECT_EQ(pairsWith(1, 1'500'000), 0U);
}

TEST(SequenceAlignment, takes_the_longest_chain_of_anchors_when_stretches_changed_places)
{
    const Keys a = run(1, 20);
    const Keys b = run(101, 30);
    const Keys c = run(201, 20);
    EXPECT_EQ(paired(match(joined({a, b, c}), joined({b, a, c}))), 50U);
    EXPECT_EQ(paired(match(joined({a, b, c}), joined({a, c, b}))), 50U);
}

TEST(SequenceAlignment, repeated_stretches_are_no_anchors)
{
    // A chorus of 1,800 keys, twice in the source and once in the script: nothing tells which one is meant, and the
    // table is too large. Sung once, it is all anchors.
    const Keys chorus = run(1, 1'800);
    EXPECT_EQ(paired(match(joined({chorus, chorus}), chorus)), 0U);
    EXPECT_EQ(paired(match(joined({chorus, run(3'000, 8)}), joined({chorus, run(3'000, 8)}))), 1'808U);
}

TEST(SequenceAlignment, sequences_shorter_than_a_shingle_and_empty_ones)
{
    EXPECT_EQ(paired(match(run(1, 7), run(1, 7))), 7U);
    EXPECT_EQ(paired(match({}, run(1, 9))), 0U);
    EXPECT_EQ(paired(match(run(1, 9), {})), 0U);
}
