#pragma once

#include "core/Check.h"
#include "fcp/Rational.h"
#include "fcp/validation/DocumentSketch.h"
#include "fcp/validation/Findings.h"
#include "fcp/xml/XmlDocument.h"

#include <QHash>

/// What the rules of the document type allow, and Final Cut Pro refuses, moves or shows otherwise all the same.
class KnownTroubles
{
public:
    /// Calls `check` every few milliseconds while it runs.
    KnownTroubles(const XmlDocument &document, const DocumentSketch &sketch, Findings &findings,
                  const Check &check = {});

    void run();

private:
    using Element = DocumentSketch::Element;

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

    /// What an attribute of `element` refers to, null when that is nothing.
    const Element *resource(const Element *element, QByteArrayView attribute) const;

    void visit(const Element *element, const Timeline &around);
    Timeline inside(const Element *element, const Timeline &around) const;
    void checkResource(const Element *element);
    void checkTimes(const Element *element, const Timeline &around);
    void checkGrid(const Element *element, QByteArrayView attribute, const std::optional<Rational> &time,
                   const Rational &base, const Timeline &around);
    void checkLane(const Element *element, const Timeline &around);
    void checkReference(const Element *element);
    void checkRange(const Element *clip, const Element *asset);
    void checkCaption(const Element *caption);
    void checkCaptionsOf(const Element *parent);

    void error(const Element *element, const QString &rule, const QString &message, const QString &fix = {});
    void warning(const Element *element, const QString &rule, const QString &message, const QString &fix = {});

    const XmlDocument &m_document;
    const DocumentSketch &m_sketch;
    Findings &m_findings;
    SparseCheck m_check;
    QHash<QByteArray, const Element *> m_resources;
};
