#include "tests/app/fonts/SyntheticFonts.h"

#include "core/text/Pinyin.h"
#include "tests/support/Generator.h"

using namespace Qt::StringLiterals;

namespace {

struct Word
{
    QString chinese;
    QString english;
};

} // namespace

QList<FontFamily> SyntheticFonts::families(qsizetype count)
{
    static const QList<Word> foundries{{u"方正"_s, u"Fangzheng"_s},  {u"汉仪"_s, u"Hanyi"_s},
                                       {u"华文"_s, u"Huawen"_s},     {u"造字工房"_s, u"Maker"_s},
                                       {u"站酷"_s, u"Zcool"_s},      {u"文鼎"_s, u"Arphic"_s},
                                       {u"长城"_s, u"Great Wall"_s}, {u"蒙纳"_s, u"Monotype"_s}};
    static const QList<Word> designs{{u"兰亭"_s, u"Lanting"_s}, {u"雅宋"_s, u"Yasong"_s},   {u"悦黑"_s, u"Yuehei"_s},
                                     {u"行楷"_s, u"Xingkai"_s}, {u"快乐体"_s, u"Kuaile"_s}, {u"仿宋"_s, u"Fangsong"_s},
                                     {u"琥珀"_s, u"Hupo"_s},    {u"综艺"_s, u"Zongyi"_s}};
    Generator generator(2'000);
    Pinyin::Reader reader;
    QList<FontFamily> list;
    for (qsizetype number = 1; number <= count; ++number) {
        const Word foundry = generator.pick(foundries);
        const Word design = generator.pick(designs);
        const QString english = u"%1 %2 %3"_s.arg(foundry.english, design.english).arg(number);
        const QString chinese =
            number % 3 == 0 ? QString() : u"%1%2 %3"_s.arg(foundry.chinese, design.chinese).arg(number);
        list.append({.family = english,
                     .chineseName = chinese,
                     .englishName = english,
                     .faces = {u"Regular"_s, u"Bold"_s},
                     .pronunciation = reader.read(chinese)});
    }
    return list;
}
