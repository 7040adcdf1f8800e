#include "app/model/Versions.h"

#include "app/model/SessionTracks.h"
#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

Subtitle cue(qint64 id, const QString &text, qint64 start = -1)
{
    const qint64 begin = start < 0 ? id * 1'000 : start;
    return {.id = id, .start = begin, .end = begin + 900, .text = text};
}

LintoraSession sessionOf(const QList<Subtitle> &cues)
{
    return SessionTracks::importing(SessionTracks::normalized({}), cues, u"访谈.srt"_s);
}

/// A session with versions, whose clock stands until it is set.
class VersionsTest : public ModelTest
{
protected:
    void edit(const QList<Subtitle> &cues, const QString &title) { session.replaceItems(cues, title); }

    QStringList titles()
    {
        versions.finishKeeping();
        QStringList result;
        for (const KeptSessions::Entry &entry : KeptSessions(home(u"Versions"_s), Versions::limits).list())
            result += entry.title;
        return result;
    }

    QList<Versions::Version> shown()
    {
        versions.finishKeeping();
        versions.show();
        EXPECT_TRUE(Events::waitFor([&] { return !versions.task().isRunning(); }));
        return versions.versions();
    }

    QDateTime now = QDateTime(QDate(2026, 11, 22), QTime(9, 0), Qt::UTC);
    EditedSession session{EditHistory(sessionOf(Generator(1).cues(40)))};
    CueOwnership owner{session};
    Versions versions{session, owner, home(u"Versions"_s), [this] { return now; }};
};

} // namespace

TEST_F(VersionsTest, the_session_is_kept_after_every_ten_minutes_of_change)
{
    QList<Subtitle> cues = session.state().items;
    const auto type = [&](const QString &text) {
        cues[3].text = text;
        edit(cues, u"修改文字"_s);
    };
    type(u"一"_s);
    now = now.addSecs(599);
    type(u"二"_s);
    EXPECT_EQ(titles(), QStringList());
    now = now.addSecs(1);
    type(u"三"_s);
    EXPECT_EQ(titles(), QStringList{u"自动保留_访谈.srt"_s});
    now = now.addDays(1);
    EXPECT_EQ(titles().size(), 1) << "nothing is changed meanwhile";
    session.undo();
    EXPECT_EQ(titles().size(), 2);
    const QList<Versions::Version> kept = shown();
    EXPECT_EQ(kept[1].entry.kept.toUTC(), now.addDays(-1));
    EXPECT_EQ(kept[1].difference.tracks.first().rows.first().after, u"三"_s);
    EXPECT_TRUE(kept[0].difference.isNone());
}

TEST_F(VersionsTest, the_session_is_kept_before_a_step_that_replaces_cues)
{
    const QList<Subtitle> first = session.state().items;
    QList<Subtitle> cues = first;
    for (int i = 0; i < 9; ++i)
        cues[i * 2].text += u'改';
    edit(cues, u"替换"_s);
    EXPECT_EQ(titles(), QStringList()) << "nine of forty";
    for (int i = 0; i < 10; ++i)
        cues[i * 3].start += 1;
    edit(cues, u"移动时间"_s);
    EXPECT_EQ(titles(), QStringList{u"移动时间前_访谈.srt"_s});
    session.undo();
    session.redo();
    EXPECT_EQ(titles().size(), 1);
    session.replace(SessionTracks::adding(session.state(), {cue(1, u"Hello"_s)}, {}), u"翻译"_s);
    session.replace(sessionOf({cue(1, u"甲"_s)}), u"载入字幕"_s, EditStep::load);
    EXPECT_EQ(titles().first(2), QStringList({u"载入字幕前_访谈.srt"_s, u"翻译前_访谈.srt"_s}));
    edit({}, u"删除字幕"_s);
    session.replace(sessionOf(first), u"载入字幕"_s, EditStep::load);
    EXPECT_EQ(titles().size(), 3) << "nothing was there to be lost";
}

TEST_F(VersionsTest, a_version_comes_back_as_one_step)
{
    const LintoraSession before = session.state();
    session.replace(sessionOf({cue(1, u"甲"_s)}), u"载入字幕"_s, EditStep::load);
    const LintoraSession after = session.state();
    ASSERT_EQ(shown().size(), 1);
    EXPECT_EQ(versions.versions().first().cues, 40);
    versions.restore(1);
    versions.restore(0);
    ASSERT_TRUE(Events::waitFor([&] { return session.state() == before; }));
    EXPECT_FALSE(versions.isShown());
    EXPECT_EQ(session.history().undoTitle(), u"恢复历史版本"_s);
    session.undo();
    EXPECT_EQ(session.state(), after);
    EXPECT_EQ(titles().first(), u"恢复历史版本前_访谈.srt"_s);
}

TEST_F(VersionsTest, what_cannot_be_read_is_listed_and_not_brought_back)
{
    const LintoraSession before = session.state();
    session.replace(sessionOf({cue(1, u"甲"_s)}), u"载入字幕"_s, EditStep::load);
    QFile file(shown().first().entry.file);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{");
    file.close();
    versions.close();
    ASSERT_EQ(shown().size(), 1);
    EXPECT_FALSE(versions.versions().first().cues);
    versions.restore(0);
    ASSERT_TRUE(Events::waitFor([&] { return versions.isRefused(); }));
    EXPECT_EQ(session.state().items.size(), 1);
}

TEST_F(VersionsTest, no_more_are_kept_than_the_limits_allow)
{
    const KeptSessions folder(home(u"few"_s), {.count = 5, .bytes = 20'000});
    for (int i = 0; i < 9; ++i)
        folder.keep(sessionOf({cue(i, u"短"_s)}), QString::number(i), now.addSecs(i));
    EXPECT_EQ(folder.list().size(), 5);
    folder.keep(sessionOf(Generator(1).cues(150)), u"长"_s, now.addSecs(20));
    const qint64 large = QFileInfo(folder.list().first().file).size();
    ASSERT_GT(large, 10'000);
    folder.keep(sessionOf(Generator(2).cues(150)), u"也长"_s, now.addSecs(21));
    EXPECT_EQ(folder.list().first().title, u"也长"_s);
    EXPECT_EQ(folder.list().size(), 1) << "no gaps: what is older goes first";
}

TEST_F(VersionsTest, a_difference_is_told_cue_by_cue)
{
    const LintoraSession base = sessionOf({cue(1, u"一"_s), cue(2, u"二"_s), cue(3, u"三"_s), cue(4, u"四"_s)});
    LintoraSession edited = base;
    edited.items = {cue(1, u"一"_s), cue(2, u"二改"_s), cue(9, u"新"_s, 2'500), cue(4, u"四"_s, 4'100)};
    edited = SessionTracks::committed(edited);
    const SessionDifference difference = SessionDifference::between(edited, base);
    EXPECT_EQ(difference.changed, 2);
    EXPECT_EQ(difference.added, 1);
    EXPECT_EQ(difference.removed, 1);
    QStringList rows;
    for (const CueProposal::Row &row : difference.tracks.first().rows)
        rows += u"%1 %2|%3"_s.arg(row.cue).arg(row.before, row.after);
    EXPECT_EQ(rows, QStringList({u"1 二改|二"_s, u"2 新|（恢复后没有这一条）"_s, u"2 （现在没有这一条）|三"_s,
                                 u"3 4.100–5.000 秒 四|4.000–4.900 秒 四"_s}));
    EXPECT_TRUE(SessionDifference::between(base, base).isNone());
    const LintoraSession both = SessionTracks::adding(base, {cue(1, u"Hello"_s)}, {}, u"English"_s);
    EXPECT_EQ(SessionDifference::between(base, both).added, 1);
    EXPECT_EQ(SessionDifference::between(both, base).removed, 1);
}
