// Writes the documents with which fuzz_audio_plan begins: one for each form in which a timeline can hold sound.

#include "tests/support/StoryDocument.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;
using namespace StoryDocument;

namespace {

Tag talk(const QByteArray &more = "offset=0s duration=9s", const QList<Tag> &children = {})
{
    return tag("asset-clip ref=talk " + more, children);
}

QList<Tag> forms()
{
    const Tag volume =
        tag("adjust-volume",
            {tag("param name=amount",
                 {tag("keyframeAnimation", {tag("keyframe time=1s value=-6dB"), tag("keyframe time=2s value=0dB")})})});
    const Tag audio = tag("audio ref=tape lane=-1 offset=0s start=3600s duration=50s");
    return {
        talk("offset=0s start=2s duration=9s audioStart=1s audioDuration=5s", {tag("adjust-volume amount=-6dB")}),
        talk("offset=1001/24000s duration=23.4s", {volume, talk("lane=1 offset=-3s duration=4s")}),
        talk("offset=0s duration=1s", {tag("conform-rate srcFrameRate=24"), talk("lane=2 offset=1s duration=2s")}),
        talk("offset=0s duration=9s", {tag("timeMap"), tag("filter-audio ref=filter")}),
        talk("offset=0s duration=9s srcEnable=video", {tag("audio-channel-source srcCh=1 active=0")}),
        tag("clip offset=0s start=5s duration=9s", {tag("video ref=picture offset=0s duration=50s", {audio})}),
        tag("sync-clip offset=0s duration=9s tcStart=1s",
            {tag("spine", {talk()}),
             tag("sync-source sourceID=storyline", {tag("audio-role-source role=a active=0")})}),
        tag("gap offset=0s duration=9s",
            {tag("spine lane=1 offset=3s", {talk(), tag("transition duration=1s"), talk()})}),
        tag("audition offset=0s", {talk(), tag("video ref=picture duration=9s")}),
        tag("ref-clip ref=c offset=0s start=3s duration=9s", {tag("adjust-volume amount=3dB")}),
        tag("mc-clip ref=c offset=0s duration=9s srcEnable=video"),
    };
}

void write(const QDir &folder, int number, const QByteArray &document)
{
    QFile file(folder.filePath(u"seed-%1.fcpxml"_s.arg(number)));
    if (!file.open(QIODevice::WriteOnly) || file.write(document) != document.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        qFatal("usage: audio_plan_seeds FOLDER");
    const QDir folder(QFile::decodeName(argv[1]));
    if (!folder.mkpath(u"."_s))
        qFatal("cannot make %s", argv[1]);
    const Tag inner = compound("c", "sequence format=p24 tcStart=2s", {talk("offset=2s duration=20s")});
    const Tag cyclic = compound("d", "sequence format=p24", {tag("ref-clip ref=d offset=0s duration=9s")});
    int number = 0;
    for (const Tag &form : forms()) {
        write(folder, number++, project("60s", {form}, {inner}));
        write(folder, number++, selection({form}, {inner}));
    }
    write(folder, number++, project("60s", forms(), {inner}));
    write(folder, number++, project("60s", {tag("ref-clip ref=d offset=0s duration=9s")}, {cyclic}));
}
