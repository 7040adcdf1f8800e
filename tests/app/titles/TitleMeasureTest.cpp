#include "app/titles/TitleMeasure.h"

#include "app/titles/TitleFrame.h"
#include "app/titles/TitlePicture.h"
#include "tests/support/Generator.h"

#include <QFontDatabase>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString family = u"Noto Sans CJK SC"_s;

class TitleMeasureTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!QFontDatabase::hasFamily(family))
            GTEST_SKIP() << "needs the font " << family.toStdString() << " (package fonts-noto-cjk)";
    }

    static Options style()
    {
        Options options;
        options.font = family;
        return options;
    }
};

} // namespace

TEST_F(TitleMeasureTest, gives_a_Han_character_the_width_of_the_font_size)
{
    TitleMeasure measure(style());
    EXPECT_DOUBLE_EQ(measure.widthOf(u"大家好"), 3 * 48);
    EXPECT_DOUBLE_EQ(measure.widestOf(u"好\n大家好，\n好"), 4 * 48);
    EXPECT_DOUBLE_EQ(TitlePicture::widthOf(u"大家好"_s, style()), 3 * 48);
}

TEST_F(TitleMeasureTest, agrees_with_shaping_the_whole_line)
{
    TitleMeasure measure(style());
    const QFontMetricsF whole(measure.font().font);
    Generator generator(99);
    const QStringList words{u"AVATAR"_s, u" Final Cut "_s, u"，"_s, u"「3.5」"_s, u"、"_s, u"……"_s, u"カメラ"_s};
    for (int round = 0; round < 300; ++round) {
        const QString line =
            generator.speech(0, 9) + generator.pick(words) + generator.speech(0, 9) + generator.pick(words);
        EXPECT_NEAR(measure.widthOf(line), whole.horizontalAdvance(line) * 48 / TitleFont::em, 0.2)
            << line.toStdString();
    }
}

TEST_F(TitleMeasureTest, warns_just_beyond_the_title_safe_width)
{
    Options options = style();
    EXPECT_DOUBLE_EQ(TitleFrame::titleSafeWidth(options), 3456);
    TitleMeasure measure(options);
    EXPECT_FALSE(measure.isWiderThanSafe(QString(72, u'好'))) << "72 × 48 is 3456";
    EXPECT_TRUE(measure.isWiderThanSafe(QString(73, u'好')));
    EXPECT_FALSE(measure.isWiderThanSafe(QString(50, u'好') + u'\n' + QString(50, u'好')));
}

TEST_F(TitleMeasureTest, says_when_another_font_stands_in)
{
    Options options = style();
    EXPECT_FALSE(TitleFont::choose(options).isSubstitute);
    EXPECT_FALSE(TitleFont::choose(options).isFaceSubstitute);
    options.fontFace = u"Heavy"_s;
    EXPECT_TRUE(TitleFont::choose(options).isFaceSubstitute);
    EXPECT_GT(TitleFont::choose(options).font.weight(), QFont::Normal);
    options.font = u"No Such Font"_s;
    const TitleFont::Choice choice = TitleFont::choose(options);
    EXPECT_TRUE(choice.isSubstitute);
    EXPECT_TRUE(QFontDatabase::hasFamily(choice.family)) << choice.family.toStdString();
}
