#include "app/model/StepJournal.h"

#include "app/model/EditedSession.h"
#include "app/model/SessionTracks.h"
#include "core/files/FileReader.h"
#include "tests/support/Generator.h"
#include "tests/support/Sessions.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// What a person can see of a history.
struct Seen
{
    std::vector<LintoraSession> past; ///< The newest first.
    LintoraSession current;
    std::vector<LintoraSession> future;
    QStringList titles; ///< Of past and future, in this order.

    explicit Seen(EditHistory history)
        : current(history.current())
    {
        size_t steps = 0;
        for (; history.canRedo(); ++steps) {
            titles += history.redoTitle();
            future.push_back(history.redo());
        }
        for (; steps > 0; --steps)
            history.undo();
        while (history.canUndo()) {
            titles.prepend(history.undoTitle());
            past.push_back(history.undo());
        }
    }

    friend bool operator==(const Seen &, const Seen &) = default;
};

/// Whether `a` is `b`, but perhaps without its oldest states.
bool isNewestOf(const Seen &a, const Seen &b)
{
    return a.current == b.current && a.future == b.future && a.past.size() <= b.past.size() &&
           std::equal(a.past.begin(), a.past.end(), b.past.begin());
}

QList<Subtitle> changed(Generator &generator, QList<Subtitle> cues)
{
    const qsizetype first = generator.number(0, cues.size());
    if (generator.chance(30))
        cues.remove(first, generator.number(0, std::min<qsizetype>(40, cues.size() - first)));
    const QList<Subtitle> fresh = generator.cues(generator.number(0, 3));
    for (const Subtitle &cue : fresh)
        cues.insert(std::min(first, cues.size()), cue);
    for (qsizetype at = generator.number(0, 9); at < cues.size() && generator.chance(60); at += generator.number(1, 90))
        cues[at].text = generator.speech(1, 9);
    return cues;
}

LintoraSession changed(Generator &generator, const LintoraSession &before)
{
    LintoraSession next = before;
    switch (generator.number(0, 9)) {
    case 0:
        next.previousItems = next.items;
        next.items = changed(generator, next.items);
        next.cleaned = true;
        break;
    case 1:
        next.previousItems.reset();
        break;
    case 2:
        next.options.fontSize = double(generator.number(1, 900)) / 7;
        break;
    case 3:
        return SessionTracks::adding(next, generator.cues(5), u"b.srt"_s);
    case 4:
        return SessionTracks::selecting(next, next.tracks->isEmpty() ? QUuid() : generator.pick(*next.tracks).id);
    case 5:
        if (generator.chance(70))
            break;
        return generator.chance(50) ? SessionTracks::normalized({}) : SessionTracks::normalized(Sessions::full());
    default:
        next.items = changed(generator, next.items);
    }
    return next.tracks->isEmpty() ? SessionTracks::importing(next, next.items, u"a.srt"_s)
                                  : SessionTracks::committed(next);
}

/// A session that is edited at random, with a journal as the keeper has it. `seen` holds what stood after each step.
class Editor
{
public:
    explicit Editor(const QString &path, HistoryRecords::Limits limits = {})
        : journal(path, limits)
        , session(
              journal.takeUp(SessionTracks::importing(SessionTracks::normalized({}), Generator(1).cues(200), {}), true))
    {
        QObject::connect(&session, &EditedSession::moved, &session, [this](auto move, auto title, auto state) {
            journal.note(move, title, state);
            seen.emplace_back(session.history());
        });
        seen.emplace_back(session.history());
    }

    void edit()
    {
        const qint64 what = m_generator.number(0, 19);
        if (what < 4 && session.history().canUndo())
            session.undo();
        else if (what < 6 && session.history().canRedo())
            session.redo();
        else if (what == 6)
            session.insertBefore(changed(m_generator, session.state()), u"插入"_s);
        else
            session.replace(changed(m_generator, session.state()), m_generator.speech(1, 3),
                            what == 7 ? EditStep::amend : EditStep::record);
    }

    void save()
    {
        const quint64 point = journal.point();
        journal.aboutToSave(point);
        journal.saved(point);
    }

    StepJournal journal;
    EditedSession session;
    std::vector<Seen> seen;

private:
    Generator m_generator{7};
};

class StepJournalTest : public ::testing::Test
{
protected:
    QString path() const { return m_folder.filePath(u"Draft.steps"_s); }

    Seen takenUp(const LintoraSession &draft) const { return Seen(StepJournal(path()).takeUp(draft, true)); }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(StepJournalTest, every_beginning_of_a_journal_is_a_history_that_there_was)
{
    QList<QByteArray> records;
    std::vector<Seen> seen;
    LintoraSession first;
    {
        Editor editor(path());
        first = editor.session.state();
        for (int i = 0; i < 150; ++i) {
            editor.edit();
            editor.journal.point(); // Otherwise steps are joined.
        }
        editor.save();
        seen = editor.seen;
    }
    records = RecordLog(path()).open();
    ASSERT_GT(records.size(), 200);
    size_t at = 0;
    for (qsizetype count = 1; count <= records.size(); ++count) {
        const Seen replayed(HistoryRecords::replay(records.first(count), first).history);
        while (at < seen.size() && replayed != seen[at])
            ++at;
        ASSERT_LT(at, seen.size()) << count << ": no state that there was, or an older one again";
    }
    EXPECT_EQ(at, seen.size() - 1) << "the newest is reached";
}

TEST_F(StepJournalTest, goes_on_where_it_was_from_the_draft_before_and_from_the_one_that_was_being_saved)
{
    LintoraSession saved;
    LintoraSession saving;
    std::optional<Seen> last;
    {
        Editor editor(path());
        for (int i = 0; i < 40; ++i)
            editor.edit();
        editor.save();
        saved = editor.session.state();
        editor.session.replace(SessionTracks::normalized(Sessions::full()), u"这一步"_s);
        saving = editor.session.state();
        editor.journal.aboutToSave(editor.journal.point());
        editor.session.undo();
        editor.session.replaceItems({}, u"还没到草稿"_s);
        last = editor.seen.back();
    }
    EXPECT_EQ(takenUp(saved), *last);
    EXPECT_EQ(takenUp(saving), *last);
    LintoraSession foreign = saved;
    foreign.source = u"别的程序"_s;
    EXPECT_EQ(takenUp(foreign), Seen(EditHistory(foreign))) << "the draft wins";
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(StepJournalTest, stays_small_and_keeps_the_newest_steps_whatever_is_undone_beyond_them)
{
    const HistoryRecords::Limits limits{.steps = 10, .bytes = 40'000};
    std::optional<LintoraSession> state;
    std::optional<Seen> last;
    {
        Editor editor(path(), limits);
        for (int i = 0; i < 600; ++i) {
            editor.edit();
            if (i % 97 == 0) {
                while (editor.session.history().canUndo() && i % 2 == 0)
                    editor.session.undo();
            }
            editor.save();
            if (i % 5 == 0) {
                state = editor.session.state();
                const QList<QByteArray> records = HistoryRecords::compacted({HistoryRecords::begin(*state)}, 1, limits);
                ASSERT_LT(QFileInfo(path()).size(), 2 * limits.bytes + records.first().size() + 100'000) << i;
            }
        }
        state = editor.session.state();
        last = editor.seen.back();
    }
    const Seen restored = takenUp(*state);
    EXPECT_TRUE(isNewestOf(restored, *last));
    EXPECT_GE(restored.past.size() + restored.future.size(), 5U);
}

TEST_F(StepJournalTest, a_journal_that_cannot_be_written_begins_anew_when_it_can)
{
    const QString folder = QFileInfo(path()).path() + u"/later"_s;
    ASSERT_TRUE(QFile(folder).open(QIODevice::WriteOnly));
    std::optional<Seen> last;
    {
        Editor editor(folder + u"/Draft.steps"_s);
        editor.session.replaceItems({}, u"一"_s);
        editor.save();
        ASSERT_TRUE(QFile::remove(folder));
        editor.session.undo();
        editor.session.redo();
        editor.save();
        last = editor.seen.back();
    }
    EXPECT_EQ(Seen(StepJournal(folder + u"/Draft.steps"_s).takeUp(last->current, true)), *last);
}
