#pragma once

#include "store/KeptSessions.h"

/// The sessions whose place another one has taken: the newest ten.
class RecentSessions : public KeptSessions
{
public:
    static constexpr qsizetype most = 10;

    /// The folder need not exist.
    explicit RecentSessions(const QString &folder)
        : KeptSessions(folder, {.count = most})
    {}
};
