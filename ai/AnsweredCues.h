#pragma once

#include "core/Subtitle.h"

#include <QList>

#include <functional>

/// Cues whose texts a model or a service has answered with, while the answers still lie on the disk.
struct AnsweredCues
{
    QList<Subtitle> cues;

    /// Drops the answers: the same work asked again is asked anew. To be called once, when the cues are where the
    /// person finds them; until then a repetition costs nothing. Never empty, does not throw.
    std::function<void()> forget;
};
