#pragma once

#include "fcp/validation/DocumentCheck.h"
#include "fcp/xml/XmlDocument.h"

#include <vector>

/// Collects problems while a document is walked.
class Findings
{
public:
    void add(const xmlNode *element, const QString &rule, Problem::Severity severity, const QString &message,
             const QString &fix = {});

    /// The problems by line, whose numbers are looked up in `bytes` if these are UTF-8.
    QList<Problem> finish(QByteArrayView bytes, const XmlDocument &document);

private:
    struct Found
    {
        const xmlNode *element;
        Problem problem;
    };

    std::vector<Found> m_found;
};
