#pragma once

#include "store/LintoraSession.h"

/// Ready-made jobs.
namespace Sessions {

/// A job in which every field is filled and none has its default: two tracks, an undo copy, a selection.
LintoraSession full();

/// A job of `cues` cues. `source` is the text of every cue too, so that a mixture of two versions shows.
LintoraSession uniform(const QString &source, qsizetype cues = 20);

/// Whether `session` is uniform(session.source) of that length.
bool isUniform(const LintoraSession &session);

} // namespace Sessions
