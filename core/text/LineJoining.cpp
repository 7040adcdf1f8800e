#include "core/text/LineJoining.h"

#include "core/text/Characters.h"
#include "core/text/LanguageSeparation.h"

#include <QList>
#include <QStringList>

#include <algorithm>

namespace LineJoining {

namespace {

using Group = LanguageSeparation::Group;

enum class Writing
{
    spaced,   ///< Words stand apart.
    unspaced, ///< Chinese and Japanese.
    closed,   ///< Full-width marks, which bring their own room.
    shared    ///< Marks of both: …—“”·
};

Writing writingOf(char32_t scalar)
{
    switch (Characters::script(scalar)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Bopomofo:
        return Writing::unspaced;
    default:
        break;
    }
    if ((scalar >= 0x3001 && scalar <= 0x303F) || (scalar >= 0xFF01 && scalar <= 0xFF0F) ||
        (scalar >= 0xFF1A && scalar <= 0xFF20))
        return Writing::closed;
    if (scalar == U'ー')
        return Writing::unspaced;
    return scalar == U'·' || (scalar >= 0x2010 && scalar <= 0x2027) ? Writing::shared : Writing::spaced;
}

char32_t lastScalar(QStringView text)
{
    char32_t last = 0;
    for (const char32_t scalar : Characters::Scalars(text.last(std::min<qsizetype>(2, text.size()))))
        last = scalar;
    return last;
}

bool needsBlank(QStringView before, QStringView after)
{
    const Writing left = writingOf(lastScalar(before));
    const Writing right = writingOf(*Characters::Scalars(after).begin());
    if (left == Writing::closed || right == Writing::closed)
        return false;
    const auto goesOn = [](Writing writing) { return writing == Writing::unspaced || writing == Writing::shared; };
    const bool isUnspaced = left == Writing::unspaced || right == Writing::unspaced;
    return !isUnspaced || !goesOn(left) || !goesOn(right);
}

QString line(const QString &before, const QString &after)
{
    const bool areTwo = !before.isEmpty() && !after.isEmpty();
    return areTwo && needsBlank(before, after) ? before + u' ' + after : before + after;
}

QList<Group> groupsOf(const QStringList &lines)
{
    QList<Group> groups;
    for (const QString &each : lines)
        groups += LanguageSeparation::classify(each);
    return groups;
}

bool hasLetter(const QString &text)
{
    const Characters::Scalars scalars(text);
    return std::any_of(scalars.begin(), scalars.end(), Characters::isLetter);
}

bool isDistinct(const QList<Group> &groups)
{
    return std::all_of(groups.begin(), groups.end(), [&](Group group) { return groups.count(group) == 1; });
}

} // namespace

QString joined(const QString &first, const QString &second)
{
    QStringList lines = first.split(u'\n');
    QStringList more = second.split(u'\n');
    const QList<Group> groups = groupsOf(lines);
    const QList<Group> moreGroups = groupsOf(more);
    const QStringList all = lines + more;
    const bool isBilingual = all.size() > 2 && isDistinct(groups) && isDistinct(moreGroups) &&
                             std::all_of(all.begin(), all.end(), hasLetter);
    if (!isBilingual) {
        lines.last() = line(lines.last(), more.takeFirst());
        return (lines + more).join(u'\n');
    }
    for (qsizetype i = 0; i < more.size(); ++i) {
        const qsizetype place = groups.indexOf(moreGroups.at(i));
        if (place < 0)
            lines += more.at(i);
        else
            lines[place] = line(lines.at(place), more.at(i));
    }
    return lines.join(u'\n');
}

} // namespace LineJoining
