#pragma once

#include "core/Check.h"
#include "fcp/Rational.h"
#include "fcp/validation/Findings.h"

#include <QHash>

/// What the rules of the document type allow, and Final Cut Pro refuses, moves or shows otherwise all the same.
class KnownTroubles
{
public:
    /// Calls `check` every few milliseconds while it runs.
    KnownTroubles(const XmlDocument &document, Findings &findings, const Check &check = {});

    void run();

private:
    /// What holds for the children of an element.
    struct Timeline
    {
        std::optional<Rational> frameDuration = {}; ///< Seconds; absent when it does not tell.
        Rational begin = {};                        ///< Where its time begins. Seconds.
        bool straight = true;                       ///< Offsets count in the timeline's own frames.
        bool isStoryline = false;                   ///< Its children follow each other.
        bool holdsContent = false;                  ///< Its children may stand on no lane: they are what it shows.
        int depth = 0;
    };

    /// A caption's place, to find those that overlap.
    struct Span
    {
        Rational begin;
        Rational end;
    };

    void visit(const xmlNode *element, const Timeline &around);
    Timeline inside(const xmlNode *element, const Timeline &around) const;
    void checkResource(const xmlNode *element);
    void checkTimes(const xmlNode *element, const Timeline &around);
    void checkGrid(const xmlNode *element, QByteArrayView attribute, const Rational &base, const Timeline &around);
    void checkLane(const xmlNode *element, const Timeline &around);
    void checkReference(const xmlNode *element);
    void checkRange(const xmlNode *clip, const xmlNode *asset);
    void checkCaption(const xmlNode *caption);
    void checkCaptionsOf(const xmlNode *parent);

    void error(const xmlNode *element, const QString &rule, const QString &message, const QString &fix = {});
    void warning(const xmlNode *element, const QString &rule, const QString &message, const QString &fix = {});

    const XmlDocument &m_document;
    Findings &m_findings;
    SparseCheck m_check;
    QHash<QByteArray, const xmlNode *> m_resources;
};
