#include "app/model/HistoryRecords.h"
#include "app/model/SessionTracks.h"
#include "core/PlatformError.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Edits at random, many of them where pieces of a frozen list meet.
std::vector<CueEdit> randomEdits(Generator &generator, qsizetype count)
{
    std::vector<CueEdit> edits;
    qsizetype done = 0;
    for (qsizetype i = generator.number(1, 3); i > 0 && done <= count; --i) {
        const qsizetype near = generator.number(done, count);
        const qsizetype at = generator.chance(50) ? near : std::clamp(near / 64 * 64, done, count);
        const qsizetype cut = generator.chance(50) ? 0 : generator.number(0, std::min<qsizetype>(count - at, 90));
        edits.push_back({.at = at, .cut = cut, .put = generator.cues(generator.number(0, 3))});
        done = at + cut + 1;
    }
    return edits;
}

} // namespace

TEST(HistoryReplay, a_list_in_pieces_is_edited_as_one_laid_out)
{
    Generator generator(5);
    QList<Subtitle> cues = generator.cues(300);
    auto frozen = FrozenCues::freeze(cues, {}, FrozenCues());
    for (int round = 0; round < 500; ++round) {
        std::vector<CueEdit> edits = randomEdits(generator, cues.size());
        if (cues.size() < 150)
            edits = {{.at = generator.number(0, cues.size()), .cut = 0, .put = generator.cues(200)}};
        frozen = frozen->edited(edits);
        for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
            cues.remove(edit->at, edit->cut);
            cues = cues.first(edit->at) + edit->put + cues.sliced(edit->at);
        }
        ASSERT_EQ(frozen->thaw(), cues) << round;
        ASSERT_EQ(frozen->count(), cues.size()) << round;
    }
}

TEST(HistoryReplay, what_the_state_before_has_not_is_refused)
{
    const LintoraSession first = SessionTracks::importing(SessionTracks::normalized({}), Generator(1).cues(3), {});
    const auto replayed = [&](const QByteArray &record) {
        return HistoryRecords::replay({HistoryRecords::begin(first), record}, first).history.current();
    };
    const auto change = [](const QByteArray &tracks) {
        return R"(R{"change":{"tracks":[)" + tracks + R"(]},"title":""})";
    };
    const auto edits = [&](const QByteArray &list) {
        return change(R"({"from":0,"items":{"edits":[)" + list + R"(],"of":0}})");
    };
    EXPECT_EQ(replayed(edits(R"({"at":0,"cut":1,"put":[]},{"at":3,"cut":0,"put":[]})")).items.size(), 2);
    for (const QByteArray &record :
         {QByteArray("U"), QByteArray("Y"), QByteArray("?"), change(R"({"from":1})"), change(R"({"from":-1})"),
          change(R"({"from":0,"items":{"of":2}})"), change(R"({"from":0,"items":{"of":1}})"),
          change(R"({"from":0,"items":{"of":-2}})"), edits(R"({"at":4,"cut":0,"put":[]})"),
          edits(R"({"at":2,"cut":2,"put":[]})"), edits(R"({"at":0,"cut":-1,"put":[]})"),
          edits(R"({"at":1,"cut":1,"put":[]},{"at":1,"cut":0,"put":[]})")})
        EXPECT_THROW(replayed(record), PlatformError) << record.toStdString();
}
