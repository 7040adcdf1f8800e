#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/text/SubtitleCleanup.h"
#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"

using namespace Qt::StringLiterals;

namespace {

class ToolsTest : public ModelTest
{
protected:
    QString label() const
    {
        for (const SubtitleTrack &track : model->tracks()) {
            if (track.id == model->selectedTrackID())
                return track.label;
        }
        return {};
    }
};

} // namespace

TEST_F(ToolsTest, cleaning_can_be_restored_by_its_own_command_and_by_the_history)
{
    loadTexts({u"嗯，大家好"_s, u"啊"_s, u"今天聊调色"_s});
    model->textTools().clean();
    EXPECT_EQ(model->message(), u"没有需要清理的内容"_s);
    model->textTools().setRemoveFillers(true);
    const LintoraSession before = model->snapshot();
    model->textTools().clean();
    EXPECT_EQ(model->message(), u"已清理"_s);
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"今天聊调色"_s}));
    EXPECT_TRUE(model->cleaned());
    const LintoraSession cleaned = model->snapshot();

    model->textTools().clean();
    EXPECT_EQ(model->message(), u"没有需要清理的内容"_s);
    EXPECT_EQ(model->snapshot(), cleaned);

    model->undo();
    EXPECT_EQ(model->snapshot(), before);
    EXPECT_FALSE(model->cleaned());
    EXPECT_FALSE(model->previousItems());
    model->redo();
    EXPECT_EQ(model->snapshot(), cleaned);

    model->textTools().undoCleanup();
    EXPECT_EQ(model->message(), u"已撤销"_s);
    EXPECT_EQ(model->snapshot(), before);
    model->undo();
    EXPECT_EQ(model->snapshot(), cleaned);
}

TEST_F(ToolsTest, replacing_counts_and_is_restored_only_while_nothing_else_was_done)
{
    loadTexts({u"color color"_s, u"调色"_s, u"color"_s});
    bool couldUndo = false;
    const auto ear = QObject::connect(model.get(), &LintoraModel::historyChanged,
                                      [&] { couldUndo = model->textTools().canUndoReplacement(); });
    EXPECT_EQ(model->textTools().replaceKeywords(u"color"_s, u"色彩"_s), 3);
    QObject::disconnect(ear);
    EXPECT_TRUE(couldUndo) << "who hears of the replacement can offer to undo it";
    EXPECT_EQ(model->message(), u"已替换 3 处 · 2 条字幕，可撤销修改"_s);
    EXPECT_TRUE(model->textTools().canUndoReplacement());

    model->setText(1, u"打字"_s);
    EXPECT_FALSE(model->textTools().canUndoReplacement());
    model->textTools().undoReplacement();
    EXPECT_EQ(texts().at(1), u"打字"_s);
    model->undo();
    EXPECT_TRUE(model->textTools().canUndoReplacement());
    model->textTools().undoReplacement();
    EXPECT_EQ(texts(), (QStringList{u"color color"_s, u"调色"_s, u"color"_s}));
    EXPECT_EQ(model->message(), u"已撤销，字幕恢复为替换前内容"_s);
    model->undo();
    EXPECT_EQ(texts().first(), u"色彩 色彩"_s);

    // The kept original is changed by nothing, and the tracks made of it are others.
    loadTexts({u"调色\ncolor"_s});
    EXPECT_EQ(model->textTools().replaceKeywords(u"color"_s, u"colour"_s), 1);
    model->textTools().separateLanguages();
    EXPECT_FALSE(model->textTools().canUndoReplacement());
    model->textTools().undoReplacement();
    EXPECT_EQ(texts(), QStringList{u"调色"_s});
    model->textTools().restoreOriginal();

    EXPECT_EQ(model->textTools().replaceKeywords(u"没有"_s, {}), 0);
    EXPECT_EQ(model->message(), u"没有需要替换的内容"_s);
    EXPECT_EQ(model->textTools().replaceKeywords({}, {}), std::nullopt);
    EXPECT_EQ(failure(), u"请输入要查找的关键词。"_s);
}

TEST_F(ToolsTest, separating_keeps_the_original_aside_until_it_is_restored)
{
    loadTexts({u"只有中文"_s});
    model->textTools().separateLanguages();
    EXPECT_EQ(failure(), u"未发现可分离的中英字幕，请确认中文和英文分别占行"_s);

    loadTexts({u"你好\nHello"_s, u"再见\nBye"_s, u"Привет"_s});
    const QList<Subtitle> original = model->items();
    model->textTools().separateLanguages();
    EXPECT_EQ(model->message(), u"已分离，未识别文字保留在“待归类”中"_s);
    QStringList labels;
    for (const SubtitleTrack &track : model->visibleTracks())
        labels += track.label + QString::number(track.items.size());
    EXPECT_EQ(labels, (QStringList{u"中文2"_s, u"English2"_s, u"待归类1"_s}));
    EXPECT_EQ(label(), u"中文"_s);
    const LintoraSession separated = model->snapshot();

    model->setText(0, u"您好"_s);
    model->textTools().restoreOriginal();
    EXPECT_EQ(model->message(), u"已恢复分离前原稿"_s);
    EXPECT_EQ(model->items(), original);
    EXPECT_EQ(model->tracks().size(), 1);
    EXPECT_FALSE(model->splitOriginal());
    model->undo();
    EXPECT_EQ(texts().first(), u"您好"_s);
    model->undo();
    EXPECT_EQ(model->snapshot(), separated);
}

TEST_F(ToolsTest, edits_stay_with_their_track_and_a_moved_cue_finds_its_place)
{
    loadTexts({u"你好\nHello"_s, u"再见\nBye"_s, u"Привет"_s, u"完"_s});
    model->textTools().separateLanguages();
    const QList<SubtitleTrack> tracks = model->visibleTracks();
    model->selectTrack(tracks[1].id);
    model->setText(0, u"Hi"_s);
    model->selectTrack(tracks[0].id);
    EXPECT_EQ(texts(), (QStringList{u"你好"_s, u"再见"_s, u"完"_s}));
    model->undo();
    EXPECT_EQ(label(), u"English"_s) << "the change that is undone is shown";
    EXPECT_EQ(texts().first(), u"Hello"_s);
    model->selectTrack(tracks[0].id);
    model->redo();
    EXPECT_EQ(label(), u"English"_s) << "and so is the one that is redone";
    model->undo();
    for (const QUuid &hidden : {QUuid::createUuid(), *model->splitOriginal()}) {
        model->selectTrack(hidden);
        model->moveCue(0, hidden);
        EXPECT_EQ(label(), u"English"_s);
    }

    model->selectTrack(tracks[2].id);
    model->moveCue(0, tracks[0].id);
    EXPECT_EQ(label(), u"中文"_s) << "a track without cues is closed";
    EXPECT_EQ(texts(), (QStringList{u"你好"_s, u"再见"_s, u"Привет"_s, u"完"_s}));
    EXPECT_EQ(model->items()[2].id, 3) << "a free number is kept";
    EXPECT_EQ(model->items()[2].start, 2'000);
    model->moveCue(0, tracks[1].id);
    model->selectTrack(tracks[1].id);
    EXPECT_EQ(texts(), (QStringList{u"Hello"_s, u"你好"_s, u"Bye"_s}));
    EXPECT_EQ(model->items()[1].id, 3) << "a number that is taken gives way to the next free one";
    EXPECT_EQ(model->payload(tracks[2].id), std::nullopt);
    EXPECT_EQ(failure(), u"该语言组已关闭，请重新拖动字幕卡片"_s);
}

TEST_F(ToolsTest, every_edit_says_what_to_look_at_next_or_why_it_was_refused)
{
    loadTexts({u"大家好"_s, u"今天"_s});
    EXPECT_EQ(model->setText(0, u"大家 好"_s), 0);
    EXPECT_EQ(model->splitCue(0, 2), 1);
    EXPECT_EQ(model->insertCue(1), 2);
    EXPECT_EQ(model->joinWithNext(2), 2);
    EXPECT_EQ(model->setTimes(0, 5, 10), 0);
    EXPECT_EQ(texts(), (QStringList{u"大家"_s, u"好"_s, u"新字幕今天"_s}));
    EXPECT_EQ(model->setTimes(0, 5, 5), std::nullopt);
    EXPECT_EQ(failure(), u"结束时间须晚于开始时间。"_s);
    EXPECT_EQ(model->deleteCues({2, 1}), 0);
    EXPECT_EQ(failure(), QString());
    EXPECT_EQ(model->deleteCues({0}), -1);
    EXPECT_EQ(model->setText(0, u"x"_s), std::nullopt) << "a cue that is gone";
    EXPECT_EQ(model->splitCue(0, 0), std::nullopt);
    EXPECT_EQ(model->joinWithNext(-1), std::nullopt);
    EXPECT_EQ(model->insertCue(7), std::nullopt);
    for (int i = 0; i < 7; ++i)
        model->undo();
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"今天"_s}));
}

TEST_F(ToolsTest, an_edit_is_heard_only_by_those_whom_it_concerns_and_no_edit_by_nobody)
{
    loadTexts({u"大家好"_s, u"今天"_s});
    Published published(*model);
    model->setText(0, u"你好"_s);
    EXPECT_EQ(published.take(),
              (QStringList{u"messageChanged"_s, u"itemsChanged"_s, u"tracksChanged"_s, u"historyChanged"_s}));
    EXPECT_EQ(model->message(), QString()) << "what was said of the step before is over";
    model->setText(0, u"你好"_s);
    model->textTools().setRemoveFillers(false);
    model->selectTrack(*model->selectedTrackID());
    EXPECT_EQ(published.take(), QStringList());
    model->textTools().setRemoveFillers(true);
    EXPECT_EQ(published.take(), (QStringList{u"removeFillersChanged"_s, u"tracksChanged"_s, u"historyChanged"_s}));
}

TEST_F(ToolsTest, filler_words_that_cannot_be_kept_are_refused_until_they_can)
{
    const QString folder = home(u"settings"_s);
    QFile inTheWay(folder);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const auto settings = std::make_shared<QSettings>(folder + u"/a.ini"_s, QSettings::IniFormat);
    LintoraModel other({.draftURL = home(u"other.json"_s), .settings = settings});
    EXPECT_THROW(other.textTools().saveFillerWords(u"嗯"_s), PlatformError);
    EXPECT_EQ(other.textTools().fillerWords(), SubtitleCleanup::defaultFillerWords());
    ASSERT_TRUE(inTheWay.remove());
    other.textTools().saveFillerWords(u"嗯"_s);
    EXPECT_EQ(other.textTools().fillerWords(), QStringList{u"嗯"_s});
    EXPECT_TRUE(QFileInfo(settings->fileName()).isFile());
}

TEST_F(ToolsTest, a_first_job_begins_with_the_font_that_it_is_given)
{
    LintoraModel other({.draftURL = home(u"other.json"_s),
                        .settings = std::make_shared<QSettings>(home(u"other.ini"_s), QSettings::IniFormat),
                        .font = u"Source Han Sans CN"_s});
    EXPECT_EQ(other.options().font, u"Source Han Sans CN"_s);
    other.insertCue(-1);
    EXPECT_EQ(other.tracks().first().options.font, u"Source Han Sans CN"_s);
    other.saveDraft();
    const LintoraModel next({.draftURL = home(u"other.json"_s),
                             .settings = std::make_shared<QSettings>(home(u"other.ini"_s), QSettings::IniFormat)});
    EXPECT_EQ(next.options().font, u"Source Han Sans CN"_s);
}

TEST_F(ToolsTest, filler_words_are_kept_for_the_next_run_unless_they_are_too_many)
{
    EXPECT_EQ(model->textTools().fillerWords(), SubtitleCleanup::defaultFillerWords());
    model->textTools().saveFillerWords(u"嗯\n那个，就是"_s);
    restart();
    EXPECT_EQ(model->textTools().fillerWords(), (QStringList{u"嗯"_s, u"那个"_s, u"就是"_s}));
    EXPECT_THROW(model->textTools().saveFillerWords(QString(61, u'啊')), ConversionError);
    EXPECT_EQ(model->textTools().fillerWords().size(), 3);
    model->textTools().saveFillerWords(u"嗯"_s);
    EXPECT_EQ(restart().textTools().fillerWords(), QStringList{u"嗯"_s});
    model->textTools().saveFillerWords({});
    EXPECT_EQ(restart().textTools().fillerWords(), QStringList());
}

TEST_F(ToolsTest, a_gesture_is_one_step_however_many_values_it_went_through)
{
    const double size = model->options().fontSize;
    const auto drag = [&](double to) {
        Options options = model->options();
        options.fontSize = to;
        model->setOptions(options);
    };
    model->beginGesture();
    for (int i = 1; i <= 50; ++i)
        drag(size + i);
    model->endGesture();
    drag(7);
    model->undo();
    EXPECT_EQ(model->options().fontSize, size + 50);
    model->undo();
    EXPECT_EQ(model->options().fontSize, size);
    EXPECT_FALSE(model->canUndo());
    model->setCanvasHeight(1'080);
    EXPECT_EQ(model->options().height, 1'080);

    loadTexts({u"甲乙"_s});
    model->asOneStep([&] {
        model->setText(0, u"丙丁"_s);
        model->splitCue(0, 1);
    });
    model->setText(0, u"戊"_s);
    model->undo();
    EXPECT_EQ(texts(), (QStringList{u"丙"_s, u"丁"_s}));
    model->undo();
    EXPECT_EQ(texts(), QStringList{u"甲乙"_s});

    // A gesture that nobody ended takes nothing else in.
    loadTexts({u"一"_s, u"二"_s});
    model->beginGesture();
    drag(9);
    model->setText(0, u"三"_s);
    drag(10);
    model->undo();
    model->undo();
    EXPECT_EQ(texts().first(), u"一"_s);
    EXPECT_EQ(model->options().fontSize, 9);
}

/// Every operation in any order, with all that a person can see put back by undoing to the beginning.
TEST_F(ToolsTest, five_thousand_operations_are_undone_to_the_first_state_and_redone_to_the_last)
{
    Generator generator(11);
    loadCues(generator.cues(60));
    const auto shown = [&] {
        LintoraSession job = model->snapshot();
        job.tracks.reset();
        QList<SubtitleTrack> tracks = model->tracks();
        return std::pair(job.source, tracks);
    };
    const auto first = shown();
    const auto index = [&] { return generator.number(0, std::max<qsizetype>(0, model->items().size() - 1)); };
    const std::vector<std::function<void()>> operations{
        [&] { model->setText(index(), generator.speech(1, 12)); },
        [&] { model->setText(index(), generator.speech(2, 5) + u"\nHello "_s + QString::number(index())); },
        [&] { model->setTimes(index(), generator.number(0, 90'000), generator.number(0, 90'000)); },
        [&] { model->insertCue(index()); },
        [&] {
            model->deleteCues({index(), index()});
        },
        [&] {
            const qsizetype at = index();
            model->splitCue(at, generator.number(0, model->items().at(at).text.size()));
        },
        [&] { model->joinWithNext(index()); },
        [&] { model->textTools().setRemoveFillers(generator.chance(50)); },
        [&] { model->textTools().setRemovePunctuation(generator.chance(50)); },
        [&] { model->textTools().clean(); },
        [&] { model->textTools().undoCleanup(); },
        [&] { model->textTools().replaceKeywords(u"的"_s, generator.chance(50) ? u"之"_s : QString()); },
        [&] { model->textTools().undoReplacement(); },
        [&] { model->textTools().separateLanguages(); },
        [&] {
            if (generator.chance(20))
                model->textTools().restoreOriginal();
        },
        [&] { model->selectTrack(generator.pick(model->visibleTracks()).id); },
        [&] { model->moveCue(index(), generator.pick(model->visibleTracks()).id); },
        [&] { model->setCanvasHeight(generator.number(500, 4'000)); },
        [&] { model->undo(); },
        [&] { model->redo(); },
    };
    for (int i = 0; i < 5'000; ++i) {
        if (model->tracks().isEmpty())
            model->redo();
        else if (model->items().size() < 3)
            model->undo();
        else
            generator.pick(operations)();
        if (i % 100 == 0)
            Events::handle();
        const LintoraSession &job = model->snapshot();
        if (job.tracks->isEmpty())
            continue;
        const auto selected = std::ranges::find(*job.tracks, job.selectedTrackID, &SubtitleTrack::id);
        ASSERT_NE(selected, job.tracks->end());
        ASSERT_EQ(selected->items, job.items);
    }
    const auto last = shown();
    int steps = 0;
    for (; model->canUndo(); ++steps)
        model->undo();
    EXPECT_TRUE(model->items().isEmpty()) << "the import was the first step";
    model->redo();
    EXPECT_EQ(shown(), first);
    EXPECT_GT(steps, 500);
    while (model->canRedo())
        model->redo();
    EXPECT_EQ(shown(), last);
}
