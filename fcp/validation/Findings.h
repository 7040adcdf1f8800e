#pragma once

#include "fcp/validation/DocumentCheck.h"
#include "fcp/validation/DocumentSketch.h"
#include "fcp/xml/XmlDocument.h"

#include <vector>

/// Collects problems while a document is walked.
class Findings
{
public:
    struct Place
    {
        size_t number = 0;    ///< Among the document's elements, from 0.
        QByteArray name = {}; ///< As a tree would have it.
        int line = 0;         ///< On which its tag ends, as the parser counts, from 1.
    };

    static Place placeOf(const DocumentSketch::Element &element);

    void add(const Place &place, const QString &rule, Problem::Severity severity, const QString &message,
             const QString &fix = {});

    /// The problems by line, whose numbers are looked up in `bytes` if these are UTF-8.
    QList<Problem> finish(QByteArrayView bytes, const XmlDocument &document);

private:
    struct Found
    {
        size_t number;
        Problem problem;
    };

    void findLines(QByteArrayView bytes);

    std::vector<Found> m_found;
};
