#pragma once

#include "core/Subtitle.h"

#include <QList>

/// A word, a piece of one, or a mark, with its time in milliseconds.
struct SpokenWord
{
    qint64 startMS = 0;
    qint64 endMS = 0;
    QString text; ///< As the service gave it, blanks included.
};

namespace SpokenWords {

/// Short phrases of at most 42 characters and 4 seconds. They end at punctuation and before a pause of over 600 ms.
/// Blanks stand where the writing has them: between Latin words, not between Chinese characters, none before closing
/// punctuation. Where the service itself says by a blank at its front that a piece begins a word, that counts.
QList<Subtitle> cues(const QList<SpokenWord> &words);

} // namespace SpokenWords
