#pragma once

#include "core/Check.h"
#include "fcp/timeline/MediaResources.h"
#include "fcp/timeline/TimeMap.h"
#include "fcp/timeline/TimeRange.h"

#include <QString>

#include <vector>

/// Walks a timeline as it is shown, and finds where its titles and captions stand: in the primary storyline, connected
/// to it, in connected storylines, auditions, compound, synchronized and multicam clips.
///
/// Places are exact. What cannot be placed is found too, with the reason; nothing is guessed. The document must outlive
/// the walk.
class TextWalk
{
public:
    static constexpr int deepestNesting = 256; ///< Of elements, so that the stack of any thread suffices.
    static constexpr int mostVisits = 500'000; ///< Of elements, however often compound clips show them.

    struct Found
    {
        const xmlNode *element = nullptr; ///< A "title" or a "caption".
        qint64 lane = 0;                  ///< Its own, or that of the storyline or audition that holds it.
        QString obstacle = {};            ///< Why it shows nothing, for the user; all that follows is unset then.
        TimeMap parentTimes = {};         ///< From the time in which its offset counts to the timeline.
        Rational scale = 1;               ///< Timeline seconds in which a second of its duration passes.
        Rational offset = {};             ///< Where it begins, in that time. Seconds.
        TimeRange shown = {};             ///< What is seen of it, on the timeline. Has an end, and is not empty.
        bool cut = false;                 ///< Whether `shown` is less than all of it.
    };

    /// Calls `check` every few milliseconds while it walks.
    explicit TextWalk(MediaResources &resources, const Check &check = {});

    /// Whether no walk looks at an element of that name in `parent`, nor at what stands in it: the looks of titles, and
    /// what was done to clips. That is most of a document.
    static bool passesOver(const xmlNode *parent, QByteArrayView name);

    /// Walks the storyline of a sequence, whose beginning is the timeline's 0.
    /// @throws ConversionError when compound clips show more than can be walked.
    void walkSequence(const StorySequence &sequence);

    /// Walks a clip that stands in no sequence, and what is connected to it. The timeline's 0 is `origin` in the time
    /// in which `offset` counts. @throws ConversionError as above
    void walkClip(const xmlNode *clip, const Rational &offset, const Rational &origin);

    /// How long an element lies on its timeline: what it states, or what its resource does. Seconds; absent when
    /// neither tells.
    std::optional<Rational> length(const xmlNode *element);

    /// Seconds that a frame of the walked timeline lasts, absent when it does not tell.
    std::optional<Rational> frameDuration() const { return m_frameDuration; }

    std::vector<Found> takeFound() { return std::move(m_found); } ///< In document order.

private:
    /// What the surroundings of an element mean for it.
    struct Place
    {
        TimeMap times = {};                         ///< From the time in which its offset counts.
        Rational scale = 1;                         ///< Timeline seconds in which a second of its duration passes.
        TimeRange window = {};                      ///< Outside of it nothing is seen. On the timeline.
        std::optional<Rational> frameDuration = {}; ///< Seconds, of the timeline on which it lies.
        qint64 lane = 0;                            ///< Of elements that state none.
        QString obstacle = {};                      ///< Why nothing here is seen; empty when it is.
        int nesting = 0;
    };

    void visit(const xmlNode *element, const Rational &offset, Place place);
    void visitItems(const xmlNode *parent, const Rational &begin, const Place &place);
    void visitAudition(const xmlNode *audition, const Rational &offset, const Place &place);
    void visitConnected(const xmlNode *element, const TimeMap &own, const Place &place);
    void visitContent(const xmlNode *element, const TimeMap &own, const Place &place);
    void visitChildContent(const xmlNode *element, const Place &inside);
    void visitCompound(const xmlNode *clip, Place inside);
    void visitAngles(const xmlNode *clip, Place inside);
    void add(const xmlNode *element, const Rational &offset, const TimeMap &own, const Place &place);

    static TimeMap ownTimes(const xmlNode *element, const Rational &offset, Place &place);
    Place inside(const xmlNode *element, const TimeMap &own, const Place &place);

    MediaResources &m_resources;
    SparseCheck m_check;
    std::vector<Found> m_found;
    std::optional<Rational> m_frameDuration;
    int m_visits = 0;
};
