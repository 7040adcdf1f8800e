#include "app/Lintora/controls/TextDifference.h"

#include "core/text/Characters.h"
#include "core/text/CommonSubsequence.h"

#include <QHash>

#include <vector>

namespace TextDifference {

namespace {

struct Text
{
    std::vector<CommonSubsequence::Key> keys; ///< One for each character.
    std::vector<Stretch> characters;
};

Text read(const QString &text, QHash<QStringView, CommonSubsequence::Key> &keyOfCharacter)
{
    Text result;
    for (Characters::Cursor at(text); at.next();) {
        const QStringView character = at.character();
        const auto fresh = CommonSubsequence::Key(keyOfCharacter.size());
        const auto known = keyOfCharacter.constFind(character);
        result.keys.push_back(known == keyOfCharacter.cend() ? fresh : *known);
        if (known == keyOfCharacter.cend())
            keyOfCharacter.insert(character, fresh);
        result.characters.push_back({.start = at.begin(), .length = character.size()});
    }
    return result;
}

void mark(QList<Stretch> &stretches, const Stretch &character)
{
    if (!stretches.isEmpty() && stretches.last().start + stretches.last().length == character.start)
        stretches.last().length += character.length;
    else
        stretches.append(character);
}

} // namespace

Difference between(const QString &before, const QString &after)
{
    QHash<QStringView, CommonSubsequence::Key> keyOfCharacter;
    const Text old = read(before, keyOfCharacter);
    const Text fresh = read(after, keyOfCharacter);

    Difference difference;
    size_t nextOld = 0;
    size_t nextFresh = 0;
    const auto markUpTo = [&](size_t endOfOld, size_t endOfFresh) {
        for (; nextOld < endOfOld; ++nextOld)
            mark(difference.removed, old.characters[nextOld]);
        for (; nextFresh < endOfFresh; ++nextFresh)
            mark(difference.added, fresh.characters[nextFresh]);
    };
    CommonSubsequence common(CommonSubsequence::Key(keyOfCharacter.size()));
    for (const auto &[inOld, inFresh] : common.find(old.keys, fresh.keys)) {
        markUpTo(size_t(inOld), size_t(inFresh));
        nextOld = size_t(inOld) + 1;
        nextFresh = size_t(inFresh) + 1;
    }
    markUpTo(old.keys.size(), fresh.keys.size());
    return difference;
}

} // namespace TextDifference
