#include "core/review/ReviewRows.h"

#include "core/text/Characters.h"
#include "core/text/CommonSubsequence.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace ReviewRows {

namespace {

QStringList found(const QRegularExpression &pattern, const QString &text)
{
    QStringList result;
    for (const QRegularExpressionMatch &match : pattern.globalMatch(text))
        result.append(match.captured());
    return result;
}

/// Numbers in the order in which they are said. 一 alone is mostly no number (一样, 一下).
QStringList numbers(const QString &text)
{
    static const QRegularExpression pattern(
        u"[0-9]+(?:[.,:][0-9]+)*|[〇零一二两三四五六七八九十百千万亿]{2,}|[二两三四五六七八九十]"_s);
    // Full-width digits are the same numbers.
    return found(pattern, text.normalized(QString::NormalizationForm_KC));
}

bool holdsHan(const QString &text)
{
    const Characters::Scalars scalars(text);
    return std::any_of(scalars.begin(), scalars.end(),
                       [](char32_t scalar) { return Characters::script(scalar) == QChar::Script_Han; });
}

/// Words in Latin letters that are names: among Chinese every one; elsewhere those with a capital where none is due.
QStringList names(const QString &text)
{
    static const QRegularExpression word(u"\\p{Latin}[\\p{Latin}\\p{M}0-9'’-]*"_s);
    const bool isChinese = holdsHan(text);
    QStringList result;
    for (const QRegularExpressionMatch &match : word.globalMatch(text)) {
        const QString name = match.captured();
        const auto isCapital = [](QChar letter) { return letter.isUpper(); };
        const QStringView before = Characters::trimmed(QStringView(text).first(match.capturedStart()));
        const bool beginsSentence = before.isEmpty() || QStringView(u".!?:\"“-—").contains(before.last());
        const QStringView judged = beginsSentence ? QStringView(name).sliced(1) : QStringView(name);
        const bool isPronoun = name == u"I" || name.startsWith(u"I'") || name.startsWith(u"I’");
        if (isChinese || (!isPronoun && std::ranges::any_of(judged, isCapital)))
            result.append(name);
    }
    result.sort();
    return result;
}

qsizetype negations(const QString &text)
{
    // Words that hold such a character and deny nothing.
    static const QRegularExpression harmless(
        u"特别|分别|区别|级别|性别|识别|类别|别人|别的|非常|不过|不错|不断|不仅|无论|无数|未来|特別|分別|區別|別人|別的|無論|無數|未來"_s);
    static const QRegularExpression pattern(
        u"[不没沒无無非别別未勿莫]|\\b(?:not|no|never|none|nobody|nothing|neither|nor|without|cannot)\\b|n['’]t\\b"_s,
        QRegularExpression::CaseInsensitiveOption);
    return found(pattern, QString(text).remove(harmless)).size();
}

/// The characters of a text that carry meaning, as keys of a table shared by both texts.
std::vector<CommonSubsequence::Key> keys(const QString &text, QHash<char32_t, CommonSubsequence::Key> &keyOf)
{
    std::vector<CommonSubsequence::Key> result;
    for (const char32_t scalar : Characters::Scalars(text)) {
        if (!Characters::isLetterOrDigit(scalar))
            continue;
        const char32_t folded = QChar::toCaseFolded(scalar);
        if (!keyOf.contains(folded))
            keyOf.insert(folded, CommonSubsequence::Key(keyOf.size()));
        result.push_back(keyOf.value(folded));
    }
    return result;
}

bool changesMost(const QString &before, const QString &after)
{
    QHash<char32_t, CommonSubsequence::Key> keyOf;
    const auto old = keys(before, keyOf);
    const auto fresh = keys(after, keyOf);
    const size_t kept = CommonSubsequence(CommonSubsequence::Key(keyOf.size())).find(old, fresh).size();
    return 2 * kept < std::max(old.size(), fresh.size());
}

} // namespace

ReviewRow::Risks risks(const QString &before, const QString &after)
{
    ReviewRow::Risks result;
    if (before == after)
        return result;
    result.setFlag(ReviewRow::Risk::numbers, numbers(before) != numbers(after));
    result.setFlag(ReviewRow::Risk::names, names(before) != names(after));
    result.setFlag(ReviewRow::Risk::negations, negations(before) != negations(after));
    result.setFlag(ReviewRow::Risk::mostOfCue, changesMost(before, after));
    return result;
}

QString reason(ReviewRow::Risks risks)
{
    QStringList reasons;
    if (risks.testFlag(ReviewRow::Risk::numbers))
        reasons.append(u"数字有改动"_s);
    if (risks.testFlag(ReviewRow::Risk::names))
        reasons.append(u"西文名称有改动"_s);
    if (risks.testFlag(ReviewRow::Risk::negations))
        reasons.append(u"否定词有增减"_s);
    if (risks.testFlag(ReviewRow::Risk::mostOfCue))
        reasons.append(u"改动超过半条"_s);
    return reasons.join(u"；");
}

QList<ReviewRow> make(const QList<Subtitle> &before, const QList<Subtitle> &after)
{
    Q_ASSERT(before.size() == after.size());
    QList<ReviewRow> rows;
    rows.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        Q_ASSERT(before[i].start == after[i].start && before[i].end == after[i].end);
        ReviewRow row{.before = before[i], .after = after[i].text, .risks = risks(before[i].text, after[i].text)};
        row.selected = row.changed() && !row.risks;
        rows.append(std::move(row));
    }
    return rows;
}

QList<Subtitle> apply(const QList<ReviewRow> &rows)
{
    QList<Subtitle> items;
    items.reserve(rows.size());
    for (const ReviewRow &row : rows) {
        items.append(row.before);
        if (row.selected)
            items.last().text = row.after;
    }
    return items;
}

} // namespace ReviewRows
