#include "core/text/Pinyin.h"

#include "core/text/Characters.h"

#include <QStringList>

#include <unicode/translit.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Heteronym
{
    QStringView characters;
    QStringView readings;
};

/// Characters of several readings that stand in names of fonts, in both scripts. The transliterator knows one each.
constexpr Heteronym heteronyms[] = {
    {u"长長", u"chang/zhang"}, {u"重", u"zhong/chong"}, {u"行", u"xing/hang"},     {u"乐樂", u"le/yue"},
    {u"单單", u"dan/shan"},    {u"曾", u"zeng/ceng"},   {u"朴", u"pu/piao/po"},    {u"卜", u"bu/bo"},
    {u"沈", u"shen/chen"},     {u"柏", u"bai/bo"},      {u"薄", u"bo/bao"},        {u"调調", u"diao/tiao"},
    {u"藏", u"cang/zang"},     {u"盛", u"sheng/cheng"}, {u"传傳", u"chuan/zhuan"}, {u"弹彈", u"tan/dan"},
    {u"和", u"he/huo"},        {u"角", u"jiao/jue"},    {u"觉覺", u"jue/jiao"},    {u"解", u"jie/xie"},
    {u"区區", u"qu/ou"},       {u"翟", u"zhai/di"},     {u"查", u"cha/zha"},       {u"盖蓋", u"gai/ge"},
    {u"种種", u"zhong/chong"}, {u"车車", u"che/ju"},    {u"厦廈", u"sha/xia"},     {u"大", u"da/dai"},
    {u"都", u"du/dou"},        {u"得", u"de/dei"},      {u"地", u"di/de"},         {u"的", u"de/di"},
    {u"着", u"zhe/zhuo/zhao"}, {u"了", u"le/liao"},     {u"还還", u"hai/huan"},    {u"会會", u"hui/kuai"},
    {u"参參", u"can/shen"},    {u"差", u"cha/chai"},    {u"朝", u"chao/zhao"},     {u"度", u"du/duo"},
    {u"恶惡", u"e/wu"},        {u"佛", u"fo/fu"},       {u"给給", u"gei/ji"},      {u"合", u"he/ge"},
    {u"见見", u"jian/xian"},   {u"降", u"jiang/xiang"}, {u"率", u"lv/lu/shuai"},   {u"绿綠", u"lv/lu"},
    {u"露", u"lu/lou"},        {u"落", u"luo/la/lao"},  {u"没沒", u"mei/mo"},      {u"秘", u"mi/bi"},
    {u"模", u"mo/mu"},         {u"泊", u"bo/po"},       {u"奇", u"qi/ji"},         {u"强強", u"qiang/jiang"},
    {u"塞", u"sai/se"},        {u"色", u"se/shai"},     {u"石", u"shi/dan"},       {u"什", u"shen/shi"},
    {u"识識", u"shi/zhi"},     {u"似", u"si/shi"},      {u"宿", u"su/xiu"},        {u"拓", u"tuo/ta"},
    {u"尾", u"wei/yi"},        {u"系係", u"xi/ji"},     {u"血", u"xue/xie"},       {u"叶葉", u"ye/xie"},
    {u"员員", u"yuan/yun"},    {u"择擇", u"ze/zhai"},   {u"扎", u"zha/za"},        {u"壳殼", u"ke/qiao"},
    {u"楷", u"kai/jie"},       {u"综綜", u"zong/zeng"}, {u"繁", u"fan/po"},        {u"芫", u"yan/yuan"},
    {u"禅禪", u"chan/shan"},   {u"任", u"ren"},         {u"仿", u"fang"},          {u"尉", u"wei/yu"},
    {u"仇", u"chou/qiu"},      {u"畜", u"chu/xu"},      {u"臭", u"chou/xiu"},      {u"伽", u"jia/qie/ga"},
    {u"咖", u"ka/ga"},         {u"便", u"bian/pian"},   {u"娜", u"na/nuo"},        {u"陆陸", u"lu/liu"},
    {u"六", u"liu/lu"},        {u"说說", u"shuo/shui"}, {u"万萬", u"wan/mo"},      {u"隽雋", u"juan/jun"},
    {u"钥鑰", u"yao/yue"},     {u"雀", u"que/qiao"},    {u"嚼", u"jiao/jue"},      {u"熟", u"shu/shou"},
    {u"谷", u"gu/yu"},         {u"俞", u"yu/shu"},      {u"祭", u"ji/zhai"},       {u"幢", u"zhuang/chuang"},
};

/// Without tone marks; ü as v and as u.
QString typed(const QString &sound)
{
    constexpr char16_t diaeresis = 0x0308;
    QString withV;
    bool hasDiaeresis = false;
    for (const QChar character : sound.toLower().normalized(QString::NormalizationForm_D)) {
        if (character.unicode() == diaeresis && withV.endsWith(u'u')) {
            withV.back() = u'v';
            hasDiaeresis = true;
        } else if (character >= u'a' && character <= u'z') {
            withV += character;
        }
    }
    return hasDiaeresis ? withV + u'/' + QString(withV).replace(u'v', u'u') : withV;
}

} // namespace

namespace Pinyin {

class Reader::Transliteration
{
public:
    Transliteration()
    {
        UErrorCode status = U_ZERO_ERROR;
        m_hanToLatin.reset(icu::Transliterator::createInstance("Han-Latin", UTRANS_FORWARD, status));
        if (U_FAILURE(status) != 0)
            m_hanToLatin.reset();
    }

    QString apply(char32_t character) const
    {
        if (!m_hanToLatin)
            return {};
        icu::UnicodeString text(static_cast<UChar32>(character));
        m_hanToLatin->transliterate(text);
        return QString::fromUtf16(text.getBuffer(), text.length());
    }

private:
    std::unique_ptr<icu::Transliterator> m_hanToLatin;
};

Reader::Reader()
    : m_transliteration(std::make_unique<Transliteration>())
{
    for (const Heteronym &heteronym : heteronyms) {
        for (const QChar character : heteronym.characters)
            m_known.insert(character.unicode(), heteronym.readings.toString());
    }
}

Reader::~Reader() = default;

QString Reader::readingOf(char32_t character)
{
    const auto known = m_known.constFind(character);
    if (known != m_known.cend())
        return *known;
    return *m_known.insert(character, typed(m_transliteration->apply(character)));
}

QString Reader::read(QStringView name)
{
    QStringList sounds;
    bool hasHan = false;
    const QString plain = name.toString().normalized(QString::NormalizationForm_KC).toLower();
    for (const char32_t scalar : Characters::Scalars(plain)) {
        if (Characters::script(scalar) == QChar::Script_Han) {
            const QString reading = readingOf(scalar);
            hasHan = hasHan || !reading.isEmpty();
            if (!reading.isEmpty())
                sounds.append(reading);
        } else if ((scalar >= U'a' && scalar <= U'z') || (scalar >= U'0' && scalar <= U'9')) {
            sounds.append(QString(QChar(scalar)));
        }
    }
    return hasHan ? sounds.join(u' ') : QString();
}

} // namespace Pinyin
