#include "fcp/titles/SubtitleTransfer.h"

#include "fcp/titles/NewDocument.h"

namespace SubtitleTransfer {

QByteArray clip(const QList<Subtitle> &cues, const Options &options)
{
    return NewDocument::clip(cues, options).toUtf8();
}

} // namespace SubtitleTransfer
