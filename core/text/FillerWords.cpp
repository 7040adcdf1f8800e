#include "core/text/FillerWords.h"

#include "core/text/Characters.h"
#include "core/text/Clauses.h"

#include <QVarLengthArray>

#include <algorithm>

using namespace Qt::StringLiterals;

// The rules, as patterns. W is (?:word|word|…), the longest words first; \s and \p{P} are Unicode's.
//
//   whole cue       ^(?:哎[呦哟]我(?:去)?)[\p{P}\s]*$   and   ^哈+[\p{P}\s]*$
//   clause          (^|[，,。！？!?；;：:])\s*W+[\t ]*[，,。！？!?；;：:]    by $1, again and again until nothing
//   changes anywhere        W+    by nothing
//
// A pattern of a hundred words is tried anew at every place and may take exponential time on words that contain each
// other (哈, 哈哈). The scanners below give the same result in linear time; the tests hold them against the patterns.

namespace {

quint8 lowByte(QChar unit)
{
    return static_cast<quint8>(unit.unicode() & 0xFF);
}

bool isBlank(QChar unit)
{
    return unit == u' ' || unit == u'\t';
}

/// Whether nothing but punctuation and white space follows.
bool isFaded(QStringView tail)
{
    const Characters::Scalars scalars(tail);
    return std::none_of(scalars.begin(), scalars.end(),
                        [](char32_t c) { return !Characters::isPunctuation(c) && !Characters::isSpace(c); });
}

} // namespace

FillerWords::FillerWords(const QStringList &words)
    : m_holdsEmptyWord(words.contains(QString()))
    , m_knowsLaughter(words.contains(u"哈哈"_s))
    , m_knowsExclamation(words.contains(u"哎呦"_s) || words.contains(u"哎哟"_s))
{
    struct Ranked
    {
        QString text;
        qsizetype characters;
    };
    std::vector<Ranked> ranked;
    for (const QString &word : words) {
        if (!word.isEmpty())
            ranked.push_back({word, Characters::count(word)});
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const Ranked &a, const Ranked &b) { return a.characters > b.characters; });
    std::stable_sort(ranked.begin(), ranked.end(), [](const Ranked &a, const Ranked &b) {
        return lowByte(a.text.front()) < lowByte(b.text.front());
    });
    m_firstWord.fill(0);
    for (Ranked &word : ranked) {
        ++m_firstWord[lowByte(word.text.front()) + 1U];
        m_words.push_back(std::move(word.text));
    }
    for (size_t i = 1; i < m_firstWord.size(); ++i)
        m_firstWord[i] += m_firstWord[i - 1];
}

QString FillerWords::removedFrom(QStringView text) const
{
    if (m_words.empty() && !m_holdsEmptyWord)
        return text.toString();
    if (!mayHoldWords(text))
        return text.trimmed().toString();
    if (isWholeExclamation(text.trimmed()))
        return {};
    QString rest;
    while (auto shorter = withoutClauses(text)) {
        rest = *std::move(shorter);
        text = rest;
    }
    return withoutWords(text).trimmed();
}

bool FillerWords::mayHoldWords(QStringView text) const
{
    // The words of the whole-cue rules are in no list but together with a word that begins with the same character.
    const auto beginsWord = [this](QChar unit) {
        const size_t byte = lowByte(unit);
        return m_firstWord[byte] != m_firstWord[byte + 1];
    };
    return m_holdsEmptyWord || std::any_of(text.begin(), text.end(), beginsWord);
}

bool FillerWords::isWholeExclamation(QStringView text) const
{
    if (m_knowsExclamation && (text.startsWith(u"哎呦我") || text.startsWith(u"哎哟我"))) {
        const QStringView tail = text.sliced(3);
        if (isFaded(tail.startsWith(u'去') ? tail.sliced(1) : tail))
            return true;
    }
    if (m_knowsLaughter && text.startsWith(u'哈')) {
        const auto *const laughed = std::find_if(text.begin(), text.end(), [](QChar c) { return c != u'哈'; });
        return isFaded(text.sliced(laughed - text.begin()));
    }
    return false;
}

/// The length of the first word at `at` that `accept` takes, 0 when there is none.
template <class Accept>
qsizetype FillerWords::firstWordAt(QStringView text, qsizetype at, Accept &&accept) const
{
    const size_t byte = lowByte(text[at]);
    for (size_t i = m_firstWord[byte]; i != m_firstWord[byte + 1]; ++i) {
        const QString &word = m_words[i];
        if (text.sliced(at).startsWith(word) && accept(word.size()))
            return word.size();
    }
    return 0;
}

/// One round of the clause rule over the whole of `text`. Absent when nothing was found.
std::optional<QString> FillerWords::withoutClauses(QStringView text) const
{
    const qsizetype size = text.size();
    if (std::none_of(text.begin(), text.end(), Clauses::isMark))
        return std::nullopt;

    // Where a match that goes on at a place would end, behind its clause mark; -1 for nowhere. `afterBlanks` has no
    // words left to take, `afterWords` at least one, `afterAny` as many as there are. From back to front each place is
    // looked at once, where a backtracking search would come again and again.
    QVarLengthArray<qsizetype, 256> afterWords(size + 1);
    QVarLengthArray<qsizetype, 256> afterAny(size + 1);
    qsizetype afterBlanks = -1;
    afterWords[size] = afterAny[size] = -1;
    for (qsizetype at = size - 1; at >= 0; --at) {
        if (Clauses::isMark(text[at]))
            afterBlanks = at + 1;
        else if (!isBlank(text[at]))
            afterBlanks = -1;
        const qsizetype word = firstWordAt(text, at, [&](qsizetype length) { return afterAny[at + length] >= 0; });
        afterWords[at] = word > 0 ? afterAny[at + word] : m_holdsEmptyWord ? afterBlanks : -1;
        afterAny[at] = word > 0 ? afterAny[at + word] : afterBlanks;
    }

    // White space in front is taken greedily, but given back where a word begins with it.
    const auto matchEnd = [&](qsizetype at) {
        qsizetype wordsAt = at;
        while (wordsAt != size && text[wordsAt].isSpace())
            ++wordsAt;
        while (wordsAt > at && afterWords[wordsAt] < 0)
            --wordsAt;
        return afterWords[wordsAt];
    };
    QString after;
    after.reserve(size);
    qsizetype at = std::max<qsizetype>(matchEnd(0), 0);
    while (at != size) {
        const bool isMark = Clauses::isMark(text[at]);
        after += text[at];
        const qsizetype end = isMark ? matchEnd(at + 1) : -1;
        at = end >= 0 ? end : at + 1;
    }
    return after.size() != size ? std::optional(std::move(after)) : std::nullopt;
}

QString FillerWords::withoutWords(QStringView text) const
{
    QString after;
    after.reserve(text.size());
    qsizetype copied = 0;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype word = firstWordAt(text, at, [](qsizetype) { return true; });
        if (word > 0) {
            after += text.sliced(copied, at - copied);
            copied = at + word;
        }
        at += std::max<qsizetype>(word, 1);
    }
    return after += text.sliced(copied);
}
