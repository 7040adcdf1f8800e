#include "fcp/SubtitleTransfer.h"

#include "fcp/NewDocument.h"

namespace SubtitleTransfer {

QByteArray clip(const QList<Subtitle> &cues, const Options &options)
{
    return NewDocument::clip(cues, options).toUtf8();
}

} // namespace SubtitleTransfer
