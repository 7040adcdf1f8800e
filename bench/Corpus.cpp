#include "bench/Corpus.h"

#include "core/SRT.h"
#include "tests/support/Generator.h"

namespace Corpus {

QList<Subtitle> cues(qsizetype count)
{
    return Generator(2024).cues(count);
}

QByteArray srt(qsizetype count)
{
    return SRT::serialize(cues(count)).toUtf8();
}

QByteArray project(Clips clips, qsizetype count)
{
    constexpr qint64 clipCount = 2'000;
    const qint64 frames = cues(count).back().end / 40 + 2;
    const auto time = [](qint64 frame) { return QByteArray::number(frame * 100) + "/2500s"; };
    QByteArray spine;
    for (qint64 i = 0; i < clipCount; ++i) {
        const qint64 begin = frames * i / clipCount;
        const qint64 end = frames * (i + 1) / clipCount;
        const QByteArray start = time(90'000 + i);
        const QByteArray name = "A001_C" + QByteArray::number(i);
        spine += "<asset-clip ref=\"r2\" name=\"" + name + "\" offset=\"" + time(begin) + "\" start=\"" + start +
                 "\" duration=\"" + time(end - begin) + "\" tcFormat=\"NDF\" audioRole=\"dialogue\"";
        if (clips == Clips::full)
            spine +=
                ">\n    <adjust-transform position=\"0 0\" scale=\"1.1 1.1\"/>\n    <adjust-volume amount=\"-3dB\"/>\n"
                "    <asset-clip ref=\"r2\" lane=\"1\" offset=\"" +
                start + "\" name=\"" + name +
                " B\" start=\"0s\" duration=\"2s\" tcFormat=\"NDF\" audioRole=\"effects\"/>\n    <marker start=\"" +
                start + "\" duration=\"" + time(1) + "\" value=\"标记\"/>\n</asset-clip>\n";
        else
            spine += "/>\n";
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE fcpxml>\n<fcpxml version=\"1.10\"><resources>"
           "<format id=\"r1\" frameDuration=\"100/2500s\" width=\"1920\" height=\"1080\"/><asset id=\"r2\" name=\"a\" "
           "start=\"0s\" duration=\"90000s\" hasAudio=\"1\"><media-rep kind=\"original-media\" "
           "src=\"file:///a.mov\"/></asset>"
           "</resources><library><event name=\"E\"><project name=\"片\"><sequence format=\"r1\" duration=\"" +
           time(frames) + "\" tcStart=\"0s\"><spine>\n" + spine +
           "</spine></sequence></project></event></library></fcpxml>\n";
}

} // namespace Corpus
