#pragma once

#include "core/Check.h"
#include "core/ConversionError.h"
#include "fcp/Options.h"
#include "fcp/audio/FCPAudioSegment.h"
#include "fcp/audio/UnreadableClips.h"
#include "fcp/xml/XmlDocument.h"

#include <QList>
#include <QStringList>

#include <optional>

class JsonWriter;

/// Refuses a timeline on which nothing can be heard, and that has no other fault.
class NothingAudible : public ConversionError
{
public:
    using ConversionError::ConversionError;
};

/// Which pieces of which files sound where on the timeline of a Final Cut Pro project or of selected clips.
struct FCPAudioPlan
{
    QString name = {}; ///< Of the project, or of the first selected clip.

    /// By offset, equal ones in document order. At least 1, at most 250; they may overlap.
    QList<FCPAudioSegment> segments = {};
    double duration = 0; ///< Seconds, above 0 and at most three hours. No segment reaches beyond it.

    /// Matched to the timeline; absent when its frame rate is not known, or not supported.
    std::optional<Options> settings = {};
    bool hasAudioEffects = false; ///< Some clip has audio filters, which the plan leaves out.

    /// Names of speed-changed clips whose own sound was left out, one for each clip.
    QStringList skippedRetimedAudio = {};

    /// Names of clips whose sound could not be placed and was left out, one for each clip.
    QStringList skippedUnreadable = {};

    /// Plans dragged data: a document of at most 16 MiB with one project, one clip, or several clips with offsets.
    /// @throws ConversionError with the sentence that says what cannot be planned; NothingAudible is one.
    /// @throws PlatformError when the data is no XML.
    static FCPAudioPlan parse(QByteArrayView data, UnreadableClips unreadable = UnreadableClips::refuse);

    /// Plans a document that was read from a file. Calls `check` every few milliseconds. @throws ConversionError as
    /// above
    static FCPAudioPlan parse(const XmlDocument &document, UnreadableClips unreadable = UnreadableClips::refuse,
                              const Check &check = {});

    /// Tells how many clips were left out for their speed change; absent when none was.
    std::optional<QString> retimeNotice() const;

    /// Tells how many clips were left out because they could not be placed, and the first; absent when none was.
    std::optional<QString> unreadableNotice() const;

    friend bool operator==(const FCPAudioPlan &, const FCPAudioPlan &) = default;
};

/// Writes the plan as an object with the field names as keys, "retimeNotice" where there is one, and
/// "skippedUnreadable" where it is not empty. Absent fields are left out.
void writeAudioPlan(JsonWriter &json, const FCPAudioPlan &plan);
