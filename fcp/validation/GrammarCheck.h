#pragma once

#include "fcp/validation/DocumentGrammar.h"
#include "fcp/validation/Findings.h"
#include "fcp/xml/XmlListener.h"

#include <QSet>

/// Holds a document against the rules of its version while it is parsed: no tree is needed for that.
class GrammarCheck final : public XmlListener
{
public:
    explicit GrammarCheck(const DocumentGrammar &grammar)
        : m_grammar(grammar)
    {}

    bool begin(const XmlTag &tag, const xmlNode *parent, int line) override;
    void text(QByteArrayView text, bool section) override;
    void end() override;

    /// What was found, at the document's end: by element, then what refers to nothing.
    void tell(Findings &findings);

private:
    /// In this order all that is said of an element and its children is told.
    enum class About
    {
        content,
        choices,
        text,
        attributes
    };

    struct Told
    {
        size_t turn; ///< The number of the element whose rule says so.
        About about;
        Findings::Place place;
        QString rule;
        QString message;
        QString fix;
    };

    /// An element that has begun and has not ended.
    struct Open
    {
        size_t number;
        int line;
        const DocumentGrammar::Element *rule = nullptr; ///< Null where this version has no such element.
        size_t at = 0;                                  ///< The place of the rule's content that was reached.
        bool filled = false;                            ///< Whether a child stands there.
        bool strayText = false;
        int choice = 0; ///< What checkChoice counts.
    };

    struct Reference
    {
        Findings::Place place;
        QByteArray id;
    };

    static Findings::Place placeOf(const Open &element); ///< One that has a rule.
    void checkChild(Open &parent, const XmlTag &tag, int number, int line);
    void checkChoice(Open &parent, const XmlTag &tag, int line);
    void checkAttributes(const Open &element, const XmlTag &tag, int number);
    void checkValue(const Open &element, const DocumentGrammar::Attribute &rule, const XmlTag::Attribute &attribute);
    void missing(const Open &element, const DocumentGrammar::Group &group);
    void tell(size_t turn, About about, Findings::Place place, const QString &rule, const QString &message,
              const QString &fix = {});
    void sort();

    const DocumentGrammar &m_grammar;
    size_t m_count = 0; ///< Of the elements so far.
    std::vector<Open> m_open;
    std::vector<Told> m_told;
    QSet<QByteArray> m_ids;
    std::vector<Reference> m_references; ///< To ids that had not been met yet.
};
