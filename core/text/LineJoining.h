#pragma once

#include <QString>

/// Makes one text of the texts of two cues that follow one another.
namespace LineJoining {

/// `first` and `second` as one text. Where every line has a language of its own, each goes on in its line:
/// ```
///   你好        世界        你好世界
///   Hello   +   world   =   Hello world
/// ```
/// Else, and where a line has no letters, the last line of `first` goes on with the first one of `second`. Two lines
/// become one with a blank between them; without one where Chinese or Japanese writing goes on, which has none.
QString joined(const QString &first, const QString &second);

} // namespace LineJoining
