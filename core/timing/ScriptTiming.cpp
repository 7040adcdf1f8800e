#include "core/timing/ScriptTiming.h"

#include "core/ConversionError.h"
#include "core/text/Characters.h"
#include "core/text/ColumnWidth.h"
#include "core/text/breaking/BreakableCues.h"
#include "core/timing/ComparisonKeys.h"
#include "core/timing/UnitAlignment.h"

#include <algorithm>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace ScriptTiming {

namespace {

using Unit = ComparisonKeys::Unit;
using UnitAlignment::Likeness;
using UnitAlignment::Partner;

constexpr size_t shortestPassage = 4;   ///< Units; less beside the script is a slip, not worth a line in a list.
constexpr size_t repeatedLength = 6;    ///< Units in a row that two takes of a passage have in common, more than once.
constexpr double leastConfidence = 0.2; ///< Below, what was heard of a cue may be chance.
constexpr double longestLeadMS = 500;   ///< So much of a cue may be guessed at either end.
constexpr double longestHoleMS = 2'000; ///< Between two of its characters, a sure cue does not pause longer.

/// Units of a sequence, half-open.
struct Run
{
    size_t begin = 0;
    size_t end = 0;

    size_t length() const { return end - begin; }
};

/// The runs of indices below `count` for which `isIn` holds.
template <class IsIn>
std::vector<Run> runs(size_t count, const IsIn &isIn)
{
    std::vector<Run> found;
    for (size_t i = 0; i < count; ++i) {
        if (!isIn(i))
            continue;
        if (found.empty() || found.back().end < i)
            found.push_back({.begin = i, .end = i});
        found.back().end = i + 1;
    }
    return found;
}

/// The script cut into cues, and what of them can be heard.
struct Script
{
    QString text;          ///< The cues, a line each.
    std::vector<Run> cues; ///< Their places in it, in UTF-16 code units.
    std::vector<Unit> units;
    std::vector<Run> unitsOfCue;
};

QStringList cueTexts(const QString &script, int columns, const Check &check)
{
    QString normal = script;
    normal.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    QList<Subtitle> lines;
    for (const QStringView line : QStringView(normal).split(u'\n')) {
        const QStringView text = Characters::trimmed(line);
        if (!text.isEmpty())
            lines.append({.id = lines.size() + 1, .start = 0, .end = 1, .text = text.toString()});
    }
    const BreakableCues breakable(std::move(lines), check);
    QStringList texts;
    for (const Subtitle &line : breakable.inLines({.columns = columns}, check))
        texts += line.text.split(u'\n', Qt::SkipEmptyParts);
    return texts;
}

Script cut(const QString &text, int columns, ComparisonKeys &keys, const Check &check)
{
    Script script;
    const QStringList texts = cueTexts(text, columns, check);
    for (const QString &each : texts) {
        const auto begin = static_cast<size_t>(script.text.size());
        script.text += each;
        script.cues.push_back({.begin = begin, .end = static_cast<size_t>(script.text.size())});
        script.text += u'\n';
    }
    script.units = keys.units(script.text);
    size_t unit = 0;
    for (const Run &cue : script.cues) {
        Run &own = script.unitsOfCue.emplace_back(Run{.begin = unit});
        while (unit < script.units.size() && script.units[unit].begin < static_cast<qsizetype>(cue.end))
            ++unit;
        own.end = unit;
    }
    return script;
}

/// What was heard as one text, of which every place has a time.
class HeardText
{
public:
    HeardText(std::span<const HeardWord> words, ComparisonKeys &keys)
        : m_words(words)
    {
        // Where blanks are told, a word without one goes on with the word before.
        const bool hasBlanks = std::ranges::any_of(
            words, [](const HeardWord &word) { return word.text.startsWith(u' ') || word.text.endsWith(u' '); });
        const auto isLatin = [](QChar character) { return character.unicode() < 0x80 && character.isLetterOrNumber(); };
        for (const HeardWord &word : words) {
            const QStringView text = Characters::trimmed(word.text); // blanks take no time
            const bool goesOn = text.isEmpty() || m_text.isEmpty() || !isLatin(m_text.back()) || !isLatin(text.front());
            if (hasBlanks ? word.text.startsWith(u' ') : !goesOn)
                m_text += u' ';
            m_begins.push_back(m_text.size());
            m_sizes.push_back(text.size());
            m_text += text;
        }
        units = keys.units(m_text);
    }

    std::vector<Unit> units;

    double startMS(size_t unit) const { return timeAt(units[unit].begin, units[unit].begin); }
    double endMS(size_t unit) const { return timeAt(units[unit].end - 1, units[unit].end); }

    /// A passage as a cue of its own.
    Subtitle passage(const Run &run, qint64 id) const
    {
        const qsizetype begin = units[run.begin].begin;
        const qsizetype end = units[run.end - 1].end;
        const qint64 start = std::llround(startMS(run.begin));
        return {.id = id,
                .start = start,
                .end = std::max(std::llround(endMS(run.end - 1)), start + 1),
                .text = m_text.sliced(begin, end - begin)};
    }

private:
    /// The time at `place`, which lies in or at the end of the word of the character at `character`: words are passed
    /// evenly.
    double timeAt(qsizetype character, qsizetype place) const
    {
        const auto next = std::ranges::upper_bound(m_begins, character);
        const auto index = static_cast<size_t>(next - m_begins.begin() - 1);
        const HeardWord &word = m_words[index];
        const double share = double(place - m_begins[index]) / double(m_sizes[index]);
        return double(word.startMS) + double(word.endMS - word.startMS) * std::min(share, 1.0);
    }

    std::span<const HeardWord> m_words;
    std::vector<qsizetype> m_begins; ///< Of each word, in m_text.
    std::vector<qsizetype> m_sizes;
    QString m_text;
};

/// How long a unit takes to say. Milliseconds.
double paceOf(const std::vector<Partner> &partners, const HeardText &heard)
{
    constexpr double slowest = 1'000; // more is a pause
    constexpr double usual = 220;     // of Chinese; where nothing can be measured
    double total = 0;
    double count = 0;
    for (size_t i = 1; i < partners.size(); ++i) {
        if (!partners[i].isHeard() || partners[i].heard != partners[i - 1].heard + 1 || !partners[i - 1].isHeard())
            continue;
        const double step = heard.startMS(size_t(partners[i].heard)) - heard.startMS(size_t(partners[i - 1].heard));
        if (step <= slowest) {
            total += step;
            ++count;
        }
    }
    return count > 0 && total > 0 ? total / count : usual;
}

/// Finds the times of cues, one after another.
class Timer
{
public:
    Timer(const Script &script, const HeardText &heard, const std::vector<Partner> &partners)
        : m_script(script)
        , m_heard(heard)
        , m_partners(partners)
        , m_pace(paceOf(partners, heard))
    {}

    double pace() const { return m_pace; }

    TimedCues::Heard next()
    {
        const Run &place = m_script.cues[m_cue];
        const Run units = m_script.unitsOfCue[m_cue];
        ++m_cue;
        TimedCues::Heard cue{.text = m_script.text.sliced(qsizetype(place.begin), qsizetype(place.length()))};
        cue.confidence = confidence(units);
        if (cue.confidence >= leastConfidence)
            findTimes(units, cue);
        return cue;
    }

private:
    double confidence(const Run &units) const
    {
        double sum = 0;
        for (size_t i = units.begin; i < units.end; ++i) {
            const Likeness likeness = m_partners[i].likeness;
            sum += likeness == Likeness::same ? 1 : likeness == Likeness::sound ? 0.5 : 0;
        }
        return units.length() > 0 ? sum / double(units.length()) : 0;
    }

    double startMS(size_t unit) const { return m_heard.startMS(size_t(m_partners[unit].heard)); }
    double endMS(size_t unit) const { return m_heard.endMS(size_t(m_partners[unit].heard)); }
    bool hasPartner(size_t unit) const { return m_partners[unit].heard >= 0; }

    /// From the first unit that has a partner to the last. Units outside of them take the time that units take, as far
    /// as nothing else of the script was heard there.
    void findTimes(const Run &units, TimedCues::Heard &cue)
    {
        size_t first = units.begin;
        while (!hasPartner(first))
            ++first;
        size_t last = units.end - 1;
        while (!hasPartner(last))
            --last;
        size_t following = units.end;
        while (following < m_partners.size() && !hasPartner(following))
            ++following;
        const double lead = std::min(double(first - units.begin) * m_pace, std::max(startMS(first) - m_free, 0.0));
        double trail = double(units.end - 1 - last) * m_pace;
        if (following < m_partners.size())
            trail = std::min(trail, std::max(startMS(following) - endMS(last), 0.0) / 2);
        const double start = std::max(startMS(first) - lead, m_free);
        const double end = std::max(endMS(last) + trail, start);
        m_free = end;
        cue.startMS = std::llround(start);
        cue.endMS = std::llround(end);
        cue.isUnsure = lead > longestLeadMS || trail > longestLeadMS || hasHole(first, last);
    }

    bool hasHole(size_t first, size_t last) const
    {
        double ended = endMS(first);
        for (size_t i = first + 1; i <= last; ++i) {
            if (!hasPartner(i))
                continue;
            if (startMS(i) - ended > longestHoleMS)
                return true;
            ended = endMS(i);
        }
        return false;
    }

    const Script &m_script;
    const HeardText &m_heard;
    const std::vector<Partner> &m_partners;
    double m_pace;
    size_t m_cue = 0;
    double m_free = 0; ///< Where the cue before ended. Milliseconds.
};

quint64 hashOf(const std::vector<Unit> &units, size_t begin)
{
    quint64 hash = 0;
    for (size_t i = begin; i < begin + repeatedLength; ++i)
        hash = (hash ^ units[i].key) * 0x9E37'79B9'7F4A'7C15;
    return hash;
}

/// Marks the cues that were spoken twice: which take is the good one, a person has to hear.
void markRepeated(std::vector<TimedCues::Heard> &cues, const Script &script, const HeardText &heard,
                  const std::vector<Run> &unscripted)
{
    std::unordered_map<quint64, size_t> places;
    for (size_t i = 0; i + repeatedLength <= script.units.size(); ++i)
        places.emplace(hashOf(script.units, i), i);
    for (const Run &run : unscripted) {
        std::vector<size_t> found;
        for (size_t i = run.begin; i + repeatedLength <= run.end; ++i) {
            if (const auto place = places.find(hashOf(heard.units, i)); place != places.end())
                found.push_back(place->second);
        }
        if (found.size() < 2)
            continue;
        for (const size_t unit : found) {
            auto cue = std::ranges::upper_bound(script.unitsOfCue, unit, {}, &Run::end);
            for (; cue != script.unitsOfCue.end() && cue->begin < unit + repeatedLength; ++cue)
                cues[size_t(cue - script.unitsOfCue.begin())].isUnsure = true;
        }
    }
}

/// Where units stand that were not heard, or were heard and are in no script.
template <class IsMissing>
std::vector<Run> passages(size_t count, const IsMissing &isMissing)
{
    std::vector<Run> found = runs(count, isMissing);
    std::erase_if(found, [](const Run &run) { return run.length() < shortestPassage; });
    return found;
}

void refuseWrongInput(const QString &script, std::span<const HeardWord> words)
{
    if (Characters::trimmed(script).isEmpty())
        throw ConversionError(u"文稿没有文字。"_s);
    if (script.size() > longestScript)
        throw ConversionError(u"文稿过长，请分段生成字幕。"_s);
    if (words.empty())
        throw ConversionError(u"声音里没有识别到词语，无法为文稿定时。"_s);
    if (words.size() > mostWords)
        throw ConversionError(u"识别结果过长，请将素材分段。"_s);
}

} // namespace

ScriptTimingResult timed(const QString &script, std::span<const HeardWord> words, const Rules &rules,
                         const Check &check)
{
    refuseWrongInput(script, words);
    ComparisonKeys keys;
    const Script cutScript = cut(script, rules.columns, keys, check);
    const HeardText heard(words, keys);
    const std::vector<Partner> partners = UnitAlignment::align(cutScript.units, heard.units, keys, check);
    if (std::ranges::none_of(partners, &Partner::isHeard))
        throw ConversionError(u"文稿与声音没有对应的内容，请确认语言和段落一致。"_s);

    std::vector<bool> isScripted(heard.units.size());
    for (const Partner &partner : partners) {
        if (partner.heard >= 0)
            isScripted[size_t(partner.heard)] = true;
    }
    const auto unspoken = passages(partners.size(), [&](size_t i) { return partners[i].heard < 0; });
    const auto unscripted = passages(heard.units.size(), [&](size_t i) { return !isScripted[i]; });

    Timer timer(cutScript, heard, partners);
    std::vector<TimedCues::Heard> cues;
    double width = 0;
    for (size_t i = 0; i < cutScript.cues.size(); ++i)
        width += ColumnWidth::of(cues.emplace_back(timer.next()).text);
    markRepeated(cues, cutScript, heard, unscripted);

    ScriptTimingResult result;
    result.cues =
        TimedCues::placed(std::move(cues), timer.pace() * double(partners.size()) / std::max(width, 1.0), rules.grid);
    for (const Run &run : unspoken) {
        const qsizetype begin = cutScript.units[run.begin].begin;
        const auto cue = std::ranges::upper_bound(cutScript.unitsOfCue, run.begin, {}, &Run::end);
        result.unspoken.append({.cueID = cue - cutScript.unitsOfCue.begin() + 1,
                                .text = cutScript.text.sliced(begin, cutScript.units[run.end - 1].end - begin)});
    }
    for (const Run &run : unscripted)
        result.unscripted.append(heard.passage(run, result.unscripted.size() + 1));
    return result;
}

} // namespace ScriptTiming

QList<Subtitle> ScriptTimingResult::subtitles() const
{
    QList<Subtitle> subtitles;
    for (const TimedCue &each : cues)
        subtitles.append(each.cue);
    return subtitles;
}

qint64 ScriptTimingResult::unsureCount() const
{
    return std::ranges::count(cues, true, &TimedCue::isUnsure);
}
