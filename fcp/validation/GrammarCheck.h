#pragma once

#include "core/Check.h"
#include "fcp/validation/DocumentGrammar.h"
#include "fcp/validation/Findings.h"

#include <QSet>

/// Holds a document against the rules of its version.
class GrammarCheck
{
public:
    GrammarCheck(const DocumentGrammar &grammar, Findings &findings)
        : m_grammar(grammar)
        , m_findings(findings)
    {}

    void run(const XmlDocument &document, const Check &check = {}); ///< Calls `check` every few milliseconds.

private:
    void checkContent(const xmlNode *element, const DocumentGrammar::Element &rule);
    void checkChoices(const xmlNode *element, const DocumentGrammar::Element &rule);
    void checkText(const xmlNode *element, const DocumentGrammar::Element &rule);
    void checkAttributes(const xmlNode *element, const DocumentGrammar::Element &rule);
    void checkValue(const xmlNode *element, const DocumentGrammar::Attribute &rule, const QByteArray &value);
    void checkReferences();

    const DocumentGrammar &m_grammar;
    Findings &m_findings;
    QSet<QByteArray> m_ids;
    std::vector<std::pair<const xmlNode *, QByteArray>> m_references;
};
