#include "ai/speech/SpokenWords.h"

#include "core/text/Characters.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace SpokenWords {

namespace {

/// Whether a script sets blanks between its words.
bool hasBlanks(QChar character)
{
    const QChar::Script script = character.script();
    return character.isLetterOrNumber() && script != QChar::Script_Han && script != QChar::Script_Hiragana &&
           script != QChar::Script_Katakana && script != QChar::Script_Thai;
}

bool endsPhrase(QStringView text)
{
    return QStringView(u",.!?:;，。！？：；、").contains(text.back());
}

/// Whether a blank stands between two words where nobody says so.
bool needsBlank(QChar before, QChar after)
{
    if (!hasBlanks(after))
        return hasBlanks(before) && QStringView(u"([{\"“‘&+#$€£").contains(after);
    return hasBlanks(before) || QStringView(u",.!?:;)]}\"%&+").contains(before);
}

/// Whole words of pieces, and `isTold` where the service marks the beginnings of words by blanks.
QList<SpokenWord> wholeWords(const QList<SpokenWord> &pieces, bool isTold)
{
    QList<SpokenWord> words;
    for (const SpokenWord &piece : pieces) {
        const QString text = piece.text.trimmed();
        if (text.isEmpty())
            continue;
        const bool goesOn = isTold && !words.isEmpty() && !piece.text.front().isSpace() && hasBlanks(text.front()) &&
                            hasBlanks(words.last().text.back());
        if (!goesOn) {
            words.append({.startMS = piece.startMS, .endMS = piece.endMS, .text = text});
        } else {
            words.last().text += text;
            words.last().endMS = std::max(words.last().endMS, piece.endMS);
        }
    }
    return words;
}

bool fits(const Subtitle &cue, const SpokenWord &word)
{
    constexpr qsizetype longest = 42; // characters
    constexpr qint64 longestMS = 4'000;
    constexpr qint64 longestPauseMS = 600;
    return Characters::count(cue.text) + Characters::count(word.text) <= longest &&
           word.endMS - cue.start <= longestMS && word.startMS - cue.end <= longestPauseMS;
}

} // namespace

QList<Subtitle> cues(const QList<SpokenWord> &words)
{
    const bool isTold = std::ranges::any_of(
        words, [](const SpokenWord &word) { return !word.text.isEmpty() && word.text.front().isSpace(); });
    QList<Subtitle> result;
    bool isClosed = true;
    const QList<SpokenWord> whole = wholeWords(words, isTold);
    for (const SpokenWord &word : whole) {
        if (isClosed || !fits(result.last(), word)) {
            result.append({.id = result.size() + 1, .start = word.startMS, .end = word.endMS, .text = word.text});
        } else {
            Subtitle &cue = result.last();
            if (needsBlank(cue.text.back(), word.text.front()))
                cue.text += u' ';
            cue.text += word.text;
            cue.end = std::max(cue.end, word.endMS);
        }
        isClosed = endsPhrase(result.last().text);
    }
    return result;
}

} // namespace SpokenWords
