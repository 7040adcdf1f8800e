#pragma once

#include "app/model/FrozenCues.h"
#include "store/LintoraSession.h"

#include <deque>
#include <memory>
#include <vector>

struct FrozenTrack
{
    SubtitleTrack rest; ///< Without cues.
    std::shared_ptr<const FrozenCues> items;
    std::shared_ptr<const FrozenCues> previousItems; ///< Null when absent.
};

/// A session put away.
struct FrozenSession
{
    LintoraSession rest; ///< Without tracks and cues.
    QString title;       ///< What led to it; empty for the first.
    std::vector<std::shared_ptr<const FrozenTrack>> tracks;
};

/// All that a history is made of.
struct FrozenHistory
{
    std::deque<FrozenSession> past; ///< Oldest first.
    FrozenSession current;
    std::deque<FrozenSession> future; ///< The next one to be redone last.
};
