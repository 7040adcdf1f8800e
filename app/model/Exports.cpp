#include "app/model/Exports.h"

#include "app/model/Imports.h"
#include "core/ConversionError.h"
#include "core/SRT.h"
#include "core/files/AtomicFile.h"
#include "core/files/Utf8Writer.h"
#include "core/text/Characters.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/TitleFile.h"
#include "fcp/titles/WrittenTitles.h"
#include "fcp/validation/DocumentCheck.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace Exports {

void writeSRT(const QString &path, const QList<Subtitle> &cues, Job &job)
{
    if (cues.isEmpty())
        throw ConversionError(u"请先打开 SRT。"_s);
    AtomicFile file(path);
    Utf8Writer out([&](QByteArrayView block) {
        job.check();
        file.write(block);
    });
    SRT::serialize(cues, out);
    file.sync();
    job.check();
    file.commit(AtomicFile::Durability::powerCut);
}

qsizetype writeAllSRT(const QString &folder, const QString &name, const QList<SubtitleTrack> &tracks, Job &job)
{
    qsizetype written = 0;
    for (const SubtitleTrack &track : tracks) {
        if (track.items.isEmpty())
            continue;
        const QString base = QDir(folder).filePath(fileName(tracks.size() > 1 ? name + u'_' + track.label : name));
        QString path = base + u".srt"_s;
        for (int number = 2; QFileInfo::exists(path) || QFileInfo(path).isSymLink(); ++number)
            path = u"%1 %2.srt"_s.arg(base).arg(number);
        writeSRT(path, track.items, job);
        ++written;
    }
    if (written == 0)
        throw ConversionError(u"请先打开 SRT。"_s);
    return written;
}

QList<Problem> writeTitles(const QString &path, const std::vector<TitleTrack> &tracks,
                           const std::optional<FCPProject> &project, Job &job)
{
    const Check check = [&] { job.check(); };
    auto base = project ? std::optional(Imports::document(*project, check)) : std::nullopt;
    job.check();
    const TitleDocument document = FCPXML::convert(tracks, std::move(base), {}, check);
    QList<Problem> problems;
    TitleFile::write(
        path, document,
        [&](QByteArrayView written) {
            WrittenTitles::verify(written, document.marks(), tracks, {}, check);
            problems = DocumentCheck::problems(written, check);
        },
        check);
    return problems;
}

QString fileName(const QString &name)
{
    QString kept;
    for (const QChar c : name)
        kept += c == u'/' || c == u':' || c == u'\\' || c.unicode() < u' ' ? QChar(u'_') : c;
    kept = kept.trimmed();
    while (kept.startsWith(u'.'))
        kept.remove(0, 1);
    constexpr qsizetype longest = 80; // UTF-16 code units; file systems take 255 bytes, three for a Chinese character
    qsizetype length = std::min(longest, kept.size());
    while (!Characters::isBoundary(kept, length))
        --length;
    kept.truncate(length);
    return kept.isEmpty() ? u"字幕"_s : kept;
}

} // namespace Exports
