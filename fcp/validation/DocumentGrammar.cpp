#include "fcp/validation/DocumentGrammar.h"

#include "fcp/validation/DocumentRules.h"

#include <algorithm>

namespace {

/// A name with the versions that have it: "media-rep@9", "bookmark<9".
struct Dated
{
    QByteArray name;
    int since = DocumentRules::oldest;
    int until = DocumentRules::newest + 1; ///< The first version that has it no more.

    bool isIn(int minor) const { return since <= minor && minor < until; }
};

Dated dated(QByteArray text)
{
    Dated result;
    if (const qsizetype at = text.indexOf('<'); at >= 0) {
        result.until = text.sliced(at + 1).toInt();
        text.truncate(at);
    }
    if (const qsizetype at = text.indexOf('@'); at >= 0) {
        result.since = text.sliced(at + 1).toInt();
        text.truncate(at);
    }
    result.name = text;
    return result;
}

QByteArray spelledOut(QByteArrayView text)
{
    QByteArray result = text.toByteArray();
    for (const auto &[word, meaning] : DocumentRules::abbreviations())
        result.replace(word, meaning);
    return result;
}

/// Takes the sign off the end of a word, if it is there.
bool takeSign(QByteArray &word, char sign)
{
    if (!word.endsWith(sign))
        return false;
    word.chop(1);
    return true;
}

} // namespace

DocumentGrammar::DocumentGrammar(int minor)
    : m_minor(minor)
{
    std::vector<const DocumentRules::Element *> rules;
    for (const DocumentRules::Element &each : DocumentRules::elements()) {
        const Dated name = dated(each.name.toByteArray());
        if (!name.isIn(minor))
            continue;
        m_numbers.insert(name.name, int(rules.size()));
        rules.push_back(&each);
        m_elements.push_back({.name = name.name});
    }
    for (size_t i = 0; i < rules.size(); ++i) {
        readContent(m_elements[i], rules[i]->content);
        const QByteArrayList words = spelledOut(rules[i]->attributes).split(' ');
        for (QByteArray word : words) {
            Attribute attribute{.name = {}, .required = takeSign(word, '!')};
            if (const qsizetype equals = word.indexOf('='); equals >= 0) {
                attribute.values = word.sliced(equals + 1).split('|');
                word.truncate(equals);
            }
            attribute.isId = takeSign(word, '#');
            attribute.refersToId = takeSign(word, '&');
            const Dated name = dated(word);
            attribute.name = name.name;
            if (!name.name.isEmpty() && name.isIn(minor))
                m_elements[i].attributes.push_back(std::move(attribute));
        }
        m_elements[i].required =
            int(std::ranges::count_if(m_elements[i].attributes, &DocumentGrammar::Attribute::required));
    }
    m_knownAttributes.resize(m_elements.size());
}

void DocumentGrammar::readContent(Element &element, QByteArrayView content)
{
    const QByteArrayList words = spelledOut(content).split(' ');
    for (QByteArray word : words) {
        if (word.isEmpty())
            continue;
        Group group{.allowed = std::vector<bool>(m_elements.size()), .names = {}};
        const bool optional = takeSign(word, '?');
        const bool any = takeSign(word, '*');
        const bool some = takeSign(word, '+');
        group.repeats = any || some;
        const QByteArrayList alternatives = word.split('|');
        for (const QByteArray &each : alternatives) {
            const Dated name = dated(each);
            if (name.name == "#PCDATA")
                element.holdsText = true;
            else if (const auto number = m_numbers.constFind(name.name);
                     number != m_numbers.cend() && name.isIn(m_minor)) {
                group.allowed[size_t(*number)] = true;
                group.names.append(name.name);
            }
        }
        group.required = !optional && !any && !group.names.isEmpty() && !element.holdsText;
        if (!group.names.isEmpty())
            element.content.push_back(std::move(group));
    }
    // Beside text, elements may stand anywhere and as often as one likes.
    if (element.holdsText && !element.content.empty())
        element.content.front().repeats = true;
}

int DocumentGrammar::number(const xmlChar *name) const
{
    const auto known = m_known.find(name);
    if (known != m_known.end())
        return known->second;
    const int number = m_numbers.value(QByteArray(reinterpret_cast<const char *>(name)), -1);
    m_known.emplace(name, number);
    return number;
}

const DocumentGrammar::Attribute *DocumentGrammar::attribute(int number, const xmlChar *name) const
{
    auto &known = m_knownAttributes[size_t(number)];
    const auto seen = std::ranges::find(known, name, &std::pair<const xmlChar *, const Attribute *>::first);
    if (seen != known.end())
        return seen->second;
    const auto &attributes = element(number).attributes;
    const auto found =
        std::ranges::find(attributes, QByteArrayView(reinterpret_cast<const char *>(name)), &Attribute::name);
    if (found == attributes.end())
        return nullptr; // not kept: a document may have any number of them
    known.emplace_back(name, &*found);
    return &*found;
}
