#include "fcp/render/RenderArguments.h"

#include <array>
#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;

namespace RenderArguments {

namespace {

/// A time or a gain as the helper reads it: six decimals, the last one rounded as printf does, whatever the locale.
QString number(double value)
{
    constexpr int decimals = 6;
    std::array<char, 512> text; // more than the largest number has
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    return QString::fromLatin1(text.data(), end.ptr - text.data());
}

QString chain(qsizetype input, const FCPAudioSegment &segment)
{
    const QString duration = number(segment.duration);
    const QString delay = QString::number(std::llround(segment.offset * sampleRate));
    return u"[%1:a:0]aresample=16000,aformat=sample_fmts=fltp:channel_layouts=mono,atrim=duration=%2,"
           "asetpts=PTS-STARTPTS,volume=%3,adelay=delays=%4S:all=1[a%1]"_s.arg(QString::number(input), duration,
                                                                               number(segment.gain), delay);
}

QString sum(const QString &labels, qsizetype count)
{
    return u"%1amix=inputs=%2:normalize=0[out]"_s.arg(labels).arg(count);
}

QStringList quietly()
{
    return {u"-nostdin"_s, u"-hide_banner"_s, u"-loglevel"_s, u"error"_s};
}

/// How whatever the graph makes is written.
QStringList output(const QString &graph, double duration, const QString &path)
{
    return {u"-filter_complex"_s, graph,    u"-map"_s, u"[out]"_s, u"-t"_s,        number(duration), u"-ar"_s,
            u"16000"_s,           u"-ac"_s, u"1"_s,    u"-c:a"_s,  u"pcm_s16le"_s, u"-y"_s,          path};
}

} // namespace

QString filterGraph(const QList<FCPAudioSegment> &segments)
{
    QStringList chains;
    QString labels;
    for (qsizetype i = 0; i < segments.size(); ++i) {
        chains.append(chain(i, segments[i]));
        labels += u"[a%1]"_s.arg(i);
    }
    return (chains << sum(labels, segments.size())).join(u';');
}

QStringList stem(const QList<FCPAudioSegment> &segments, double duration, const QString &stem)
{
    QStringList arguments = quietly();
    for (const FCPAudioSegment &segment : segments)
        arguments << u"-ss"_s << number(segment.fileStart) << u"-t"_s << number(segment.duration) << u"-i"_s
                  << segment.url.toLocalFile();
    return arguments + output(filterGraph(segments), duration, stem);
}

QStringList mix(const QStringList &stems, double duration, const QString &mix)
{
    QStringList arguments = quietly();
    QString labels;
    for (qsizetype k = 0; k < stems.size(); ++k) {
        arguments << u"-i"_s << stems[k];
        labels += u"[%1:a:0]"_s.arg(k);
    }
    return arguments + output(sum(labels, stems.size()), duration, mix);
}

} // namespace RenderArguments
