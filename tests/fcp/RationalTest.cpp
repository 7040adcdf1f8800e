#include "fcp/Rational.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr qint64 largest = std::numeric_limits<qint64>::max();

} // namespace

TEST(Rational, reads_every_form_of_a_time)
{
    for (const auto &[text, expected] : {
             std::pair<QByteArray, Rational>{"0s", 0},
             {"0/1s", 0},
             {"3600s", 3600},
             {"1001/30000s", {1001, 30000}},
             {"100/2400s", {1, 24}},
             {"-90/30s", -3},
             {"+5s", 5},
             {"23.4s", {234, 10}},
             {".5s", {1, 2}},
             {"61847735047/720000s", {61847735047, 720000}},
             {"9223372036854775807/9223372036854775807s", 1},
         })
        EXPECT_EQ(Rational::parseTime(text), expected) << text.data();
}

TEST(Rational, refuses_what_is_no_time)
{
    for (const QByteArray text : {"",
                                  "s",
                                  "5",
                                  "5 s",
                                  " 5s",
                                  "1/0s",
                                  "1/-2s",
                                  "1/2/3s",
                                  "/2s",
                                  "1/s",
                                  "1.5/2s",
                                  "1/2.5s",
                                  "1e3s",
                                  "--1s",
                                  "0x10s",
                                  "nans",
                                  "infs",
                                  "1.2.3s",
                                  "9223372036854775808s",
                                  "0.00000000000000000001s"})
        EXPECT_FALSE(Rational::parseTime(text)) << text.data();
}

TEST(Rational, rounds_halves_away_from_zero)
{
    for (const auto &[value, rounded, ceiling] : {
             std::tuple<Rational, qint64, qint64>{{1, 2}, 1, 1},
             {{-1, 2}, -1, 0},
             {{49, 100}, 0, 1},
             {{-3, 2}, -2, -1},
             {{7, 3}, 2, 3},
             {{-7, 3}, -2, -2},
             {4, 4, 4},
             {{largest, 2}, largest / 2 + 1, largest / 2 + 1},
             {{1, largest}, 0, 1},
         }) {
        EXPECT_EQ(value.rounded(), rounded);
        EXPECT_EQ(value.ceiling(), ceiling);
    }
}

TEST(Rational, stays_exact_where_products_pass_64_bits)
{
    const Rational a(61847735047, 720000);
    const Rational b(999999, 1000000000);
    EXPECT_EQ(a * b / b, a);
    EXPECT_EQ(a + b - b, a);
    EXPECT_LT(Rational(largest - 1, largest), Rational(1));
    EXPECT_LT(Rational(largest - 2, largest - 1), Rational(largest - 1, largest));
    EXPECT_EQ(Rational(6, -4), Rational(-3, 2));
}

TEST(Rational, says_when_a_result_does_not_fit)
{
    EXPECT_THROW(Rational(largest) + Rational(1), RationalOverflow);
    EXPECT_THROW(Rational(largest) * Rational(largest), RationalOverflow);
    EXPECT_THROW(Rational(1, largest) * Rational(1, 2), RationalOverflow);
    EXPECT_THROW(Rational(std::numeric_limits<qint64>::min()), RationalOverflow);
}
