#pragma once

#include "ai/speech/Transcript.h"
#include "core/HeardWord.h"

#include <QList>

/// What the local recogniser is asked and what it answers where the times of single words are wanted.
namespace SubtitleAI {

/// As speechArguments, with everything that the recogniser knows of each word in the result.
QStringList wordTimeArguments(const QString &model, const QString &pcm, const QString &result, SpeechLanguage language);

/// The words of the recogniser's full JSON, in the order of their times; in Chinese mostly single characters, marks
/// too. A word begins with a blank where one stands before it. A character that was cut in two is one word again. Of
/// a segment without words the whole text is one. None begins at or ends after `maximumEndMS`.
/// @throws ConversionError when it cannot be read, with the reason as detail
QList<HeardWord> parseWordTimes(QByteArrayView data, std::optional<qint64> maximumEndMS = {});

} // namespace SubtitleAI
