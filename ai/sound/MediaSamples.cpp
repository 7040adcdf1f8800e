#include "ai/sound/MediaSamples.h"

#include "ai/HelperProcess.h"
#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/sound/SamplePipe.h"
#include "core/ConversionError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace MediaSamples {

namespace {

constexpr qint64 largestLog = 1024 * 1024; ///< Bytes that are read of what the helper says.

QByteArray said(const QString &path)
{
    QFile log(path);
    return log.open(QIODevice::ReadOnly) ? log.read(largestLog) : QByteArray();
}

[[noreturn]] void refuse(const QString &path, const QByteArray &log)
{
    refuseMissing(path); // it may have gone meanwhile
    const QString reason = complaint(log);
    if (reason.contains("matches no streams"_L1))
        throw ConversionError(u"这个文件里没有声音。"_s, reason);
    throw ConversionError(u"无法读取这个文件的声音，请确认它可以正常播放。"_s, reason);
}

} // namespace

void refuseMissing(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isFile())
        throw ConversionError(u"找不到这个音视频文件，可能已移动或删除。"_s, QDir::toNativeSeparators(path));
    if (!file.isReadable())
        throw ConversionError(u"没有读取这个音视频文件的权限。"_s, QDir::toNativeSeparators(path));
}

QStringList arguments(const QString &media)
{
    // What is written is gathered to 32 KiB: packet by packet it would be 680 bytes, and five times the system's time.
    return {u"-nostdin"_s,
            u"-hide_banner"_s,
            u"-nostats"_s,
            u"-loglevel"_s,
            u"level+info"_s,
            u"-i"_s,
            media,
            u"-map"_s,
            u"0:a:0"_s,
            u"-vn"_s,
            u"-af"_s,
            u"aresample=16000:async=1:first_pts=0"_s,
            u"-ac"_s,
            u"1"_s,
            u"-c:a"_s,
            u"pcm_s16le"_s,
            u"-flush_packets"_s,
            u"0"_s,
            u"-f"_s,
            u"s16le"_s,
            u"pipe:1"_s};
}

std::optional<qint64> duration(const QByteArray &log)
{
    // The helper measures in hundredths.
    static const QRegularExpression pattern(uR"(^\[info\]\s+Duration: (\d+):(\d\d):(\d\d)\.(\d\d),)"_s,
                                            QRegularExpression::MultilineOption);
    const auto match = pattern.match(QString::fromUtf8(log));
    if (!match.hasMatch())
        return std::nullopt;
    const auto part = [&](int index) { return match.captured(index).toLongLong(); };
    return ((part(1) * 60 + part(2)) * 60 + part(3)) * 1'000 + part(4) * 10;
}

QString complaint(const QByteArray &log)
{
    QString last;
    for (const QString &line : QString::fromUtf8(log).split(u'\n')) {
        for (const auto &level : {"[error] "_L1, "[fatal] "_L1}) {
            if (const qsizetype at = line.indexOf(level); at >= 0)
                last = line.mid(at + level.size()).trimmed();
        }
    }
    return last;
}

void read(const QString &path, LocalAIJob &job, const Workspace &workspace, const Take &take)
{
    refuseMissing(path);
    // An absolute path is no option and no address, whatever the file is called.
    const QString media = QFileInfo(path).absoluteFilePath();
    const QString log = workspace.file(u"samples.log"_s);
    HelperProcess process({.program = LocalModels::helper(u"ffmpeg-audio"_s),
                           .arguments = arguments(media),
                           .output = workspace.file(u"samples"_s),
                           .errors = log});
    const auto stopping = qScopeGuard([&] { job.stop(); });
    // Goes before the helper is asked to end, which would wait in vain for somebody to read.
    SamplePipe pipe(workspace.file(u"samples"_s));
    job.launch(process);
    std::optional<qint64> mediaMS; // is known before the first sample
    while (const auto samples = pipe.read()) {
        job.check();
        if (samples->empty())
            continue;
        if (!mediaMS)
            mediaMS = duration(said(log)).value_or(0);
        take(*samples, *mediaMS);
    }
    constexpr std::chrono::milliseconds poll(20);
    while (!process.waitForEnd(poll))
        job.check();
    job.check();
    if (!process.hasSucceeded() || !mediaMS)
        refuse(path, said(log));
}

} // namespace MediaSamples
