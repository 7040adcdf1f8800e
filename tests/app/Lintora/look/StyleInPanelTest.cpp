// The workspace in the window: how it opens, and on what.

#include "app/Lintora/Panel.h"
#include "app/Lintora/cues/CueTable.h"
#include "app/Lintora/look/FontPicker.h"
#include "app/Lintora/look/StylePreview.h"
#include "app/Lintora/look/StyleWorkspace.h"
#include "tests/app/TemporaryModel.h"
#include "tests/support/Events.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class StyleInPanel : public testing::Test
{
protected:
    StyleInPanel()
    {
        // Fonts are remembered below the home folder.
        qputenv("HOME", outside.path(u"home"_s).toLocal8Bit());
        panel.resize(640, 790);
        panel.show();
        panel.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&panel));
        model.load(outside.srt(u"a.srt"_s, 3));
        EXPECT_TRUE(Events::waitFor([this] { return model.items().size() == 3; }));
        Events::handle();
    }
    ~StyleInPanel() override { qputenv("HOME", m_home); }

    QPushButton *button(const QString &text) const
    {
        for (QPushButton *const each : panel.findChildren<QPushButton *>()) {
            if (each->text() == text && each->isVisible())
                return each;
        }
        return nullptr;
    }

    TemporaryModel outside;
    LintoraModel model{outside.surroundings()};
    LintoraPanel panel{model};

private:
    QByteArray m_home = qgetenv("HOME");
};

TEST_F(StyleInPanel, opens_by_its_button_and_closes_by_Escape)
{
    EXPECT_EQ(panel.findChild<StyleWorkspace *>(), nullptr) << "nothing is made before it is needed";
    ASSERT_NE(button(u"样式"_s), nullptr);
    QTest::mouseClick(button(u"样式"_s), Qt::LeftButton);
    EXPECT_TRUE(model.window().settingsVisible());
    auto *const workspace = panel.findChild<StyleWorkspace *>();
    ASSERT_NE(workspace, nullptr);
    EXPECT_TRUE(workspace->isVisible());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(model.window().settingsVisible());
    EXPECT_FALSE(workspace->isVisible());
}

TEST_F(StyleInPanel, shows_the_cue_that_is_looked_at)
{
    Options options = model.options();
    options.fontSize = 400;
    model.setOptions(options);
    ASSERT_TRUE(model.setText(1, QString(30, u'长')));
    panel.table().goTo(0);
    model.window().setSettingsVisible(true);
    auto *const preview = panel.findChild<StylePreview *>();
    ASSERT_NE(preview, nullptr);
    const auto isTooWide = [&] {
        Events::handle();
        return preview->remark().contains(u"需要换行"_s);
    };
    EXPECT_FALSE(isTooWide());
    panel.table().goTo(1);
    EXPECT_TRUE(isTooWide());
    model.setText(1, u"短"_s);
    EXPECT_FALSE(isTooWide());
}

} // namespace
