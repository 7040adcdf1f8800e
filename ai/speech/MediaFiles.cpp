#include "ai/speech/MediaFiles.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace MediaFiles {

const QStringList &extensions()
{
    static const QStringList known{u"wav"_s,  u"mp3"_s, u"m4a"_s,  u"aac"_s,  u"aif"_s, u"aiff"_s, u"caf"_s,
                                   u"flac"_s, u"ogg"_s, u"opus"_s, u"mp4"_s,  u"mov"_s, u"m4v"_s,  u"mkv"_s,
                                   u"webm"_s, u"avi"_s, u"mts"_s,  u"m2ts"_s, u"mxf"_s, u"mpg"_s};
    return known;
}

bool isMedia(const QString &path)
{
    return extensions().contains(QFileInfo(path).suffix().toLower());
}

} // namespace MediaFiles
