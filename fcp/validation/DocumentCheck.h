#pragma once

#include "core/Check.h"
#include "fcp/validation/Problem.h"

#include <QByteArray>
#include <QList>

/// Says what is wrong with an FCPXML document: against the rules of its version, and against what is known to make
/// Final Cut Pro refuse a document, or move and change what is in it.
namespace DocumentCheck {

inline constexpr qsizetype mostProblems = 1'000; ///< One more says that there are further ones.
inline constexpr qsizetype mostTold = 5;         ///< With what has been written, where all can be had by another way.

/// The problems of a document, by line. Calls `check` every few milliseconds.
/// @throws ConversionError "不支持含外部实体的 XML。"; PlatformError when it is no XML, naming the line.
QList<Problem> problems(QByteArrayView bytes, const Check &check = {});

} // namespace DocumentCheck
