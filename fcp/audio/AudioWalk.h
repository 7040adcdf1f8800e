#pragma once

#include "core/Check.h"
#include "fcp/audio/FCPAudioSegment.h"
#include "fcp/audio/UnreadableClips.h"
#include "fcp/timeline/MediaResources.h"
#include "fcp/timeline/StoryElement.h"
#include "fcp/timeline/TimeMap.h"
#include "fcp/timeline/TimeRange.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

/// Walks the clips of a timeline, what is connected to them and what is nested in compound clips, and collects what
/// sounds.
///
/// Places are exact; a RationalOverflow passes through. The document must outlive the walk. It never takes longer than
/// a million elements do, however often a document shows its compound clips, and calls `check` every few milliseconds.
class AudioWalk
{
public:
    static constexpr int deepestCompound = 24;
    static constexpr int deepestNesting = 256;     ///< Of elements, so that the stack of any thread suffices.
    static constexpr int mostVisits = 1'000'000;   ///< Of elements.
    static constexpr qsizetype mostSegments = 250; ///< One more is collected, to show that there are too many.

    struct Found
    {
        QList<FCPAudioSegment> segments; ///< In document order.
        bool hasAudioEffects = false;
        QStringList skippedRetimedAudio;
        QStringList skippedUnreadable;
    };

    explicit AudioWalk(MediaResources &resources, UnreadableClips unreadable = UnreadableClips::refuse,
                       const Check &check = {});

    /// Collects what sounds in the storyline of a project within `window` of the plan, whose 0 is the sequence's start.
    /// @throws ConversionError
    void walkSequence(const StorySequence &sequence, const TimeRange &window);

    /// Collects what sounds in a clip that stands in no project, and in what is connected to it. The plan's 0 is
    /// `origin` in the time in which the clip's `offset` counts.
    /// @throws ConversionError
    void walkClip(const xmlNode *clip, const Rational &offset, const Rational &origin, const TimeRange &window);

    /// What is known of an element, for as long as the walk lives.
    /// @throws ConversionError as StoryElement::read
    const StoryElement &story(const xmlNode *element);

    /// How long a clip lies on its timeline: what it states, or what its resource does. Seconds; absent when neither
    /// tells.
    std::optional<Rational> length(const StoryElement &story);

    /// Where the last element of the sequence's storyline ends on the plan, 0 when there is none. Seconds.
    Rational storylineEnd(const StorySequence &sequence);

    const Found &found() const { return m_found; }

private:
    /// What the surroundings of an element mean for it.
    struct Place
    {
        TimeMap times = {};    ///< From the time in which its offset counts. The scale says how fast that time runs.
        Rational scale = 1;    ///< Plan seconds in which a second of its duration passes.
        TimeRange window = {}; ///< Outside of it nothing sounds. On the plan.
        std::optional<Rational> frameDuration = {}; ///< Seconds, of the timeline on which it lies.
        QSet<QByteArray> rolesOff = {};             ///< Roles that are switched off from outside ...
        QSet<QByteArray> connectedRolesOff = {};    ///< ... and for what is connected to it.
        double gain = 1;
        double connectedGain = 1;    ///< The same for what is connected to it.
        int clip = 0;                ///< The clip of several parts to which it belongs; 0 where it belongs to none.
        int compounds = 0;           ///< Compound clips around it.
        int nesting = 0;             ///< Elements around it.
        bool muted = false;          ///< Its own sound is switched off from outside ...
        bool connectedMuted = false; ///< ... or that of what is connected to it.
    };

    template <class Visitor>
    void forEachItem(const xmlNode *spine, const Rational &begin, Visitor &&visitor);

    void visit(const xmlNode *element, const Rational &offset, const Place &place);
    void visitStoryline(const StoryElement &spine, const Rational &offset, const Place &place);
    void visitConnected(const StoryElement &story, const TimeMap &own, const Place &place);
    void visitContent(const StoryElement &story, const TimeMap &own, const Place &place);
    void play(const StoryElement &story, const TimeMap &own, const Place &place);
    void playAsset(const StoryElement &story, const TimeMap &own, const Place &place);
    void playCompound(const StoryElement &story, const TimeMap &own, const Place &place);
    void add(const MediaAsset &asset, const TimeRange &piece, const TimeMap &own, double gain, int clip);
    bool canRead(const StoryElement &story, const Rational &begin, const std::function<void()> &read);

    StoryElement readLeniently(const xmlNode *element);
    void leaveOut(const xmlNode *element);

    bool canSound(const StoryElement &story, const Place &place);
    static TimeMap ownTimes(const StoryElement &story, const Rational &offset, const Place &place);
    TimeRange soundRange(const StoryElement &story, const TimeMap &own, const Place &place);
    Place inside(const StoryElement &story, const TimeMap &own, const Place &place);

    MediaResources &m_resources;
    UnreadableClips m_unreadable;
    SparseCheck m_check;
    std::unordered_map<const xmlNode *, StoryElement> m_stories;
    Found m_found;
    std::vector<int> m_clips;            ///< The clip of several parts to which each segment belongs.
    int m_clipCount = 0;                 ///< Of those.
    std::set<const xmlNode *> m_retimed; ///< Speed-changed clips that are counted already.
    std::set<const xmlNode *> m_unread;  ///< The same for those that could not be placed.
    int m_visits = 0;
};
