#pragma once

#include "fcp/Rational.h"

#include <QUrl>

#include <libxml/tree.h>

#include <optional>

/// What an "asset" resource says of its file's sound.
struct MediaAsset
{
    bool hasSound = false;                 ///< Only the duration is read where there is none.
    Rational start = {};                   ///< The time that clips call the file's first moment. Seconds.
    std::optional<Rational> duration = {}; ///< Seconds, above 0; absent when it is not told.
    std::optional<QUrl> file = {};         ///< A file URL. Absent when the document names no file.

    /// Reads an "asset" element of any version.
    /// @throws ConversionError "FCP 时间值无效。"
    static MediaAsset read(const xmlNode *asset);
};
