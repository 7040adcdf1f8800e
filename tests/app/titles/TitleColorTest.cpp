#include "app/titles/TitleColor.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(TitleColor, reads_four_parts_from_0_to_1)
{
    EXPECT_EQ(TitleColor::read(u"1 1 1 1"), QColor(255, 255, 255));
    EXPECT_EQ(TitleColor::read(u"1 0.5 0 0.65")->alpha(), 166);
    const QStringList refused{u""_s,           u"1 1 1"_s,      u"1 1 1 1 1"_s, u"1  1 1 1"_s,
                              u"1 1 1 1.01"_s, u"1 1 -0.1 1"_s, u"1 1 1 nan"_s, u"1,1,1,1"_s,
                              u" 1 1 1 1"_s,   u"#ffffff"_s,    u"1 1 1\t 1"_s, u"1 1 1 1\n"_s};
    for (const QString &text : refused)
        EXPECT_FALSE(TitleColor::read(text)) << text.toStdString();
}

TEST(TitleColor, writes_what_reads_back_as_the_same_colour)
{
    EXPECT_EQ(TitleColor::write(Qt::white), u"1 1 1 1");
    EXPECT_EQ(TitleColor::write(QColor::fromRgbF(0, 0, 0, 0.65F)), u"0 0 0 0.65");
    for (int level = 0; level < 256; ++level) {
        const QColor color(level, 255 - level, level / 2, level);
        EXPECT_EQ(TitleColor::read(TitleColor::write(color))->rgba(), color.rgba());
    }
}
