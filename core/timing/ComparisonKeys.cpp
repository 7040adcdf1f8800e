#include "core/timing/ComparisonKeys.h"

#include "core/text/Characters.h"
#include "core/text/ChineseScript.h"
#include "core/text/Folding.h"
#include "core/timing/SpokenNumbers.h"

#include <QSet>

#include <algorithm>

namespace {

/// A character of a text as it is compared, before numbers are read.
struct Heard
{
    QString folded;
    char32_t numeral = 0; ///< 0 where it is none.
    qsizetype begin = 0;
    qsizetype end = 0;
};

bool counts(QStringView character)
{
    const Characters::Scalars scalars(character);
    return std::any_of(scalars.begin(), scalars.end(), Characters::isAlphanumeric);
}

} // namespace

/// Asks for the simplified form of the characters that were never seen, all at once: a call has its price.
void ComparisonKeys::learnScript(const QString &text)
{
    QList<char32_t> unknown;
    for (const char32_t scalar : Characters::Scalars(text)) {
        if (Characters::script(scalar) == QChar::Script_Han && !m_simplified.contains(scalar)) {
            m_simplified.insert(scalar, scalar);
            unknown.append(scalar);
        }
    }
    QString each;
    for (const char32_t scalar : unknown)
        each += QString::fromUcs4(&scalar, 1) + u'\n';
    const auto converted = ChineseScript::converted({{.id = 1, .start = 0, .end = 1, .text = each}},
                                                    ChineseScript::Target::simplified, {}, [] {});
    const auto simplified = converted.front().text.split(u'\n');
    for (qsizetype i = 0; i < unknown.size(); ++i) {
        const auto scalars = simplified.value(i).toUcs4();
        if (scalars.size() == 1)
            m_simplified[unknown[i]] = scalars.front();
    }
}

ComparisonKeys::Key ComparisonKeys::keyOf(const QString &character)
{
    const auto known = m_keys.constFind(character);
    if (known != m_keys.cend())
        return *known;
    m_characters.push_back(character);
    return *m_keys.insert(character, static_cast<Key>(m_characters.size() - 1));
}

std::vector<ComparisonKeys::Unit> ComparisonKeys::units(const QString &text)
{
    learnScript(text);
    std::vector<Heard> heard;
    for (Characters::Cursor at(text); at.next();) {
        const QStringView character = at.character();
        if (!counts(character))
            continue;
        QString folded = Folding::folded(character);
        const auto scalars = folded.toUcs4();
        char32_t numeral = 0;
        if (scalars.size() == 1) {
            const char32_t scalar = m_simplified.value(scalars.front(), scalars.front());
            if (scalar != scalars.front())
                folded = QString::fromUcs4(&scalar, 1);
            numeral = SpokenNumbers::isNumeral(scalar) ? scalar : 0;
        }
        heard.push_back({.folded = folded, .numeral = numeral, .begin = at.begin(), .end = at.end()});
    }

    std::vector<Unit> units;
    for (auto at = heard.cbegin(); at != heard.cend();) {
        if (at->numeral == 0) {
            units.push_back({.key = keyOf(at->folded), .begin = at->begin, .end = at->end});
            ++at;
            continue;
        }
        const auto first = at;
        std::vector<char32_t> numerals;
        for (; at != heard.cend() && at->numeral != 0; ++at)
            numerals.push_back(at->numeral);
        for (const SpokenNumbers::Digit &digit : SpokenNumbers::digits(numerals)) {
            units.push_back({.key = keyOf(QChar(digit.value)),
                             .begin = (first + static_cast<std::ptrdiff_t>(digit.begin))->begin,
                             .end = (first + static_cast<std::ptrdiff_t>(digit.end) - 1)->end});
        }
    }
    return units;
}

const ComparisonKeys::Sounds &ComparisonKeys::soundsOf(Key key)
{
    if (m_sounds.size() <= key)
        m_sounds.resize(m_characters.size());
    std::optional<Sounds> &sounds = m_sounds[key];
    if (sounds)
        return *sounds;
    sounds.emplace();
    if (!m_reader)
        m_reader.emplace();
    size_t count = 0;
    const QString read = m_reader->read(m_characters[key]);
    for (const QStringView reading : QStringView(read).split(u'/', Qt::SkipEmptyParts)) {
        quint16 &number = m_soundNumbers[reading.toString()];
        if (number == 0)
            number = static_cast<quint16>(m_soundNumbers.size());
        if (count < sounds->size())
            (*sounds)[count++] = number;
    }
    return *sounds;
}

bool ComparisonKeys::soundAlike(Key a, Key b)
{
    soundsOf(a); // may move what is asked next
    const Sounds &second = soundsOf(b);
    const Sounds &first = soundsOf(a);
    return std::ranges::any_of(first,
                               [&](quint16 sound) { return sound != 0 && std::ranges::count(second, sound) > 0; });
}
