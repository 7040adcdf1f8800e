#include "core/ConversionError.h"
#include "core/text/LanguageSeparation.h"
#include "core/text/ScriptAlignment.h"
#include "core/text/SubtitleCleanup.h"

#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void clean(const QList<Subtitle> &cues, const QStringList &words)
{
    qint64 id = 0;
    qint64 time = 0;
    for (const Subtitle &piece :
         SubtitleCleanup::apply(cues, {.removeFillers = true, .removePunctuation = true}, words)) {
        require(piece.id == ++id && piece.start >= time && piece.end > piece.start && !piece.text.isEmpty());
        time = piece.end;
    }
    require(time <= cues.back().end);
}

void align(const QList<Subtitle> &cues, const QString &transcript)
{
    try {
        const ScriptMatchResult result = ScriptAlignment::match(transcript, cues, [] {});
        require(result.rows.size() == cues.size());
        for (const ScriptMatchRow &row : result.rows)
            require(row.original == cues[row.id] && row.confidence <= 1 &&
                    row.replacement.has_value() == (row.confidence > 0));
    } catch (const ConversionError &) {
    }
}

} // namespace

/// Any text as a word list, cues and a transcript, one after the other with a form feed between; the cues separated by
/// vertical tabs.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QStringList parts = text.split(u'\f');
    QList<Subtitle> cues;
    for (const QString &cue : parts.value(1).split(u'\v'))
        cues.append({.id = cues.size(), .start = cues.size() * 1000, .end = cues.size() * 1000 + 997, .text = cue});
    clean(cues, SubtitleCleanup::words(parts.value(0)));
    align(cues, parts.value(2));
    LanguageSeparation::split(cues);
    return 0;
}
