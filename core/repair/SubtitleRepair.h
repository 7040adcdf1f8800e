#pragma once

#include "core/repair/RepairLog.h"
#include "core/repair/TextEncoding.h"

#include <functional>

/// A subtitle file read by choice although it is damaged, in another encoding or in another format.
struct RepairedFile
{
    QString encoding;                   ///< One of TextEncoding::names().
    double certainty = 0;               ///< 0 to 1; 1 where a person named the encoding.
    QList<TextEncoding::Guess> guesses; ///< All that it may be, the likeliest first.
    QList<FileRepair> repairs;          ///< By line. Empty when the file is in order.
    QList<Subtitle> items;              ///< Valid: the strict reader takes what is written of them.
};

namespace SubtitleRepair {

/// Reads SubRip, WebVTT, ASS or SSA, whatever `bytes` hold. With an empty `encoding` the likeliest is taken. A file
/// that the strict reader takes comes out as from there, without repairs.
/// @throws ConversionError for an encoding that is not known or not recognised, or when there is no cue in the file
RepairedFile read(const QByteArray &bytes, const QString &encoding, const std::function<void()> &check);

} // namespace SubtitleRepair
