#include "app/Lintora/cues/CueTableModel.h"

#include "app/Lintora/cues/CueFilter.h"
#include "tests/app/TemporaryModel.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

class CueTableModelTest : public testing::Test
{
protected:
    void load(const QList<Subtitle> &cues)
    {
        LintoraSession job;
        job.tracks = QList{SubtitleTrack{.id = QUuid::createUuid(), .label = u"中文"_s, .items = cues}};
        model.apply(job);
    }

    /// What the rows show, which must be the model's cues.
    void expectRows()
    {
        ASSERT_EQ(rows.rowCount(), model.items().size());
        for (int row = 0; row < rows.rowCount(); ++row) {
            const Subtitle &cue = model.items().at(row);
            EXPECT_EQ(rows.index(row, CueTableModel::textColumn).data().toString(), cue.text);
            EXPECT_EQ(rows.index(row, CueTableModel::startColumn).data(Qt::EditRole).toLongLong(), cue.start);
        }
    }

    TemporaryModel outside;
    LintoraModel model{outside.surroundings()};
    CueTableModel rows{model};
    CueFilter filter{rows};
    const QAbstractItemModelTester rowsTester{&rows, QAbstractItemModelTester::FailureReportingMode::Fatal};
    const QAbstractItemModelTester filterTester{&filter, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(CueTableModelTest, follows_every_edit_without_losing_its_place)
{
    Generator generator(7);
    load(generator.cues(40));
    filter.setText(model.items().at(20).text.first(1));
    const QPersistentModelIndex last = rows.index(39, CueTableModel::textColumn);
    const QString lastText = last.data().toString();
    QSignalSpy resets(&rows, &QAbstractItemModel::modelReset);
    for (int round = 0; round < 400; ++round) {
        const auto size = model.items().size() - 1; // the last one stays
        const auto cue = qsizetype(generator.number(0, size - 1));
        switch (generator.number(0, 7)) {
        case 0:
            model.setText(cue, generator.speech(1, 8));
            break;
        case 1:
            model.insertCue(cue - 1);
            break;
        case 2:
            model.splitCue(cue, 1);
            break;
        case 3:
            if (size > 10 && cue + 1 < size)
                model.joinWithNext(cue);
            break;
        case 4:
            if (size > 12)
                model.deleteCues({cue, qsizetype(generator.number(0, size - 1))});
            break;
        case 5:
            model.setTimes(cue, 500, 900);
            break;
        case 6:
            model.undo();
            break;
        default:
            model.redo();
        }
        expectRows();
        if (!last.isValid() || rows.rowCount() == 0) // undone back to before the session
            break;
        EXPECT_EQ(last.row(), rows.rowCount() - 1);
        EXPECT_EQ(last.data().toString(), lastText);
    }
    EXPECT_EQ(resets.size(), 0);
}

TEST_F(CueTableModelTest, an_edit_touches_only_the_rows_that_changed)
{
    load(Generator(1).cues(10));
    QSignalSpy changes(&rows, &QAbstractItemModel::dataChanged);
    model.setText(5, u"改"_s);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes.first().at(0).toModelIndex().row(), 4); // its warnings look at the next one
    EXPECT_EQ(changes.first().at(1).toModelIndex().row(), 5);
}

TEST_F(CueTableModelTest, the_filter_takes_capitals_and_small_letters_for_the_same)
{
    load({{.id = 1, .start = 0, .end = 900, .text = u"Final Cut"_s},
          {.id = 2, .start = 900, .end = 1'800, .text = u"剪辑"_s}});
    for (const QString &text : {u"fINAL"_s, u"cut"_s}) {
        filter.setText(text);
        EXPECT_EQ(filter.rowCount(), 1) << qPrintable(text);
    }
}

TEST_F(CueTableModelTest, another_job_or_track_is_a_reset)
{
    load(Generator(1).cues(10));
    QSignalSpy resets(&rows, &QAbstractItemModel::modelReset);
    load(Generator(1).cues(10));
    EXPECT_EQ(resets.size(), 1);
    expectRows();
}

TEST_F(CueTableModelTest, says_in_words_what_to_look_at_again)
{
    load({Subtitle{.id = 1, .start = 0, .end = 2'000, .text = u"好"_s},
          Subtitle{.id = 2, .start = 1'900, .end = 3'000, .text = u"好"_s}});
    EXPECT_EQ(rows.index(0, 0).data(CueTableModel::warningsRole).toStringList(),
              QStringList{u"与下一条重叠 100 毫秒"_s});
    EXPECT_EQ(rows.index(0, CueTableModel::textColumn).data(Qt::AccessibleDescriptionRole).toString(),
              u"与下一条重叠 100 毫秒"_s);
    model.setTimes(1, 2'000, 3'000);
    EXPECT_TRUE(rows.index(0, 0).data(CueTableModel::warningsRole).toStringList().isEmpty());
}

TEST_F(CueTableModelTest, the_width_of_a_cue_is_judged_in_the_tracks_style)
{
    load({Subtitle{.id = 1, .start = 0, .end = 6'000, .text = QString(40, u'宽')}});
    EXPECT_TRUE(rows.index(0, 0).data(CueTableModel::warningsRole).toStringList().isEmpty());
    Options options = model.options();
    options.fontSize = 150;
    model.setOptions(options);
    EXPECT_EQ(rows.index(0, 0).data(CueTableModel::warningsRole).toStringList(), QStringList{u"宽出字幕安全区"_s});
}

} // namespace
