#pragma once

#include "core/Subtitle.h"

#include <QStringList>

/// Tidies spoken-word cues: filler words go, punctuation goes, and a cue of several clauses becomes several cues.
namespace SubtitleCleanup {

/// The list that a new user starts with.
QStringList defaultFillerWords();

/// The words of a list as people type it: separated by line breaks, commas, semicolons or 、, each trimmed, none empty,
/// none twice, in the order of their first occurrence.
QStringList words(QStringView from);

/// The same for a list that is to be kept.
/// @throws ConversionError for more than 100 words, or a word of more than 60 characters.
QStringList savedWords(QStringView from);

/// `text` without filler words, trimmed; see FillerWords. A word goes wherever it stands, also within a longer word.
/// Without words the text stays as it stands.
QString removingFillers(const QString &text, const QStringList &words);

struct Switches
{
    bool removeFillers = false;
    bool removePunctuation = false; ///< Also splits each cue into its clauses.
};

/// The cleaned cues, numbered from 1. A cue without a letter or digit left is dropped, whatever the switches.
///
/// A cue that is split shares its time out by the clauses' lengths in characters; clause marks take no time. A clause
/// whose share rounds to nothing is dropped. For 「你好，世界。再见」:
///
///     0                  1000                2000               3000
///     |------- 你好 ------|------- 世界 -------|------- 再见 ------|
QList<Subtitle> apply(const QList<Subtitle> &items, Switches switches, const QStringList &fillerWords);

} // namespace SubtitleCleanup
