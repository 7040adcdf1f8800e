#pragma once

#include <QByteArray>
#include <QHash>

#include <libxml/tree.h>

#include <unordered_map>
#include <vector>

/// The rules of one version of the document type, ready to be asked.
class DocumentGrammar
{
public:
    struct Attribute
    {
        QByteArray name;
        bool required = false;
        bool isId = false;
        bool refersToId = false;
        QByteArrayList values = {}; ///< Those allowed; empty for any.
    };

    /// What may stand at one place of an element's content.
    struct Group
    {
        std::vector<bool> allowed; ///< By the number of an element.
        QByteArrayList names;      ///< The same, for messages.
        bool required = false;
        bool repeats = false;
    };

    struct Element
    {
        QByteArray name;
        std::vector<Attribute> attributes = {};
        std::vector<Group> content = {};
        bool holdsText = false;
        int required = 0; ///< How many of its attributes are.
    };

    /// `minor` is the version's minor number, DocumentRules::oldest to newest.
    explicit DocumentGrammar(int minor);
    ~DocumentGrammar() = default;
    Q_DISABLE_COPY_MOVE(DocumentGrammar)

    int number(const xmlChar *name) const; ///< Of an element; -1 when this version has none of that name.
    const Element &element(int number) const { return m_elements[size_t(number)]; }

    /// The attribute of that name that the element may have, null when there is none.
    const Attribute *attribute(int number, const xmlChar *name) const;

private:
    void readContent(Element &element, QByteArrayView content);

    QHash<QByteArray, int> m_numbers;
    std::vector<Element> m_elements;
    /// A document's names are kept once, so that their addresses tell them apart.
    mutable std::unordered_map<const xmlChar *, int> m_known;
    mutable std::vector<std::vector<std::pair<const xmlChar *, const Attribute *>>> m_knownAttributes; ///< By element.
    int m_minor;
};
