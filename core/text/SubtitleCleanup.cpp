#include "core/text/SubtitleCleanup.h"

#include "core/ConversionError.h"
#include "core/text/Characters.h"
#include "core/text/Clauses.h"
#include "core/text/FillerWords.h"

#include <QSet>
#include <QVarLengthArray>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace SubtitleCleanup {

namespace {

constexpr qsizetype mostWords = 100;
constexpr qsizetype longestWord = 60; ///< Characters.

bool separatesWords(QChar unit)
{
    return QStringView(u"\n\r,，;；、").contains(unit);
}

bool holdsLetterOrDigit(QStringView text)
{
    const Characters::Scalars scalars(text);
    return std::any_of(scalars.begin(), scalars.end(), Characters::isLetterOrDigit);
}

bool holdsPunctuation(QStringView text)
{
    const Characters::Scalars scalars(text);
    return std::any_of(scalars.begin(), scalars.end(), Characters::isPunctuation);
}

QString withoutPunctuation(QStringView text)
{
    QString rest;
    rest.reserve(text.size());
    for (const char32_t scalar : Characters::Scalars(text)) {
        if (!Characters::isPunctuation(scalar))
            rest += QStringView(QChar::fromUcs4(scalar));
    }
    return rest;
}

/// Cleans cue after cue into one list.
class Cleaner
{
public:
    Cleaner(Switches switches, const QStringList &fillerWords, qsizetype cues)
        : m_switches(switches)
        , m_fillers(switches.removeFillers ? fillerWords : QStringList())
    {
        m_cleaned.reserve(cues);
    }

    void add(const Subtitle &cue)
    {
        if (m_switches.removePunctuation)
            addClauses(cue);
        else
            addPiece(cue.start, cue.end, cue.text, cue);
    }

    QList<Subtitle> take() { return std::move(m_cleaned); }

private:
    struct Clause
    {
        qsizetype begin;
        qsizetype end;
        qsizetype length; ///< Characters.
    };

    void addClauses(const Subtitle &cue)
    {
        const QStringView text = cue.text;
        QVarLengthArray<Clause, 16> clauses;
        qsizetype length = 0;
        for (qsizetype begin = 0; begin <= text.size();) {
            const auto *const mark = std::find_if(text.begin() + begin, text.end(), Clauses::isMark);
            const qsizetype end = mark - text.begin();
            clauses.append({begin, end, Characters::count(text.sliced(begin, end - begin))});
            length += clauses.back().length;
            begin = end + 1;
        }
        // In this order of operations and in doubles, so that times are the same on every machine.
        const auto duration = static_cast<double>(cue.end - cue.start);
        const auto whole = static_cast<double>(std::max<qsizetype>(length, 1));
        const auto timeAfter = [&](qsizetype characters) {
            return cue.start + std::llround(duration * static_cast<double>(characters) / whole);
        };
        qsizetype before = 0;
        qint64 start = cue.start;
        for (const Clause &clause : clauses) {
            before += clause.length;
            const qint64 end = timeAfter(before);
            addPiece(start, end, text.sliced(clause.begin, clause.end - clause.begin), cue);
            start = end;
        }
    }

    /// Adds `piece` of `cue` unless nothing of it is left. Most pieces stay as they are and are copied only once, or
    /// not at all when they are the whole cue.
    void addPiece(qint64 start, qint64 end, QStringView piece, const Subtitle &cue)
    {
        if (start >= end)
            return;
        QString changed;
        if (m_switches.removeFillers && m_fillers.mayHoldWords(piece))
            piece = changed = m_fillers.removedFrom(piece);
        if (m_switches.removePunctuation && holdsPunctuation(piece))
            piece = changed = withoutPunctuation(piece);
        piece = Characters::trimmed(piece);
        if (!holdsLetterOrDigit(piece))
            return;
        m_cleaned.append({.id = m_cleaned.size() + 1, .start = start, .end = end, .text = {}});
        QString &text = m_cleaned.back().text;
        if (isAllOf(piece, cue.text))
            text = cue.text;
        else if (isAllOf(piece, changed))
            text = std::move(changed);
        else
            text = piece.toString();
    }

    static bool isAllOf(QStringView piece, const QString &text)
    {
        return piece.data() == text.constData() && piece.size() == text.size();
    }

    Switches m_switches;
    FillerWords m_fillers;
    QList<Subtitle> m_cleaned;
};

} // namespace

QStringList defaultFillerWords()
{
    return {u"啊"_s, u"哦"_s,   u"嗯"_s,   u"呃"_s,   u"噢"_s, u"喔"_s,
            u"哎"_s, u"哎呀"_s, u"哎呦"_s, u"哎哟"_s, u"唉"_s, u"哈哈"_s};
}

QStringList words(QStringView from)
{
    QStringList words;
    QSet<QStringView> known;
    while (true) {
        const auto *const separator = std::find_if(from.begin(), from.end(), separatesWords);
        const QStringView word = from.first(separator - from.begin()).trimmed();
        if (!word.isEmpty() && !known.contains(word)) {
            known.insert(word);
            words.append(word.toString());
        }
        if (separator == from.end())
            return words;
        from = from.sliced(separator - from.begin() + 1);
    }
}

QStringList savedWords(QStringView from)
{
    QStringList list = words(from);
    const auto isTooLong = [](const QString &word) { return Characters::isLonger(word, longestWord); };
    if (list.size() > mostWords || std::any_of(list.begin(), list.end(), isTooLong))
        throw ConversionError(u"最多 100 个词，每个词不超过 60 字。"_s);
    return list;
}

QString removingFillers(const QString &text, const QStringList &words)
{
    return FillerWords(words).removedFrom(text);
}

QList<Subtitle> apply(const QList<Subtitle> &items, Switches switches, const QStringList &fillerWords)
{
    Cleaner cleaner(switches, fillerWords, items.size());
    for (const Subtitle &cue : items)
        cleaner.add(cue);
    return cleaner.take();
}

} // namespace SubtitleCleanup
