#pragma once

#include "fcp/timeline/TimeRange.h"

#include <libxml/tree.h>

#include <vector>

/// The components of a clip's sound (its channels, or its roles) as far as the document lists them.
///
/// A plan plays a file's sound whole: one component that is on lets all of them sound.
class AudioComponents
{
public:
    /// Takes the components among the children of a clip, or of a source of a synchronized clip.
    explicit AudioComponents(const std::vector<const xmlNode *> &children);
    explicit AudioComponents(const xmlNode *parent);

    bool areMuted() const;    ///< Some are listed, and none of them is on.
    bool haveEffects() const; ///< One that is on has an enabled audio filter.

    /// The factor of the loudest component that is on; 1 where none is. `sound` is the clip's range in its own time.
    double volume(const TimeRange &sound) const;

private:
    std::vector<const xmlNode *> m_on;
    bool m_listed = false;
};
