#include "core/review/Glossary.h"

#include "core/ConversionError.h"
#include "core/text/Characters.h"

#include <QSet>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Glossary {

namespace {

const QStringList heading{u"术语"_s, u"译法"_s, u"备注"_s};

struct Record
{
    qsizetype line = 1; ///< Where it begins.
    QStringList fields = {};
};

[[noreturn]] void refuse(qsizetype line)
{
    throw ConversionError(u"术语表第 %1 行有误，每行应为：术语,译法,备注。"_s.arg(line));
}

/// Reads the records of comma-separated values, one after another.
class Records
{
public:
    explicit Records(const QString &text)
        : m_text(text)
        , m_at(text.startsWith(QChar::ByteOrderMark) ? 1 : 0)
    {}

    bool atEnd() const { return m_at >= m_text.size(); }

    Record next()
    {
        Record record{.line = m_line};
        do
            record.fields.append(m_text.mid(m_at, 1) == u"\"" ? quoted() : plain());
        while (take(u','));
        take(u'\r');
        if (take(u'\n'))
            ++m_line;
        else if (!atEnd() && m_text[m_at - 1] != u'\r')
            refuse(m_line);
        return record;
    }

private:
    bool take(QChar character)
    {
        if (atEnd() || m_text[m_at] != character)
            return false;
        ++m_at;
        return true;
    }

    QString plain()
    {
        const qsizetype begin = m_at;
        while (!atEnd() && !QStringView(u",\r\n").contains(m_text[m_at]))
            ++m_at;
        return m_text.sliced(begin, m_at - begin);
    }

    QString quoted()
    {
        const qsizetype line = m_line;
        QString field;
        ++m_at;
        while (true) {
            if (atEnd())
                refuse(line);
            const QChar character = m_text[m_at++];
            if (character == u'"' && !take(u'"'))
                return field;
            if (character == u'\n')
                ++m_line;
            field.append(character);
        }
    }

    const QString &m_text;
    qsizetype m_at;
    qsizetype m_line = 1;
};

QString quotedField(QString field)
{
    if (!std::ranges::any_of(field, [](QChar c) { return QStringView(u",\"\r\n").contains(c); }))
        return field;
    return u'"' + field.replace(u'"', u"\"\""_s) + u'"';
}

/// The form in which texts are compared.
QString folded(const QString &text)
{
    return text.normalized(QString::NormalizationForm_KC).toCaseFolded();
}

bool isWordLetter(QChar character)
{
    return character.script() == QChar::Script_Latin || character.isDigit();
}

bool holds(const QString &foldedText, const QString &foldedTerm)
{
    for (qsizetype at = foldedText.indexOf(foldedTerm); at >= 0; at = foldedText.indexOf(foldedTerm, at + 1)) {
        const qsizetype end = at + foldedTerm.size();
        const bool runsOnBefore = at > 0 && isWordLetter(foldedTerm.front()) && isWordLetter(foldedText[at - 1]);
        const bool runsOnAfter =
            end < foldedText.size() && isWordLetter(foldedTerm.back()) && isWordLetter(foldedText[end]);
        if (!runsOnBefore && !runsOnAfter)
            return true;
    }
    return false;
}

} // namespace

QList<GlossaryTerm> fromCSV(const QString &text)
{
    QList<GlossaryTerm> terms;
    QSet<QString> known;
    for (Records records(text); !records.atEnd();) {
        Record record = records.next();
        for (QString &field : record.fields)
            field = Characters::trimmed(field).toString();
        const bool isEmpty = std::ranges::all_of(record.fields, [](const QString &field) { return field.isEmpty(); });
        if (isEmpty || record.fields.first(std::min<qsizetype>(2, record.fields.size())) == heading.first(2))
            continue;
        if (record.fields.size() < 2 || record.fields.size() > 3 || record.fields[0].isEmpty() ||
            record.fields[1].isEmpty() || std::ranges::any_of(record.fields, Characters::holdsControl))
            refuse(record.line);
        const auto isLong = [](const QString &field) { return Characters::isLonger(field, longestField); };
        if (terms.size() == mostTerms || std::ranges::any_of(record.fields, isLong))
            throw ConversionError(u"术语表最多 %1 条，每项不超过 %2 字。"_s.arg(mostTerms).arg(longestField));
        if (known.contains(folded(record.fields[0])))
            continue;
        known.insert(folded(record.fields[0]));
        terms.append({.term = record.fields[0], .rendering = record.fields[1], .note = record.fields.value(2)});
    }
    return terms;
}

QString toCSV(const QList<GlossaryTerm> &terms)
{
    const QString lineEnd = u"\r\n"_s;
    QString text = heading.join(u',') + lineEnd;
    for (const GlossaryTerm &term : terms)
        text += QStringList{quotedField(term.term), quotedField(term.rendering), quotedField(term.note)}.join(u',') +
                lineEnd;
    return text;
}

QList<GlossaryTerm> applying(const QList<GlossaryTerm> &terms, const QString &text)
{
    const QString searched = folded(text);
    QList<GlossaryTerm> result;
    for (const GlossaryTerm &term : terms) {
        if (holds(searched, folded(term.term)))
            result.append(term);
        else if (holds(searched, folded(term.rendering)))
            result.append({.term = term.rendering, .rendering = term.term, .note = term.note});
    }
    return result;
}

QList<GlossaryTerm> missing(const QList<GlossaryTerm> &terms, const QString &source, const QString &translation)
{
    QList<GlossaryTerm> result = applying(terms, source);
    const QString searched = folded(translation);
    result.removeIf([&](const GlossaryTerm &term) { return holds(searched, folded(term.rendering)); });
    return result;
}

} // namespace Glossary
