#include "app/titles/TitleFont.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

/// Families with simplified Chinese glyphs, the likeliest first: of the systems' own, and free ones.
const QStringList &chineseFamilies()
{
    static const QStringList families{
        u"PingFang SC"_s,       u"Source Han Sans CN"_s,  u"Source Han Sans SC"_s, u"Noto Sans CJK SC"_s,
        u"Noto Sans SC"_s,      u"Hiragino Sans GB"_s,    u"Microsoft YaHei"_s,    u"WenQuanYi Micro Hei"_s,
        u"WenQuanYi Zen Hei"_s, u"Droid Sans Fallback"_s,
    };
    return families;
}

/// The weight that a face's name speaks of.
QFont::Weight weightOf(const QString &face)
{
    struct Name
    {
        QStringView part;
        QFont::Weight weight;
    };
    // Longer names first: "ExtraBold" holds "Bold".
    constexpr Name names[] = {
        {u"extralight", QFont::ExtraLight},
        {u"ultralight", QFont::ExtraLight},
        {u"thin", QFont::Thin},
        {u"demilight", QFont::Light},
        {u"light", QFont::Light},
        {u"medium", QFont::Medium},
        {u"semibold", QFont::DemiBold},
        {u"demibold", QFont::DemiBold},
        {u"demi", QFont::DemiBold},
        {u"extrabold", QFont::ExtraBold},
        {u"ultrabold", QFont::ExtraBold},
        {u"heavy", QFont::Black},
        {u"black", QFont::Black},
        {u"bold", QFont::Bold},
        {u"粗", QFont::Bold},
        {u"细", QFont::Light},
    };
    const QString name = face.toLower().remove(u' ').remove(u'-');
    for (const Name &known : names) {
        if (name.contains(known.part))
            return known.weight;
    }
    return QFont::Normal;
}

QString installedFamily(const QString &wanted)
{
    if (QFontDatabase::hasFamily(wanted))
        return wanted;
    for (const QString &family : chineseFamilies()) {
        if (QFontDatabase::hasFamily(family))
            return family;
    }
    return QFontInfo(QFont()).family();
}

} // namespace

TitleFont::Choice TitleFont::choose(const Options &options)
{
    const QString face = options.fontFace.value_or(u"Regular"_s);
    Choice choice;
    choice.family = installedFamily(options.font);
    choice.isSubstitute = choice.family != options.font;
    const QStringList faces = QFontDatabase::styles(choice.family);
    if (faces.contains(face)) {
        choice.font = QFontDatabase::font(choice.family, face, 12);
    } else {
        choice.isFaceSubstitute = true;
        choice.font = QFont(choice.family);
        choice.font.setWeight(weightOf(face));
        choice.font.setItalic(face.contains(u"Italic"_s, Qt::CaseInsensitive) ||
                              face.contains(u"Oblique"_s, Qt::CaseInsensitive));
    }
    QStringList families = chineseFamilies();
    families.removeAll(choice.family);
    families.prepend(choice.family);
    choice.font.setFamilies(families);
    choice.font.setPixelSize(em);
    choice.font.setHintingPreference(QFont::PreferNoHinting);
    return choice;
}
