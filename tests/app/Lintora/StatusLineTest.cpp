// What the window says of its work, and what it asks at its end.

#include "app/Lintora/StatusLine.h"
#include "app/Lintora/controls/BusyBar.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/Sheet.h"
#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/drag/CardRow.h"
#include "app/Lintora/drag/UnifiedImportArea.h"
#include "app/model/FCPPasteboard.h"
#include "core/Cancelled.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/OwnedCues.h"
#include "tests/support/StoryDocument.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSemaphore>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

using Status = PanelTest;

TEST_F(Status, a_failure_is_one_line_that_can_be_read_in_full_and_copied)
{
    load({u"一"_s});
    const QString sentence = QString(100, u'长');
    model.report(u"已载入"_s);
    EXPECT_EQ(status(), u"已载入"_s);
    EXPECT_EQ(button(u"复制出错信息"_s), nullptr);
    for (const QString &detail : {u""_s, u"位于文件第 7 行。"_s}) {
        const QString whole = detail.isEmpty() ? sentence : sentence + u'\n' + detail;
        model.reportFailure(Failure{.sentence = sentence, .detail = detail});
        Events::handle();
        EXPECT_EQ(status(), sentence);
        EXPECT_EQ(find<ElidedLabel>(u"状态"_s)->toolTip(), whole);
        click(u"复制出错信息"_s);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), whole);
    }
    model.report(u"好了"_s);
    EXPECT_EQ(button(u"复制出错信息"_s), nullptr);
}

TEST_F(Status, long_work_is_named_and_can_be_cancelled)
{
    load({u"一"_s});
    model.scriptMatching().setText(u"一"_s);
    model.scriptMatching().match();
    ASSERT_TRUE(model.activity().has_value());
    EXPECT_EQ(status(), u"正在匹配文稿…"_s);
    click(u"取消"_s);
    EXPECT_FALSE(model.activity().has_value());
    EXPECT_EQ(button(u"取消"_s), nullptr);
}

TEST_F(Status, long_work_says_how_far_it_is_and_how_long_it_will_take_where_that_is_known)
{
    struct Row
    {
        Progress progress;
        QString text;
        QString share;
    };
    const QString doing = u"正在识别…"_s;
    const Row rows[] = {{{.what = doing}, doing, {}},
                        {{.what = doing, .share = 0.426}, doing, u"42%"_s},
                        {{.what = doing, .share = 1.0, .leftMS = 0}, doing + u" · 约剩 10 秒"_s, u"100%"_s},
                        {{.what = doing, .leftMS = 50'000}, doing + u" · 约剩 50 秒"_s, {}},
                        {{.what = doing, .leftMS = 50'001}, doing + u" · 约剩 1 分钟"_s, {}},
                        {{.what = doing, .leftMS = 60'001}, doing + u" · 约剩 2 分钟"_s, {}},
                        {{.what = doing, .leftMS = 3'540'000}, doing + u" · 约剩 59 分钟"_s, {}},
                        {{.what = doing, .leftMS = 3'540'001}, doing + u" · 约剩 1 小时 0 分钟"_s, {}},
                        {{.what = doing, .leftMS = 4'500'000}, doing + u" · 约剩 1 小时 15 分钟"_s, {}}};
    for (const Row &row : rows) {
        model.ownCues(
            u"开始"_s,
            [&](Job &job, const ProgressReport &report) -> int {
                QSemaphore cancelled;
                const Job::OnCancel wake(job, [&] { cancelled.release(); });
                report(row.progress);
                cancelled.acquire();
                throw Cancelled();
            },
            [](int /*result*/) {});
        EXPECT_TRUE(Events::waitFor([&] { return status() == row.text; })) << qPrintable(status());
        EXPECT_EQ(panel->findChild<BusyBar *>()->accessibleDescription(), row.share);
        click(u"取消"_s);
        EXPECT_FALSE(model.aiBusy());
    }
}

TEST_F(Status, return_exports_what_cannot_be_saved_and_the_question_at_the_end_tells_so)
{
    load({u"一"_s});
    const QString folder = QFileInfo(model.draftURL()).path();
    const QString aside = folder + u"-aside"_s;
    ASSERT_TRUE(QDir().rename(folder, aside));
    ASSERT_TRUE(QFile(folder).open(QIODevice::WriteOnly)); // in the way
    outside.answer = aside;
    model.setText(0, u"新"_s);
    EXPECT_FALSE(model.requestQuit());
    press(Qt::Key_Return);
    EXPECT_TRUE(Events::waitFor([&] { return visibleTexts().contains(u"已导出 1 个 SRT 文件"_s); }));
    EXPECT_TRUE(model.quitQuestion().has_value());
    EXPECT_TRUE(QFile::remove(folder) && QDir().rename(aside, folder));
}

TEST_F(Status, a_quit_during_work_is_asked_about_until_the_work_is_done)
{
    load({u"一"_s});
    OwnedCues owned(model);
    EXPECT_FALSE(model.requestQuit());
    EXPECT_TRUE(visibleTexts().contains(u"任务还没有完成，仍要退出？"_s));
    EXPECT_FALSE(visibleTexts().contains(u"导出全部 SRT…"_s));
    press(Qt::Key_Return); // on what loses nothing
    EXPECT_EQ(model.quitQuestion(), std::nullopt);
    EXPECT_FALSE(model.requestQuit());
    owned.end();
    EXPECT_EQ(model.quitQuestion(), std::nullopt);
    EXPECT_TRUE(model.requestQuit());
}

} // namespace
