#include "app/model/EditHistory.h"

#include "app/model/SessionTracks.h"
#include "tests/support/Generator.h"
#include "tests/support/Sessions.h"

#include <gtest/gtest.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

using namespace Qt::StringLiterals;

namespace {

LintoraSession jobOf(const QList<Subtitle> &cues)
{
    return SessionTracks::importing(SessionTracks::normalized({}), cues, u"a.srt"_s);
}

LintoraSession withItems(LintoraSession job, const QList<Subtitle> &cues)
{
    job.items = cues;
    return SessionTracks::committed(std::move(job));
}

} // namespace

TEST(EditHistory, gives_back_every_state_whatever_changed)
{
    Generator generator(3);
    std::vector<LintoraSession> states{jobOf(generator.cues(300)), SessionTracks::normalized({}),
                                       SessionTracks::normalized(Sessions::full())};
    states.push_back(jobOf(generator.cues(300)));
    for (int i = 0; i < 200; ++i) {
        LintoraSession next = states.back();
        QList<Subtitle> cues = next.items;
        const qsizetype first = generator.number(0, cues.size());
        const qsizetype count = generator.number(0, std::min<qsizetype>(100, cues.size() - first));
        if (generator.chance(50))
            cues.remove(first, count);
        const QList<Subtitle> fresh = generator.cues(generator.number(0, generator.chance(20) ? 150 : 2));
        for (qsizetype k = 0; k < fresh.size(); ++k)
            cues.insert(first + k, fresh[k]);
        if (generator.chance(10))
            next.previousItems = next.items;
        states.push_back(withItems(next, cues));
    }
    EditHistory history(states.front());
    for (size_t i = 1; i < states.size(); ++i)
        history.record(states[i]);
    for (size_t i = states.size() - 1; i > 0; --i)
        ASSERT_EQ(history.undo(), states[i - 1]) << i;
    EXPECT_FALSE(history.canUndo());
    for (size_t i = 1; i < states.size(); ++i)
        ASSERT_EQ(history.redo(), states[i]) << i;
    EXPECT_FALSE(history.canRedo());
}

TEST(EditHistory, forgets_what_was_undone_once_something_else_is_done)
{
    const LintoraSession a = jobOf(Generator(1).cues(3));
    LintoraSession b = withItems(a, Generator(2).cues(3));
    EditHistory history(a);
    history.record(b);
    history.undo();
    history.amend(a);
    EXPECT_TRUE(history.canRedo());
    history.record(withItems(a, {}));
    EXPECT_FALSE(history.canRedo());
    history.insertBefore(b);
    EXPECT_EQ(history.undo(), b);
    EXPECT_EQ(history.undo(), a);
}

#ifdef __GLIBC__
TEST(EditHistory, a_thousand_edits_of_ten_thousand_cues_take_less_than_100_MB)
{
    LintoraSession job = jobOf(Generator(9).cues(10'000));
    EditHistory history(job);
    const auto inUse = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
    const size_t before = inUse();
    for (int i = 0; i < 1'000; ++i) {
        QList<Subtitle> cues = job.items;
        cues[i * 7919 % cues.size()].text = u"改动 %1"_s.arg(i);
        job = withItems(job, cues);
        history.record(job);
    }
    EXPECT_LT(inUse() - before, 100'000'000U);
    for (int i = 0; i < 3'000; ++i) {
        QList<Subtitle> cues = job.items;
        cues.insert(i * 7919 % cues.size(), cues[i]);
        job = withItems(job, cues);
        history.record(job);
    }
    EXPECT_LT(inUse() - before, 100'000'000U);
    for (int i = 0; i < 4'000; ++i)
        history.undo();
    EXPECT_FALSE(history.canUndo());
}
#endif
