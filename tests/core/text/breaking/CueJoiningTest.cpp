#include "core/text/breaking/CueJoining.h"

#include "core/Cancelled.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

Subtitle cue(qint64 id, qint64 start, qint64 end, const QString &text)
{
    return {.id = id, .start = start, .end = end, .text = text};
}

QStringList texts(const QList<Subtitle> &items, CueJoining::Limits limits = {.columns = 10})
{
    QStringList result;
    for (const Subtitle &each : CueJoining::joined(items, limits, [] {}))
        result += each.text;
    return result;
}

} // namespace

TEST(CueJoining, joins_neighbours_that_are_short_close_and_fit)
{
    const QList<Subtitle> joined = CueJoining::joined({cue(4, 0, 2'000, u"你好"_s), cue(5, 2'000, 4'000, u"世界"_s),
                                                       cue(9, 4'300, 6'000, u"OK，"_s), cue(10, 6'000, 7'000, u"走"_s)},
                                                      {.columns = 10}, [] {});
    EXPECT_EQ(joined, (QList<Subtitle>{cue(1, 0, 7'000, u"你好世界 OK，走"_s)}));
}

TEST(CueJoining, leaves_what_does_not_belong_together)
{
    const QString five = u"一二三四五"_s;
    const QString six = u"一二三四五六"_s;
    struct Case
    {
        Subtitle first;
        Subtitle second;
        bool joins;
    };
    for (const Case &each : {
             Case{cue(1, 0, 2'000, five), cue(2, 2'300, 4'000, u"一二三四"_s), true},
             Case{cue(1, 0, 2'000, five), cue(2, 2'301, 4'000, u"一二三四"_s), false}, // Too far apart.
             Case{cue(1, 0, 2'000, five), cue(2, 1'999, 4'000, u"一二三四"_s), false}, // They overlap.
             Case{cue(1, 0, 2'000, five), cue(2, 2'000, 4'000, six), false},           // Too wide.
             Case{cue(1, 0, 2'000, u"一二三四，"_s), cue(2, 2'000, 4'000, five), true},
             Case{cue(1, 0, 2'000, five), cue(2, 2'000, 7'000, u"一"_s), true},
             Case{cue(1, 0, 2'000, five), cue(2, 2'000, 7'001, u"一"_s), false}, // Too long.
             Case{cue(1, 0, 2'000, u"一\n二"_s), cue(2, 2'000, 4'000, u"三"_s), false},
             Case{cue(1, 0, 2'000, u"三"_s), cue(2, 2'000, 4'000, u"一\n二"_s), false},
         })
        EXPECT_EQ(texts({each.first, each.second}).size(), each.joins ? 1 : 2) << each.second.end;
    // Neither is short: of more than half the columns, and of a second or more.
    EXPECT_EQ(texts({cue(1, 0, 1'000, six), cue(2, 1'000, 2'000, six)}, {.columns = 13}).size(), 1);
    EXPECT_EQ(texts({cue(1, 0, 1'000, six + u"七"_s), cue(2, 1'000, 2'000, six)}, {.columns = 14}).size(), 1);
    EXPECT_EQ(texts({cue(1, 0, 1'000, six), cue(2, 1'000, 1'999, six)}, {.columns = 11}).size(), 2);
    EXPECT_EQ(texts({cue(7, 0, 1'000, six), cue(9, 1'000, 2'000, six)}, {.columns = 11, .briefMS = 500}),
              (QStringList{six, six}));
    EXPECT_TRUE(texts({}).isEmpty());
}

TEST(CueJoining, keeps_the_numbers_of_a_list_that_stays)
{
    const QList<Subtitle> cues = {cue(7, 0, 2'000, u"你好"_s), cue(3, 5'000, 6'000, u"世界"_s)};
    EXPECT_EQ(CueJoining::joined(cues, {}, [] {}), cues);
    EXPECT_THROW(CueJoining::joined(cues, {}, [] { throw Cancelled(); }), Cancelled);
}
