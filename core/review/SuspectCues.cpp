#include "core/review/SuspectCues.h"

#include "core/text/Characters.h"

#include <QStringList>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace SuspectCues {

namespace {

constexpr qsizetype timesInARow = 3;  ///< A chorus says a line twice.
constexpr qsizetype timesInACue = 4;  ///< "no no no" is still speech.
constexpr double fastestHan = 15;     ///< Characters a second; quick speakers reach 8.
constexpr double fastestLatin = 40;   ///< Letters a second; quick speakers reach 20.
constexpr qsizetype fewestJudged = 6; ///< A single word's times are too coarse to judge.

/// What is said, without case, blanks and punctuation.
QString spoken(const QString &text)
{
    QString result;
    for (const char32_t scalar : Characters::Scalars(text)) {
        if (Characters::isLetterOrDigit(scalar))
            result.append(QChar::fromUcs4(QChar::toCaseFolded(scalar)));
    }
    return result;
}

/// Whether `text` is one phrase of up to half its length, `timesInACue` times or more. The last may be cut short.
bool repeatsItself(const QString &text)
{
    for (qsizetype length = 1; length * timesInACue <= text.size(); ++length) {
        if (QStringView(text).sliced(length) == QStringView(text).chopped(length))
            return true;
    }
    return false;
}

/// Closing phrases that recognisers are known to write where nobody speaks, as spoken() gives them.
bool isClosingPhrase(const QString &text)
{
    static const std::array phrases{u"谢谢观看"_s,
                                    u"感谢观看"_s,
                                    u"谢谢收看"_s,
                                    u"感谢收看"_s,
                                    u"感谢您的观看"_s,
                                    u"谢谢大家观看"_s,
                                    u"请不吝点赞"_s,
                                    u"点赞订阅转发"_s,
                                    u"记得订阅"_s,
                                    u"字幕志愿者"_s,
                                    u"字幕由"_s,
                                    u"字幕制作"_s,
                                    u"字幕提供"_s,
                                    u"謝謝觀看"_s,
                                    u"感謝觀看"_s,
                                    u"請不吝點贊"_s,
                                    u"字幕志願者"_s,
                                    u"thanksforwatching"_s,
                                    u"thankyouforwatching"_s,
                                    u"pleasesubscribe"_s,
                                    u"likeandsubscribe"_s,
                                    u"subscribetomychannel"_s,
                                    u"subtitlesby"_s,
                                    u"captionsby"_s};
    // A sentence that only mentions one is speech.
    constexpr qsizetype wordsBeside = 20;
    return std::ranges::any_of(phrases, [&](const QString &phrase) {
        return text.startsWith(phrase) || (text.contains(phrase) && text.size() <= phrase.size() + wordsBeside);
    });
}

bool isTooFast(const Subtitle &cue, const QString &text)
{
    qsizetype han = 0;
    qsizetype others = 0;
    for (const char32_t scalar : Characters::Scalars(text))
        ++(Characters::script(scalar) == QChar::Script_Han ? han : others);
    const double seconds = double(cue.end - cue.start) / 1000;
    return han + others >= fewestJudged && double(han) / fastestHan + double(others) / fastestLatin > seconds;
}

/// Marks every run of the same text that is long enough.
void markRuns(const QStringList &texts, QList<SuspectCue::Reasons> &reasons)
{
    for (qsizetype begin = 0, end = 0; begin < texts.size(); begin = end) {
        while (end < texts.size() && texts[end] == texts[begin])
            ++end;
        if (end - begin < timesInARow || texts[begin].isEmpty())
            continue;
        for (qsizetype i = begin; i < end; ++i)
            reasons[i] |= SuspectCue::Reason::repetition;
    }
}

} // namespace

QList<SuspectCue> find(const QList<Subtitle> &items, const IsSilent &isSilent)
{
    QStringList texts;
    QList<SuspectCue::Reasons> reasons(items.size());
    for (qsizetype i = 0; i < items.size(); ++i) {
        texts.append(spoken(items[i].text));
        reasons[i].setFlag(SuspectCue::Reason::repetition, repeatsItself(texts[i]));
        reasons[i].setFlag(SuspectCue::Reason::closingPhrase, isClosingPhrase(texts[i]));
        reasons[i].setFlag(SuspectCue::Reason::speed, isTooFast(items[i], texts[i]));
        reasons[i].setFlag(SuspectCue::Reason::silence, isSilent && isSilent(items[i].start, items[i].end));
    }
    markRuns(texts, reasons);
    QList<SuspectCue> suspects;
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (reasons[i])
            suspects.append({.index = i, .reasons = reasons[i]});
    }
    return suspects;
}

QString reason(SuspectCue::Reasons reasons)
{
    QStringList words;
    if (reasons.testFlag(SuspectCue::Reason::silence))
        words.append(u"此处没有声音"_s);
    if (reasons.testFlag(SuspectCue::Reason::repetition))
        words.append(u"同一句反复出现"_s);
    if (reasons.testFlag(SuspectCue::Reason::closingPhrase))
        words.append(u"常见的片尾套话"_s);
    if (reasons.testFlag(SuspectCue::Reason::speed))
        words.append(u"语速快得不可能"_s);
    if (reasons.testFlag(SuspectCue::Reason::times))
        words.append(u"没有听清，时间请核对"_s);
    return words.join(u"；");
}

QString sentence(SuspectCue::Reasons reasons)
{
    return reasons == SuspectCue::Reason::times ? reason(reasons) : u"可能是识别臆造："_s + reason(reasons);
}

} // namespace SuspectCues
