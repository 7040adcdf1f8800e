#pragma once

#include "core/Subtitle.h"
#include "core/review/Glossary.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

/// What a language model is asked about cues and how its answer is checked: the part that the local server and online
/// services have in common, and the local server's own requests. Nothing here asks anybody.
namespace SubtitleAI {

enum class Direction
{
    chineseToEnglish,
    englishToChinese,
};

QString title(Direction direction); ///< What the person reads: "中文 → English", "English → 中文".

enum class TextWork
{
    translation,
    proofreading, ///< In the language that the text has: the direction means nothing.
};

/// What goes with the rows beside their texts.
struct RowFields
{
    bool reference = false; ///< The original that the row translates (proofreading).
    bool terms = false;     ///< How terms of the row are to be rendered (translation).
};

/// What the model is told to do.
QString instruction(Direction direction, TextWork work, RowFields fields);

/// One cue as the model sees it.
struct RequestRow
{
    qint64 id = 0; ///< Its place in the batch, from 0.
    QString text;
    std::optional<QString> reference = {};
    QList<GlossaryTerm> terms = {}; ///< Those that stand in the text, and how they are to be rendered.

    friend bool operator==(const RequestRow &, const RequestRow &) = default;
};

/// The rows of a batch, without terms. `references` is empty, or as long as `rows` and in its order.
QList<RequestRow> requestRows(const QList<Subtitle> &rows, const QList<Subtitle> &references);

/// The terms of a row as they are sent: a JSON array.
QByteArray termsText(const QList<GlossaryTerm> &terms);

/// The rows as JSON text. "<|" does not occur in it: no cue can end its part of the prompt.
QByteArray rowsText(const QList<RequestRow> &rows);

/// @throws ConversionError unless there are as many references as cues, each with the id and times of its cue
void validateReferences(const QList<Subtitle> &references, const QList<Subtitle> &source);

/// Sizes of the batches in which `rows` are sent, in their order: at most `largest` characters in each, or one cue.
QList<qsizetype> batchSizes(const QList<Subtitle> &rows, qsizetype largest = 1'200);

/// The body of the request that asks the local server to answer `rows`.
QByteArray completionRequest(const QString &instruction, const QList<RequestRow> &rows);

/// What the model wrote, out of the local server's answer.
/// @throws ConversionError "翻译结果读取失败，原字幕已保留。", with the reason as detail
QString completionContent(QByteArrayView answer);

/// `source`, one batch, with the texts of the model's answer in their places: a JSON object with exactly one entry a
/// cue.
/// @throws ConversionError when it cannot be read, does not have each id once, or holds a text that no cue may have
QList<Subtitle> parseTranslations(QByteArrayView data, const QList<Subtitle> &source);

} // namespace SubtitleAI
