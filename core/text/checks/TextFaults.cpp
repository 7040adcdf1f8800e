#include "core/text/checks/TextFaults.h"

#include "core/text/Characters.h"
#include "core/text/ColumnWidth.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace TextFaults {

namespace {

struct Pair
{
    QChar half;
    QChar full;
};

constexpr Pair marks[] = {{u',', u'，'}, {u'.', u'。'}, {u'!', u'！'}, {u'?', u'？'},
                          {u';', u'；'}, {u':', u'：'}, {u'(', u'（'}, {u')', u'）'}};

bool isChinese(QChar unit)
{
    return Characters::isCommonIdeograph(unit.unicode());
}

bool holdsChinese(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar unit) {
        return unit > QChar(0x2E80) && ColumnWidth::ofScalar(unit.unicode()) == 2 &&
               (isChinese(unit) || Characters::isLetter(unit.unicode())) && !(unit >= u'Ａ' && unit <= u'ｚ');
    });
}

/// Full-width letters and digits: ０-９, Ａ-Ｚ, ａ-ｚ.
bool isWideAlphanumeric(QChar unit)
{
    return (unit >= u'０' && unit <= u'９') || (unit >= u'Ａ' && unit <= u'Ｚ') || (unit >= u'ａ' && unit <= u'ｚ');
}

/// The next character that way that is no half-width mark, null at the end.
QChar besideMarks(QStringView text, qsizetype at, qsizetype step)
{
    const auto isMark = [](QChar unit) {
        return std::any_of(std::begin(marks), std::end(marks), [&](const Pair &pair) { return pair.half == unit; });
    };
    do
        at += step;
    while (at >= 0 && at < text.size() && isMark(text[at]));
    return at >= 0 && at < text.size() ? text[at] : QChar();
}

bool isEllipsis(QStringView text, qsizetype at)
{
    return text[at] == u'.' && ((at > 0 && text[at - 1] == u'.') || (at + 1 < text.size() && text[at + 1] == u'.'));
}

/// The character that belongs where `text[at]` stands; the same one where it is right.
QChar inItsWidth(QStringView text, qsizetype at, bool chinese)
{
    const QChar unit = text[at];
    if (isWideAlphanumeric(unit))
        return QChar(unit.unicode() - 0xFEE0);
    for (const Pair &pair : marks) {
        if (!chinese && unit == pair.full)
            return pair.half;
        if (!chinese || unit != pair.half)
            continue;
        // Only beside Chinese, and never within a Latin name, a number or an ellipsis.
        const QChar before = besideMarks(text, at, -1);
        const QChar after = besideMarks(text, at, 1);
        const bool isBetween = isChinese(before) && (after.isNull() || after.isSpace() || isChinese(after));
        const bool opens = unit == u'(' && isChinese(after);
        return !isEllipsis(text, at) && (isBetween || opens) ? pair.full : unit;
    }
    return unit;
}

bool isRemovable(char32_t scalar)
{
    if (scalar < 0x20)
        return scalar != U'\t' && scalar != U'\n';
    return (scalar >= 0x7F && scalar < 0xA0) || scalar == 0x200B || scalar == 0x2060 || scalar == 0xFEFF ||
           (scalar >= 0xFFF9 && scalar <= 0xFFFC) || QChar::isSurrogate(scalar) || QChar::isNonCharacter(scalar);
}

} // namespace

qsizetype blanks(QStringView text)
{
    if (text.isEmpty())
        return 0;
    qsizetype count = 0;
    for (const QStringView line : text.tokenize(u'\n'))
        count += line.isEmpty() || Characters::trimmed(line).size() != line.size();
    return count;
}

QString withoutBlanks(const QString &text)
{
    QStringList lines;
    for (const QStringView line : QStringView(text).tokenize(u'\n')) {
        const QStringView trimmed = Characters::trimmed(line);
        if (!trimmed.isEmpty())
            lines += trimmed.toString();
    }
    return lines.join(u'\n');
}

qsizetype mixedWidth(QStringView text)
{
    // Most cues hold none of the characters in question.
    const bool mayBe = std::any_of(text.begin(), text.end(), [](QChar unit) {
        return unit == u'(' || unit == u')' || unit == u',' || unit == u'.' || unit == u'!' || unit == u'?' ||
               unit == u';' || unit == u':' || unit == u'。' || (unit >= u'！' && unit <= u'ｚ');
    });
    if (!mayBe)
        return 0;
    const bool chinese = holdsChinese(text);
    qsizetype count = 0;
    for (qsizetype i = 0; i < text.size(); ++i)
        count += inItsWidth(text, i, chinese) != text[i];
    return count;
}

QString withOneWidth(const QString &text)
{
    const bool chinese = holdsChinese(text);
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = inItsWidth(text, i, chinese);
        result += unit;
        // A full-width mark brings its own room; in Latin text a blank does.
        const bool needsBlank = unit != text[i] && unit.isPunct() && unit < QChar(0x80) && unit != u'(' &&
                                i + 1 < text.size() && text[i + 1].isLetterOrNumber();
        if (needsBlank)
            result += u' ';
    }
    return result;
}

BadCharacters badCharacters(QStringView text)
{
    BadCharacters found;
    for (const char32_t scalar : Characters::Scalars(text)) {
        const bool isReplacement = scalar == QChar::ReplacementCharacter;
        if (!isReplacement && !isRemovable(scalar))
            continue;
        if (++found.count == 1)
            found.first = u"U+%1"_s.arg(uint(scalar), 4, 16, QChar(u'0')).toUpper();
        found.areRemovable = found.areRemovable && !isReplacement;
    }
    return found;
}

QString withoutBadCharacters(const QString &text)
{
    QString result;
    for (const char32_t scalar : Characters::Scalars(text)) {
        if (isRemovable(scalar))
            continue;
        if (QChar::requiresSurrogates(scalar)) {
            result += QChar(QChar::highSurrogate(scalar));
            result += QChar(QChar::lowSurrogate(scalar));
        } else {
            result += QChar(static_cast<char16_t>(scalar));
        }
    }
    return result;
}

} // namespace TextFaults
