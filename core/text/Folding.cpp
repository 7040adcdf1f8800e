#include "core/text/Folding.h"

#include "core/text/Characters.h"

namespace Folding {

namespace {

QString ofUsualWidth(QStringView character)
{
    QString result;
    for (const char32_t scalar : Characters::Scalars(character)) {
        const QChar::Decomposition tag = QChar::decompositionTag(scalar);
        if (tag == QChar::Wide || tag == QChar::Narrow)
            result += QChar::decomposition(scalar);
        else
            result += QStringView(QChar::fromUcs4(scalar));
    }
    return result;
}

bool isVariationSelector(char32_t scalar)
{
    return (scalar >= 0xFE00 && scalar <= 0xFE0F) || (scalar >= 0xE0100 && scalar <= 0xE01EF);
}

bool isAccent(char32_t scalar)
{
    return (QChar::category(scalar) == QChar::Mark_NonSpacing && QChar::combiningClass(scalar) != 0) ||
           isVariationSelector(scalar);
}

QString withoutAccents(const QString &decomposed)
{
    QString result;
    for (const char32_t scalar : Characters::Scalars(decomposed)) {
        if (!isAccent(scalar))
            result += QStringView(QChar::fromUcs4(scalar));
    }
    return result.isEmpty() ? decomposed : result;
}

} // namespace

QString folded(QStringView character)
{
    if (character.size() == 1 && Characters::isCommonIdeograph(character.front().unicode()))
        return character.toString();
    // Marks are put in order by exchanging neighbours. Accents go first, and a character of more marks than anything
    // that is written stays as it stands: a hundred thousand of them would take minutes.
    constexpr qsizetype longest = 64;
    QString base = withoutAccents(ofUsualWidth(character));
    if (base.size() > longest)
        return base;
    const QString decomposed = base.normalized(QString::NormalizationForm_D);
    return withoutAccents(decomposed).toCaseFolded().normalized(QString::NormalizationForm_C);
}

} // namespace Folding
