// Looking for a font by name and by sound.

#include "app/Lintora/look/FontPicker.h"
#include "app/Lintora/look/FontListModel.h"
#include "app/Lintora/look/FontRowDelegate.h"
#include "app/Lintora/look/StylePreview.h"
#include "tests/app/Lintora/look/StyleTest.h"
#include "tests/support/Events.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QFontDatabase>
#include <QListView>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class FontPickerTest : public StyleTest
{
protected:
    /// Opens the picker with the mouse, once all names are known.
    void openPicker()
    {
        QTest::mouseClick(choice(u"字体"_s), Qt::LeftButton);
        ASSERT_TRUE(Events::waitFor([this] { return visibleTexts().contains(u"4 款"_s); }));
    }

    QListView *list() const { return find<QListView>(u"字体"_s); }

    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; row < list()->model()->rowCount(); ++row)
            names += list()->model()->index(row, 0).data(FontListModel::familyRole).toString();
        return names;
    }

    QString current() const { return list()->currentIndex().data(FontListModel::familyRole).toString(); }
    bool isOpen() const { return list() != nullptr; }
};

TEST_F(FontPickerTest, is_searched_by_names_and_by_sound)
{
    const QString ofTheChosen = find<StylePreview>(u"字幕样式预览"_s)->remark();
    openPicker();
    EXPECT_TRUE(field(u"查找字体"_s)->hasFocus());
    const QAbstractItemModelTester tester(list()->model());
    const std::pair<QString, QString> rows[] = {
        {u"思源"_s, u"Source Han Sans CN"_s}, {u"siyuanheiti"_s, u"Source Han Sans CN"_s},
        {u"syht"_s, u"Source Han Sans CN"_s}, {u"source han"_s, u"Source Han Sans CN"_s},
        {u"fzlth"_s, u"FZLanTingHei"_s},      {u"fangzhenglan"_s, u"FZLanTingHei"_s},
        {u"HELVET"_s, u"Helvetica"_s},        {u"huawen"_s, u"STSong"_s},
    };
    for (const auto &[query, family] : rows) {
        type(u"查找字体"_s, query);
        EXPECT_EQ(listed(), QStringList(family)) << qPrintable(query);
        EXPECT_EQ(current(), family);
    }
    type(u"查找字体"_s, u"zzz"_s);
    EXPECT_TRUE(visibleTexts().contains(u"没有找到"_s));
    EXPECT_FALSE(find<QAbstractButton>(u"选用"_s)->isEnabled());
    // The picture shows what is chosen, not the last font that was passed on the way.
    EXPECT_EQ(find<StylePreview>(u"字幕样式预览"_s)->remark(), ofTheChosen);
}

TEST_F(FontPickerTest, arrows_look_at_fonts_and_Return_chooses_one_in_one_step)
{
    openPicker();
    const int before = steps();
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(current(), u"Helvetica"_s);
    EXPECT_EQ(model.options().font, u"PingFang SC"_s) << "it is only looked at";
    EXPECT_TRUE(find<StylePreview>(u"字幕样式预览"_s)->remark().contains(u"Helvetica"_s));
    press(Qt::Key_Return);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(model.options().font, u"Helvetica"_s);
    EXPECT_EQ(model.options().fontFace, std::nullopt);
    EXPECT_EQ(steps(), before + 1);
    EXPECT_EQ(QApplication::focusWidget(), choice(u"字体"_s));
}

TEST_F(FontPickerTest, escape_leaves_everything_as_it_was)
{
    const Options before = model.options();
    openPicker();
    type(u"查找字体"_s, u"heiti"_s);
    press(Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(model.options(), before);
    EXPECT_TRUE(model.window().settingsVisible());
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.window().settingsVisible());
}

TEST_F(FontPickerTest, typing_in_the_list_goes_on_searching)
{
    openPicker();
    list()->setFocus();
    press(Qt::Key_Down);
    QTest::keyClicks(list(), u"h"_s);
    QTest::keyClicks(QApplication::focusWidget(), u"elv"_s);
    EXPECT_EQ(field(u"查找字体"_s)->text(), u"helv"_s);
    EXPECT_EQ(current(), u"Helvetica"_s);
}

TEST_F(FontPickerTest, faces_of_the_family_can_be_chosen)
{
    openPicker();
    type(u"查找字体"_s, u"lanting"_s);
    EXPECT_EQ(choice(u"字形"_s)->currentText(), u"Light"_s) << "there is no plain one";
    choose(u"字形"_s, u"Heavy"_s);
    click(u"选用"_s);
    EXPECT_EQ(model.options().font, u"FZLanTingHei"_s);
    EXPECT_EQ(model.options().fontFace, u"Heavy"_s);
    openPicker();
    EXPECT_EQ(choice(u"字形"_s)->currentText(), u"Heavy"_s);
    type(u"查找字体"_s, u"思源"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(model.options().fontFace, std::nullopt) << "Regular is what an absent face means";
}

TEST_F(FontPickerTest, favourites_and_fonts_of_late_come_first_and_are_kept)
{
    openPicker();
    EXPECT_EQ(listed().first(), u"FZLanTingHei"_s);
    const QModelIndex song = list()->model()->index(2, 0);
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {},
                      FontRowDelegate::starIn(list()->visualRect(song)).center());
    EXPECT_TRUE(song.data(FontListModel::favoriteRole).toBool());
    EXPECT_EQ(model.preferences().favoriteFonts(), QStringList(u"STSong"_s));
    type(u"查找字体"_s, u"思源"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(model.preferences().recentFonts(), QStringList(u"Source Han Sans CN"_s));
    openPicker();
    EXPECT_EQ(listed(), QStringList({u"STSong"_s, u"Source Han Sans CN"_s, u"FZLanTingHei"_s, u"Helvetica"_s}));
    type(u"查找字体"_s, u"song"_s);
    click(u"收藏字体"_s);
    EXPECT_TRUE(model.preferences().favoriteFonts().isEmpty());
}

TEST(FontSamplesTest, are_drawn_between_events_the_newest_first)
{
    FontSamples samples;
    const FontSamples::Look look{.pixels = 18, .color = Qt::black};
    const QStringList families = QFontDatabase::families().first(3);
    for (const QString &family : families)
        EXPECT_EQ(samples.sample(family, family, look), nullptr);
    int drawn = 0;
    QObject::connect(&samples, &FontSamples::drawn, &samples, [&] {
        const bool isNewestKnown = samples.sample(families.last(), families.last(), look) != nullptr;
        EXPECT_TRUE(++drawn > 1 || isNewestKnown);
    });
    EXPECT_TRUE(Events::waitFor([&] { return drawn >= 3; }));
    for (const QString &family : families)
        EXPECT_NE(samples.sample(family, family, look), nullptr);
}

} // namespace
