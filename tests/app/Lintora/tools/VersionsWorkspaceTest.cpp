#include "app/Lintora/tools/VersionsWorkspace.h"

#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"

#include <QListView>

using namespace Qt::StringLiterals;

TEST_F(PanelTest, a_kept_version_is_looked_at_and_brought_back)
{
    load({u"一"_s, u"二"_s});
    load({u"一"_s, u"别的"_s, u"三"_s});
    model.versions().finishKeeping();
    model.versions().show();
    auto *const versions = find<QListView>(u"历史版本"_s);
    auto *const changes = find<QListView>(u"恢复后的变化"_s);
    ASSERT_TRUE(versions && changes);
    ASSERT_TRUE(Events::waitFor([&] { return versions->model()->rowCount() == 1; }));
    const QString told = versions->model()->index(0, 0).data().toString();
    EXPECT_TRUE(told.contains(u"载入字幕前_"_s)) << told.toStdString();
    EXPECT_TRUE(told.endsWith(u"\n2 条字幕 · 恢复后修改 1 条 · 减少 1 条"_s)) << told.toStdString();
    ASSERT_EQ(changes->model()->rowCount(), 2);
    EXPECT_EQ(changes->model()->index(0, 0).data().toString(), u"别的\n↓\n二"_s);
    click(u"恢复此版本"_s);
    ASSERT_TRUE(Events::waitFor([&] { return texts() == QStringList({u"一"_s, u"二"_s}); }));
    EXPECT_FALSE(find<QListView>(u"历史版本"_s));
    EXPECT_EQ(status(), u"已恢复历史版本，可撤销"_s);
    model.undo();
    EXPECT_EQ(texts().size(), 3);
}
