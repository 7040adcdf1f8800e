#pragma once

#include "core/Subtitle.h"

#include <QStringList>

#include <functional>

/// Chinese texts in the other script, phrase by phrase: 後來頭髮乾燥 ↔ 后来头发干燥. Words of one region are not
/// exchanged for those of another.
namespace ChineseScript {

enum class Target
{
    simplified,
    traditional
};

/// The cues with their texts in the script `to`; ids, times, line feeds and all that is not Chinese stay. What is
/// written that way already stays too, but text that mixes both scripts may come out otherwise than it went in.
///
/// `kept` are proper names that stay as they are written, wherever they stand; of two at one place the longer counts.
/// `check` is called every few milliseconds; what it throws passes through. The first call of a process reads the
/// dictionaries, some milliseconds.
/// @throws PlatformError when the dictionaries are not installed
QList<Subtitle> converted(const QList<Subtitle> &items, Target to, const QStringList &kept,
                          const std::function<void()> &check);

} // namespace ChineseScript
