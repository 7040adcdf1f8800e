#include "core/text/LanguageSeparation.h"

#include "core/text/Characters.h"

#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace LanguageSeparation {

namespace {

constexpr std::array allGroups = {Group::chinese, Group::english, Group::unassigned};

struct Line
{
    QStringView text;
    Group group = Group::unassigned;
    bool hasLetters = false;
};

bool isAsciiLetter(char32_t scalar)
{
    return (scalar >= U'a' && scalar <= U'z') || (scalar >= U'A' && scalar <= U'Z');
}

bool isForeign(QChar::Script script)
{
    switch (script) {
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Hangul:
    case QChar::Script_Cyrillic:
    case QChar::Script_Arabic:
    case QChar::Script_Hebrew:
    case QChar::Script_Thai:
        return true;
    default:
        return false;
    }
}

Line classified(QStringView text)
{
    Line line{.text = text};
    bool isHan = false;
    bool isLatin = false;
    for (const char32_t scalar : Characters::Scalars(text)) {
        // The two that nearly all text is made of need no look-up.
        if (Characters::isCommonIdeograph(scalar)) {
            isHan = true;
        } else if (scalar < 0x80) {
            isLatin = isLatin || isAsciiLetter(scalar);
        } else if (Characters::isLetter(scalar)) {
            line.hasLetters = true;
            const QChar::Script script = Characters::script(scalar);
            if (isForeign(script))
                return line;
            isHan = isHan || script == QChar::Script_Han;
            isLatin = isLatin || script == QChar::Script_Latin;
        }
    }
    line.hasLetters = line.hasLetters || isHan || isLatin;
    if (isHan)
        line.group = Group::chinese;
    else if (isLatin)
        line.group = Group::english;
    return line;
}

/// The length of the line break <br>, <BR/>, <br /> at the front of `text`, 0 when there is none.
qsizetype breakTag(QStringView text)
{
    if (!text.startsWith(u"<br", Qt::CaseInsensitive))
        return 0;
    qsizetype at = 3;
    while (at != text.size() && text[at].isSpace())
        ++at;
    if (at != text.size() && text[at] == u'/')
        ++at;
    return at != text.size() && text[at] == u'>' ? at + 1 : 0;
}

/// One cue's lines, classified, without those that are empty.
class Lines
{
public:
    explicit Lines(QStringView text)
    {
        qsizetype begin = 0;
        for (qsizetype at = 0; at != text.size();) {
            const QChar unit = text[at];
            const qsizetype separator = unit == u'<'                            ? breakTag(text.sliced(at))
                                        : Characters::isNewline(unit.unicode()) ? 1
                                                                                : 0;
            if (separator > 0) {
                add(text.sliced(begin, at - begin));
                begin = at + separator;
            }
            at += std::max<qsizetype>(separator, 1);
        }
        add(text.sliced(begin));
        attachLetterless();
    }

    /// The lines of `group`, joined by line feeds; absent when there are none.
    std::optional<QString> joined(Group group) const
    {
        std::optional<QString> text;
        for (const Line &line : m_lines) {
            if (line.group != group)
                continue;
            if (text)
                text->append(u'\n').append(line.text);
            else
                text = line.text.toString();
        }
        return text;
    }

private:
    void add(QStringView text)
    {
        text = Characters::trimmedBlanks(text);
        if (!text.isEmpty())
            m_lines.append(classified(text));
    }

    void attachLetterless()
    {
        std::optional<Group> language;
        for (const Line &line : m_lines) {
            if (!line.hasLetters)
                continue;
            if (language && *language != line.group)
                return;
            language = line.group;
        }
        for (Line &line : m_lines)
            line.group = language.value_or(Group::unassigned);
    }

    QVarLengthArray<Line, 8> m_lines;
};

} // namespace

QString rawValue(Group group)
{
    switch (group) {
    case Group::chinese:
        return u"chinese"_s;
    case Group::english:
        return u"english"_s;
    case Group::unassigned:
        break;
    }
    return u"unassigned"_s;
}

QString label(Group group)
{
    switch (group) {
    case Group::chinese:
        return u"中文"_s;
    case Group::english:
        return u"English"_s;
    case Group::unassigned:
        break;
    }
    return u"待归类"_s;
}

Group classify(QStringView line)
{
    return classified(line).group;
}

QList<GroupedCues> split(const QList<Subtitle> &items)
{
    std::array<QList<Subtitle>, allGroups.size()> cues;
    for (const Subtitle &cue : items) {
        const Lines lines(cue.text);
        for (size_t i = 0; i < allGroups.size(); ++i) {
            if (auto text = lines.joined(allGroups[i]))
                cues[i].append({.id = cue.id, .start = cue.start, .end = cue.end, .text = *std::move(text)});
        }
    }
    QList<GroupedCues> result;
    for (size_t i = 0; i < allGroups.size(); ++i) {
        if (!cues[i].isEmpty())
            result.append({.group = allGroups[i], .items = std::move(cues[i])});
    }
    return result;
}

bool holdsBothLanguages(const QList<GroupedCues> &groups)
{
    const auto holds = [&](Group wanted) {
        return std::any_of(groups.begin(), groups.end(), [&](const GroupedCues &cues) { return cues.group == wanted; });
    };
    return holds(Group::chinese) && holds(Group::english);
}

QString nothingToSeparate()
{
    return u"未发现可分离的中英字幕，请确认中文和英文分别占行"_s;
}

} // namespace LanguageSeparation
