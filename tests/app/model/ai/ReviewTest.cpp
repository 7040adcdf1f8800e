#include "app/model/ai/Review.h"

#include "tests/support/Events.h"
#include "tests/support/ModelTest.h"
#include "tests/support/OwnedCues.h"
#include "tests/support/Proofreader.h"

#include <atomic>

using namespace Qt::StringLiterals;

namespace {

class ReviewTest : public ModelTest
{
protected:
    Review &review() { return model->review(); }
    const QList<ReviewRow> &rows() { return review().aiReviewRows(); }

    void loadTexts(const QStringList &texts)
    {
        QList<Subtitle> cues;
        for (const QString &text : texts)
            cues += Subtitle{
                .id = cues.size() + 1, .start = cues.size() * 2'000, .end = cues.size() * 2'000 + 1'900, .text = text};
        loadCues(cues);
    }

    void useService()
    {
        AIChoices choices = model->aiSettings().choices();
        choices.aiUseOnline = true;
        choices.aiAPIBaseURL = service.address();
        choices.aiAPIModel = u"chat"_s;
        model->aiSettings().choose(choices);
        model->aiSettings().setKey(AISettings::Service::text, u"key"_s);
    }

    void run()
    {
        review().start();
        EXPECT_TRUE(review().isRunning());
        EXPECT_TRUE(Events::waitFor([&] { return !review().isRunning(); }));
        Events::handle();
    }

    /// Three cues: one that is right, one with a slip, one whose number would become another.
    void proofreadThree()
    {
        loadTexts({u"大家好"_s, u"今天我们聊聊条色"_s, u"一共 30 个镜头"_s});
        useService();
        run();
    }

    Proofreader service{{{u"今天我们聊聊条色"_s, u"今天我们聊聊调色"_s}, {u"一共 30 个镜头"_s, u"一共 13 个镜头"_s}}};
};

} // namespace

TEST_F(ReviewTest, proposes_and_leaves_what_is_risky_to_the_person)
{
    proofreadThree();
    ASSERT_EQ(rows().size(), 3);
    EXPECT_FALSE(rows().at(0).changed());
    EXPECT_TRUE(rows().at(1).selected);
    EXPECT_FALSE(rows().at(2).selected);
    EXPECT_EQ(ReviewRows::reason(rows().at(2).risks), u"数字有改动"_s);
    EXPECT_EQ(review().status(), u"已校对 3 条，2 条有改动，其中 1 条请先确认"_s);
    EXPECT_EQ(model->message(), review().status());
    EXPECT_EQ(texts().at(1), u"今天我们聊聊条色"_s) << "nothing is changed before it is applied";
    EXPECT_FALSE(model->aiBusy());
}

TEST_F(ReviewTest, applies_the_ticked_rows_as_one_step_and_takes_them_back)
{
    proofreadThree();
    const QList<Subtitle> before = model->items();
    review().apply();
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"今天我们聊聊调色"_s, u"一共 30 个镜头"_s}));
    EXPECT_EQ(review().aiReviewBefore(), before);
    EXPECT_EQ(model->undoTitle(), u"AI 校对"_s);
    // Once more, with another choice.
    review().selectAll(true);
    review().setRowSelected(1, false);
    review().setRowSelected(0, true); // which proposes nothing
    EXPECT_EQ(review().selectedCount(), 1);
    review().apply();
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"今天我们聊聊条色"_s, u"一共 13 个镜头"_s}));
    ASSERT_TRUE(review().canUndo());
    review().undo();
    EXPECT_EQ(texts().at(1), u"今天我们聊聊调色"_s);
    EXPECT_FALSE(review().canUndo());
    model->undo();
    model->undo();
    model->undo();
    EXPECT_EQ(model->items(), before);
    EXPECT_FALSE(review().isOutdated());
    review().selectAll(false);
    review().apply();
    EXPECT_EQ(review().status(), u"请先勾选要修改的字幕"_s);
    EXPECT_TRUE(review().isRefused());
}

TEST_F(ReviewTest, keeps_rows_to_compare_once_the_cues_are_others)
{
    proofreadThree();
    struct Way
    {
        const char *name;
        std::function<void()> change;
    };
    const Way ways[] = {{"edited", [&] { model->setText(0, u"各位好"_s); }},
                        {"moved", [&] { model->setTimes(0, 5, 900); }},
                        {"deleted", [&] { model->deleteCues({2}); }},
                        {"inserted", [&] { model->insertCue(0); }}};
    for (const Way &way : ways) {
        SCOPED_TRACE(way.name);
        way.change();
        const QList<Subtitle> changed = model->items();
        EXPECT_TRUE(review().isOutdated());
        review().apply();
        EXPECT_EQ(model->items(), changed);
        EXPECT_EQ(review().status(), u"字幕在校对后有改动，结果仅供对照，请重新校对"_s);
        EXPECT_EQ(rows().size(), 3);
        model->undo();
        EXPECT_FALSE(review().isOutdated());
    }
    loadTexts({u"别的"_s});
    EXPECT_TRUE(review().isOutdated());
    EXPECT_EQ(rows().size(), 3);
}

TEST_F(ReviewTest, is_about_its_track_whichever_is_looked_at)
{
    loadTexts({u"你好条色\nhello"_s, u"再见\nbye"_s});
    service.corrections = {{u"你好条色"_s, u"你好调色"_s}};
    useService();
    model->textTools().separateLanguages();
    run();
    const QUuid chinese = *model->selectedTrackID();
    EXPECT_EQ(review().aiReviewTrackID(), chinese);
    EXPECT_EQ(review().aiReviewSource(), u"中文"_s);
    const QUuid english = model->visibleTracks().last().id;
    model->selectTrack(english);
    const QStringList untouched = texts();
    review().apply();
    EXPECT_EQ(model->selectedTrackID(), chinese);
    EXPECT_EQ(texts().first(), u"你好调色"_s);
    model->selectTrack(english);
    EXPECT_EQ(texts(), untouched);
    // The kept original is changed by nothing.
    model->textTools().restoreOriginal();
    EXPECT_TRUE(review().isOutdated());
}

TEST_F(ReviewTest, sends_the_original_along_when_that_is_wanted)
{
    loadTexts({u"你好\nhelo"_s, u"再见\nbye"_s});
    useService();
    EXPECT_EQ(review().reference(), std::nullopt);
    model->textTools().separateLanguages();
    EXPECT_EQ(review().reference(), u"English"_s);
    run();
    EXPECT_FALSE(service.requests().last().contains("helo"));
    AIChoices choices = model->aiSettings().choices();
    choices.aiUseReference = true;
    model->aiSettings().choose(choices);
    run();
    EXPECT_TRUE(service.requests().last().contains("helo"));
}

TEST_F(ReviewTest, ends_by_cancel_or_refusal_and_leaves_everything_as_it_was)
{
    proofreadThree();
    const QList<ReviewRow> before = rows();
    service.isSilent = true;
    review().start();
    ASSERT_TRUE(service.waitForConnections(2));
    EXPECT_TRUE(model->aiBusy());
    EXPECT_FALSE(model->setText(0, u"不行"_s));
    review().apply();
    EXPECT_TRUE(review().isRefused() || model->failure());
    model->cancelAI();
    EXPECT_FALSE(review().isRunning());
    EXPECT_EQ(rows(), before);
    AIChoices local = model->aiSettings().choices();
    local.aiUseOnline = false;
    model->aiSettings().choose(local);
    run();
    EXPECT_EQ(failure(), u"请先下载翻译模型。"_s);
    EXPECT_EQ(rows(), before);
    OwnedCues owner(*model);
    review().start();
    EXPECT_EQ(failure(), u"请等待当前任务完成。"_s);
    EXPECT_FALSE(review().isRunning());
}

TEST_F(ReviewTest, shows_what_other_work_has_proofread)
{
    loadTexts({u"今天调色"_s, u"一共 13 个"_s});
    QList<Subtitle> recognised = model->items();
    recognised[0].text = u"今天条色"_s;
    recognised[1].text = u"一共 30 个"_s;
    review().show(*model->selectedTrackID(), recognised, model->items());
    EXPECT_EQ(review().selectedCount(), 2);
    EXPECT_FALSE(review().isOutdated());
    review().setRowSelected(1, false);
    review().apply();
    EXPECT_EQ(texts(), (QStringList{u"今天调色"_s, u"一共 30 个"_s}));
}
