#include "app/fonts/FontSearch.h"

#include "core/text/Pinyin.h"
#include "tests/app/fonts/SyntheticFonts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

FontFamily family(const QString &chinese, const QString &english)
{
    static Pinyin::Reader reader;
    return {.family = english.isEmpty() ? chinese : english,
            .chineseName = chinese,
            .englishName = english,
            .faces = {},
            .pronunciation = reader.read(chinese)};
}

const QList<FontFamily> &shelf()
{
    static const QList<FontFamily> families{
        family(u"思源黑体"_s, u"Source Han Sans CN"_s),
        family(u"方正兰亭黑_GBK"_s, u"FZLanTingHei-R-GBK"_s),
        family(u"华文行楷"_s, u"STXingkai"_s),
        family(u"苹方-简"_s, u"PingFang SC"_s),
        family({}, u"Helvetica Neue"_s),
        family(u"黑体-简"_s, u"Heiti SC"_s),
        family(u"站酷快乐体"_s, u"HappyZcool"_s),
    };
    return families;
}

/// One of the ways to type a name in full.
QString lastReadings(const QString &pronunciation)
{
    QString letters;
    for (const QString &character : pronunciation.split(u' '))
        letters += character.section(u'/', -1);
    return letters;
}

/// The display names found, a stroke between them.
QString found(const QString &query, const QStringList &preferred = {})
{
    QStringList names;
    for (const qsizetype place : FontSearch(shelf()).find(query, preferred))
        names.append(shelf()[place].displayName());
    return names.join(u'|');
}

} // namespace

TEST(FontSearch, finds_a_family_by_any_of_its_names)
{
    struct Case
    {
        QString query;
        QString names;
    };
    const QList<Case> cases{
        {u"思源"_s, u"思源黑体"_s},
        {u"兰亭"_s, u"方正兰亭黑_GBK"_s},
        {u"source han"_s, u"思源黑体"_s},
        {u"SOURCEHAN"_s, u"思源黑体"_s},
        {u"ｓｏｕｒｃｅ"_s, u"思源黑体"_s},
        {u"siyuanheiti"_s, u"思源黑体"_s},
        {u"si yuan hei ti"_s, u"思源黑体"_s},
        {u"syht"_s, u"思源黑体"_s},
        {u"siyht"_s, u"思源黑体"_s},
        {u"siyuanh"_s, u"思源黑体"_s},
        {u"fzlthgbk"_s, u"方正兰亭黑_GBK"_s},
        {u"lantinghei"_s, u"方正兰亭黑_GBK"_s},
        {u"huawenxingkai"_s, u"华文行楷"_s},
        {u"hwhk"_s, u"华文行楷"_s},
        {u"pingfang"_s, u"苹方-简"_s},
        {u"zkkyt"_s, u"站酷快乐体"_s},
        {u"zhkklt"_s, u"站酷快乐体"_s},
        {u"neue"_s, u"Helvetica Neue"_s},
        {u"xyz"_s, QString()},
        {u"-"_s, QString()},
        {QString(200, u's'), QString()},
    };
    for (const Case &row : cases)
        EXPECT_EQ(found(row.query), row.names) << row.query.toStdString();
}

TEST(FontSearch, puts_beginnings_before_words_before_the_rest)
{
    EXPECT_EQ(found(u"hei"_s), u"黑体-简|方正兰亭黑_GBK|思源黑体");
    EXPECT_EQ(found(u"黑"_s), u"黑体-简|思源黑体|方正兰亭黑_GBK");
}

TEST(FontSearch, puts_favourites_first_in_their_order)
{
    EXPECT_EQ(found(u"hei"_s, {u"Source Han Sans CN"_s, u"FZLanTingHei-R-GBK"_s}), u"思源黑体|方正兰亭黑_GBK|黑体-简");
    EXPECT_TRUE(found({}, {u"Helvetica Neue"_s, u"not there"_s, u"STXingkai"_s})
                    .startsWith(u"Helvetica Neue|华文行楷|思源黑体|方正"_s));
    EXPECT_EQ(found(u" "_s).count(u'|'), shelf().size() - 1) << "without a query all are found";
}

TEST(FontSearch, finds_each_of_two_thousand_families)
{
    const QList<FontFamily> families = SyntheticFonts::families(2'000);
    const FontSearch search(families);
    for (qsizetype i = 0; i < families.size(); i += 37) {
        EXPECT_EQ(search.find(families[i].englishName).value(0), i) << families[i].englishName.toStdString();
        EXPECT_TRUE(search.find(lastReadings(families[i].pronunciation)).contains(i))
            << families[i].pronunciation.toStdString();
    }
}

TEST(Pinyin, knows_every_reading_of_a_character_in_names)
{
    Pinyin::Reader reader;
    struct Case
    {
        QString name;
        QString sound;
    };
    const QList<Case> cases{
        {u"思源黑体"_s, u"si yuan hei ti"_s},
        {u"長城"_s, u"chang/zhang cheng"_s},
        {u"重庆"_s, u"zhong/chong qing"_s},
        {u"行书"_s, u"xing/hang shu"_s},
        {u"乐"_s, u"le/yue"_s},
        {u"单"_s, u"dan/shan"_s},
        {u"曾"_s, u"zeng/ceng"_s},
        {u"朴"_s, u"pu/piao/po"_s},
        {u"卜少好中"_s, u"bu/bo shao hao zhong"_s},
        {u"沈柏薄调藏"_s, u"shen/chen bai/bo bo/bao diao/tiao cang/zang"_s},
        {u"仿宋"_s, u"fang song"_s},
        {u"华"_s, u"hua"_s},
        {u"女旅"_s, u"nv/nu lv/lu"_s},
        {u"兰亭黑 GBK-２"_s, u"lan ting hei g b k 2"_s},
        {u"Helvetica"_s, QString()},
        {QString(), QString()},
    };
    for (const Case &row : cases)
        EXPECT_EQ(reader.read(row.name), row.sound) << row.name.toStdString();
}
