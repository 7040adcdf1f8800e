#include "fcp/titles/SubtitleTransfer.h"

#include "core/files/Utf8Writer.h"
#include "fcp/titles/NewDocument.h"

namespace SubtitleTransfer {

QByteArray clip(const QList<Subtitle> &cues, const Options &options, const Check &check)
{
    return clip({{.cues = cues, .options = options}}, check);
}

QByteArray clip(const std::vector<TitleTrack> &tracks, const Check &check)
{
    QByteArray bytes;
    Utf8Writer out([&](QByteArrayView block) {
        if (check)
            check();
        bytes.append(block);
    });
    NewDocument::clip(tracks, check).write(out);
    return bytes;
}

} // namespace SubtitleTransfer
