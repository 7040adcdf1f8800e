#include "app/model/EditGrouping.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// What happens to a grouping, a letter each: r, l, g, a are changes of the kinds record, load, gesture and amend;
/// ( ) begin and end a group, [ ] a gesture. For each change "1" when it is a step by itself, "-" when it joins the
/// last.
std::string stepsOf(const std::string &events)
{
    EditGrouping grouping;
    std::string steps;
    const auto change = [&](EditStep kind) { steps += grouping.joinsLast(kind) ? '-' : '1'; };
    for (const char event : events) {
        switch (event) {
        case 'r':
            change(EditStep::record);
            break;
        case 'l':
            change(EditStep::load);
            break;
        case 'g':
            change(EditStep::gesture);
            break;
        case 'a':
            change(EditStep::amend);
            break;
        case '(':
            grouping.beginGroup();
            break;
        case ')':
            grouping.endGroup();
            break;
        case '[':
            grouping.beginGesture();
            break;
        default:
            grouping.endGesture();
        }
    }
    return steps;
}

} // namespace

TEST(EditGroupingTest, says_which_changes_make_one_step_together)
{
    struct Row
    {
        const char *name;
        const char *events;
        const char *steps;
    };
    const Row rows[] = {
        {"by themselves", "rlgra", "1111-"},
        {"a gesture", "[ggg]g", "1--1"},
        {"two gestures", "[gg][gg]", "1-1-"},
        {"a gesture that a change ends", "[gggrg", "1--11"},
        {"a gesture that another session ends", "[gglg", "1-11"},
        {"a gesture and a look at another track", "[gag]", "1--"},
        {"a group", "(rlgr)r", "1---1"},
        {"a group that begins with a look at another track", "(arr)", "-1-"},
        {"two groups", "(rr)(rr)", "1-1-"},
        {"a group in a group", "(r(r)r)r", "1--1"},
        {"a gesture in a group", "(r[gg]r)", "1---"},
        {"a gesture after a group", "(r)[gg]", "11-"},
    };
    for (const Row &row : rows)
        EXPECT_EQ(stepsOf(row.events), row.steps) << row.name << ": " << row.events;
}
