#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"
#include "tests/support/OwnedCues.h"

#include <QScopeGuard>
#include <QSemaphore>

#include <atomic>

using namespace Qt::StringLiterals;

namespace {

class CueOwnershipTest : public ModelTest
{
protected:
    void wait()
    {
        EXPECT_TRUE(Events::waitFor([&] { return !model->aiBusy(); }));
        Events::handle();
    }
};

} // namespace

TEST_F(CueOwnershipTest, is_over_however_the_work_ends)
{
    loadCues(Generator(1).cues(3));
    const LintoraSession before = model->snapshot();
    struct Row
    {
        const char *name;
        std::function<int()> operation;
        std::function<void()> take;
        QString failure;
        bool isChanged;
    };
    const Row rows[] = {
        {"done", [] { return 0; }, [&] { model->setText(0, u"结果"_s); }, {}, true},
        {"done, and taken by nothing", [] { return 0; }, [] {}, {}, false},
        {"refused", []() -> int { throw ConversionError(u"听不清。"_s); }, [] {}, u"听不清。"_s, false},
        {"failed", []() -> int { throw std::runtime_error("坏了"); }, [] {}, u"坏了"_s, false},
        {"cancelled by itself", []() -> int { throw Cancelled(); }, [] {}, {}, false},
        {"refused when taken", [] { return 0; }, [] { throw ConversionError(u"放不进去。"_s); }, u"放不进去。"_s,
         false},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        Published published(*model);
        const bool isOwned = model->ownCues(
            u"正在识别…"_s, [&](Job & /*job*/, const ProgressReport & /*report*/) { return row.operation(); },
            [&](int /*result*/) { row.take(); });
        EXPECT_TRUE(isOwned);
        EXPECT_TRUE(model->aiBusy());
        EXPECT_FALSE(model->canUndo());
        EXPECT_EQ(model->activity(), Progress{.what = u"正在识别…"_s});
        wait();
        EXPECT_EQ(published.take().count(u"aiBusyChanged"_s), 2);
        EXPECT_EQ(model->activity(), std::nullopt);
        EXPECT_TRUE(model->canUndo());
        EXPECT_EQ(failure(), row.failure);
        EXPECT_EQ(model->snapshot() != before, row.isChanged);
        if (row.isChanged)
            model->undo();
        EXPECT_EQ(model->snapshot(), before);
        model->report({});
    }
}

TEST_F(CueOwnershipTest, puts_a_result_in_place_as_one_step_before_it_says_that_the_cues_are_free)
{
    loadCues(Generator(1).cues(3));
    const LintoraSession before = model->snapshot();
    QString firstTextWhenFree;
    const auto ear = QObject::connect(model.get(), &LintoraModel::aiBusyChanged, [&] {
        if (!model->aiBusy())
            firstTextWhenFree = texts().first();
    });
    model->ownCues(
        u"正在翻译…"_s, [](Job & /*job*/, const ProgressReport & /*report*/) { return u"译文"_s; },
        [&](const QString &text) {
            for (qsizetype i = 0; i < 3; ++i)
                model->setText(i, text);
        });
    wait();
    QObject::disconnect(ear);
    EXPECT_EQ(firstTextWhenFree, u"译文"_s);
    EXPECT_EQ(texts(), (QStringList{u"译文"_s, u"译文"_s, u"译文"_s}));
    model->undo();
    EXPECT_EQ(model->snapshot(), before);
}

TEST_F(CueOwnershipTest, is_cancelled_by_the_button_by_a_quit_and_with_the_model)
{
    const std::function<void()> rows[] = {[&] { model->cancelActivity(); }, [&] { model->cancelAI(); },
                                          [&] { model->shutdownAI(); }, [&] { model = start(); }};
    for (const auto &cancel : rows) {
        loadCues(Generator(1).cues(3));
        const QStringList before = texts();
        QSemaphore begun;
        std::atomic<bool> isGone = false;
        model->ownCues(
            u"正在识别…"_s,
            [&](Job &job, const ProgressReport & /*report*/) -> int {
                const auto note = qScopeGuard([&] { isGone = true; });
                begun.release();
                for (;;)
                    job.check();
            },
            [&](int /*result*/) { model->setText(0, u"太晚"_s); });
        begun.acquire();
        cancel();
        EXPECT_FALSE(model->aiBusy());
        EXPECT_TRUE(Events::waitFor([&] { return isGone.load(); }));
        model->shutdownAI();
        Events::handle();
        EXPECT_FALSE(model->failure());
        EXPECT_FALSE(texts().contains(u"太晚"_s));
    }
}
