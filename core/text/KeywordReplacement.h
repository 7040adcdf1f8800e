#pragma once

#include "core/Subtitle.h"

/// One cue in which a keyword was found: a row of the preview.
struct KeywordMatch
{
    qint64 id = 0;          ///< The cue's position in the list, from 0. (Not the cue's own id.)
    Subtitle cue;           ///< The cue as it is.
    QString after;          ///< The cue's whole text with every occurrence replaced, untrimmed.
    qint64 occurrences = 0; ///< At least 1.

    bool becomesEmpty() const; ///< Whether `after` holds nothing but white space: applying removes the cue.

    friend bool operator==(const KeywordMatch &, const KeywordMatch &) = default;
};

Q_DECLARE_TYPEINFO(KeywordMatch, Q_RELOCATABLE_TYPE);

/// Find and replace in all cues.
///
/// The search is literal, UTF-16 code unit by code unit: case, width and accents count, there are no patterns and no
/// whole words. Occurrences do not overlap: each search goes on behind the last hit, so that 「aaa」 holds 「aa」 once.
namespace KeywordReplacement {

constexpr qsizetype longestQuery = 200;        ///< Characters.
constexpr qsizetype longestReplacement = 2000; ///< Characters.

/// The preview: a row for each cue that holds `query`, in order. An empty query has none, nor has one over its limit or
/// with a replacement over its limit. A word replaced by itself is listed like any other.
QList<KeywordMatch> matches(const QList<Subtitle> &items, const QString &query, const QString &replacement);

struct Outcome
{
    QList<Subtitle> items;  ///< All cues in order, with their ids and times; without those that became empty.
    qint64 occurrences = 0; ///< Replaced in all.
    qint64 changedCues = 0; ///< Those removed included.
};

/// Replaces `query` by `replacement`, which may be empty and may hold line feeds. Cues whose text stays the same count
/// for nothing.
/// @throws ConversionError as validate does; nothing else fails.
Outcome apply(const QList<Subtitle> &items, const QString &query, const QString &replacement);

/// @throws ConversionError for an empty query, for either text over its limit, and for control characters in the
/// replacement other than tab and line feed.
void validate(const QString &query, const QString &replacement);

} // namespace KeywordReplacement
