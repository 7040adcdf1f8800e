#include "core/text/ScriptAlignment.h"

#include "core/ConversionError.h"
#include "core/text/Characters.h"
#include "core/text/Folding.h"
#include "core/text/SequenceAlignment.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

qint64 ScriptMatchResult::matchedCount() const
{
    return std::count_if(rows.begin(), rows.end(),
                         [](const ScriptMatchRow &row) { return row.replacement.has_value(); });
}

qint64 ScriptMatchResult::changedCount() const
{
    return std::count_if(rows.begin(), rows.end(), [](const ScriptMatchRow &row) { return row.changed(); });
}

namespace ScriptAlignment {

namespace {

using SequenceAlignment::Key;

/// Numbers for folded characters, dense from 1: equal for characters that count as equal.
class Keys
{
public:
    /// The key of `character`, or 0 when it holds no letter, mark or digit.
    Key of(QStringView character)
    {
        if (character.size() > 1)
            return find(character);
        // Nearly all characters are one code unit, and each is folded only once.
        Key &known = m_ofUnit[character.front().unicode()];
        if (known == unknown)
            known = find(character);
        return known;
    }

    Key count() const { return m_last + 1; } ///< All keys are below.

private:
    static constexpr Key unknown = ~Key(0);

    Key find(QStringView character)
    {
        const Characters::Scalars scalars(character);
        if (std::none_of(scalars.begin(), scalars.end(), Characters::isAlphanumeric))
            return 0;
        const QString folded = Folding::folded(character);
        Key &key = folded.size() == 1 ? m_ofFoldedUnit[folded.front().unicode()] : m_ofFolded[folded];
        if (key == 0)
            key = ++m_last;
        return key;
    }

    std::vector<Key> m_ofUnit = std::vector<Key>(0x10000, unknown);
    std::vector<Key> m_ofFoldedUnit = std::vector<Key>(0x10000, 0);
    QHash<QString, Key> m_ofFolded; ///< Of those that are longer.
    Key m_last = 0;
};

/// The characters of a text that count. (As parallel lists: the search reads the keys alone.)
struct Units
{
    std::vector<Key> keys;
    std::vector<qsizetype> starts; ///< In UTF-16 code units.

    void append(QStringView text, Keys &numbering)
    {
        for (Characters::Cursor at(text); at.next();) {
            if (const Key key = numbering.of(at.character()); key != 0) {
                keys.push_back(key);
                starts.push_back(at.begin());
            }
        }
    }

    size_t size() const { return keys.size(); }
};

/// A stretch of units, [begin, end).
struct Stretch
{
    size_t begin = 0;
    size_t end = 0;

    size_t size() const { return end - begin; }
};

void validate(const QString &transcript, const QList<Subtitle> &items, const std::function<void()> &check)
{
    if (items.isEmpty())
        throw ConversionError(u"请先导入已有字幕。"_s);
    if (Characters::isLonger(transcript, longestTranscript) || items.size() > mostCues ||
        Characters::holdsControl(transcript))
        throw ConversionError(u"请使用 4 万字以内的纯文稿；较长内容可分段匹配。"_s);
    for (const Subtitle &cue : items) {
        check();
        if (cue.start < 0 || cue.start >= cue.end || Characters::isLonger(cue.text, longestCue))
            throw ConversionError(u"字幕时间或文字无效，请先检查字幕。"_s);
    }
}

/// Makes rows of what was paired.
class RowBuilder
{
public:
    RowBuilder(const QString &transcript, const Units &script, const std::vector<qint32> &partners)
        : m_transcript(transcript)
        , m_script(script)
        , m_partners(partners)
    {}

    /// Appends the row of a cue, whose units are `units` of all cues' units.
    void add(const Subtitle &cue, Stretch units)
    {
        ScriptMatchRow row{
            .id = m_result.rows.size(), .original = cue, .replacement = {}, .confidence = 0, .selected = false};
        if (const auto found = findPassage(units)) {
            row.replacement = passageText(found->script);
            row.confidence = found->confidence;
            row.selected = !row.needsReview() && row.changed();
            addUnmatched({.begin = m_taken, .end = found->script.begin});
            m_taken = found->script.end;
            m_hasMatch = true;
        }
        m_result.rows.append(std::move(row));
    }

    ScriptMatchResult finish()
    {
        if (!m_hasMatch)
            throw ConversionError(u"文稿与字幕没有足够的对应内容，请确认语言和段落一致，或分段匹配。原字幕已保留。"_s);
        addUnmatched({.begin = m_taken, .end = m_script.size()});
        return std::move(m_result);
    }

private:
    struct Passage
    {
        Stretch script;
        double confidence;
    };

    /// The stretch of the transcript that the cue's units were paired with, when it is close enough to them.
    std::optional<Passage> findPassage(Stretch units) const
    {
        constexpr qint32 widestGap = 12;
        constexpr size_t shortestSpan = 12;
        std::optional<qint32> first;
        qint32 last = 0;
        size_t matched = 0;
        for (size_t i = units.begin; i != units.end; ++i) {
            const qint32 partner = m_partners[i];
            if (partner < 0)
                continue;
            if (first && partner - last > widestGap)
                return std::nullopt;
            first = first.value_or(partner);
            last = partner;
            ++matched;
        }
        if (!first)
            return std::nullopt;
        const Stretch script{.begin = static_cast<size_t>(*first), .end = static_cast<size_t>(last) + 1};
        const double confidence =
            static_cast<double>(matched) / static_cast<double>(std::max(script.size(), units.size()));
        if (confidence < 0.4 || matched < std::min<size_t>(units.size(), 2) ||
            script.size() > std::max(2 * units.size(), shortestSpan))
            return std::nullopt;
        return Passage{.script = script, .confidence = confidence};
    }

    /// The transcript from the first unit to the next one behind the last: with the punctuation and blanks that follow.
    QStringView text(Stretch script) const
    {
        const qsizetype begin = script.begin == 0 ? 0 : m_script.starts[script.begin];
        const qsizetype end = script.end == m_script.size() ? m_transcript.size() : m_script.starts[script.end];
        return QStringView(m_transcript).sliced(begin, end - begin).trimmed();
    }

    QString passageText(Stretch script) const
    {
        QString passage;
        QChar previous;
        for (const QChar unit : text(script)) {
            if (unit != u'\n')
                passage += unit;
            else if (previous != u'\n')
                passage += u' ';
            previous = unit;
        }
        if (passage.isEmpty() || Characters::isLonger(passage, longestCue))
            throw ConversionError(u"单条匹配文稿过长，请将文稿分段后再试。"_s);
        return passage;
    }

    void addUnmatched(Stretch script)
    {
        if (script.size() > 0)
            m_result.unmatchedPassages.append(text(script).toString());
    }

    const QString &m_transcript;
    const Units &m_script;
    const std::vector<qint32> &m_partners; ///< For each unit of the cues its partner in the transcript, or -1.
    ScriptMatchResult m_result;
    size_t m_taken = 0; ///< Up to here, units of the transcript are in a passage or reported as unmatched.
    bool m_hasMatch = false;
};

/// Of writings that set their words apart. What follows are those of East Asia.
bool isSetApart(char32_t scalar)
{
    return scalar < 0x2E80 && Characters::isAlphanumeric(scalar);
}

/// What of a text is said: its characters without white space and marks, but "every day", "2.5" and "50%".
QString spoken(const QString &text)
{
    static const QString saidMarks = u"%&@#*/\\％＆＠＃＊／＼‰"_s; // punctuation by their category only
    QString kept;
    QString gap; // Marks since the last character that was kept; a blank once there was white space.
    bool wasSetApart = false;
    for (const char32_t scalar : Characters::Scalars(text)) {
        const bool isSaid = scalar <= 0xFFFF && saidMarks.contains(QChar(char16_t(scalar)));
        if (Characters::isSpace(scalar)) {
            gap = u" "_s;
        } else if (Characters::isPunctuation(scalar) && !isSaid) {
            if (gap != u" ")
                gap += QStringView(QChar::fromUcs4(scalar));
        } else {
            if (wasSetApart && isSetApart(scalar))
                kept += gap;
            kept += QStringView(QChar::fromUcs4(scalar));
            gap.clear();
            wasSetApart = isSetApart(scalar);
        }
    }
    return kept;
}

} // namespace

ScriptMatchResult match(const QString &transcript, const QList<Subtitle> &items, const std::function<void()> &check)
{
    check();
    validate(transcript, items, check);
    Keys keys;
    Units script;
    script.append(transcript, keys);
    if (script.size() == 0)
        throw ConversionError(u"请粘贴需要匹配的文稿正文。"_s);
    Units source;
    std::vector<Stretch> cueUnits;
    cueUnits.reserve(static_cast<size_t>(items.size()));
    for (const Subtitle &cue : items) {
        check();
        const size_t begin = source.size();
        source.append(cue.text, keys);
        cueUnits.push_back({.begin = begin, .end = source.size()});
        if (source.size() > static_cast<size_t>(mostUnits))
            throw ConversionError(u"字幕内容过长或没有有效文字，请分段匹配。"_s);
    }
    const std::vector<qint32> partners = SequenceAlignment::match(source.keys, script.keys, keys.count(), check);
    RowBuilder rows(transcript, script, partners);
    for (qsizetype i = 0; i < items.size(); ++i) {
        check();
        rows.add(items[i], cueUnits[static_cast<size_t>(i)]);
    }
    return rows.finish();
}

bool changesWords(const ScriptMatchRow &row)
{
    return row.replacement && spoken(*row.replacement) != spoken(row.original.text);
}

QList<Subtitle> apply(const QList<ScriptMatchRow> &rows)
{
    QList<Subtitle> cues;
    cues.reserve(rows.size());
    for (const ScriptMatchRow &row : rows) {
        cues.append(row.original);
        if (row.selected && row.replacement)
            cues.back().text = *row.replacement;
    }
    return cues;
}

} // namespace ScriptAlignment
