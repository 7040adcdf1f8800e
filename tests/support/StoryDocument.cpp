#include "tests/support/StoryDocument.h"

QByteArray Tag::toXml() const
{
    QByteArray xml = '<' + name + attributes;
    if (children.isEmpty() && text.isEmpty())
        return xml + "/>";
    xml += '>' + text;
    for (const Tag &child : children)
        xml += child.toXml();
    return xml + "</" + name + '>';
}

Tag tag(QByteArrayView description, const QList<Tag> &children)
{
    const QList<QByteArray> words = description.toByteArray().split(' ');
    Tag result{.name = words.front(), .attributes = {}, .children = children};
    for (const QByteArray &word : words.sliced(1)) {
        const qsizetype equals = word.indexOf('=');
        result.attributes += ' ' + word.first(equals) + "=\"" + word.sliced(equals + 1) + '"';
    }
    return result;
}

Tag textTag(QByteArrayView description, const QByteArray &text)
{
    Tag result = tag(description);
    result.text = text;
    return result;
}

namespace StoryDocument {

namespace {

Tag asset(const QByteArray &id, const QByteArray &attributes)
{
    return tag("asset id=" + id + ' ' + attributes, {tag("media-rep src=file:///m/" + id + ".mov")});
}

QList<Tag> resources()
{
    return {
        tag("format id=p24 frameDuration=100/2400s width=1920 height=1080"),
        tag("format id=p25 frameDuration=100/2500s width=1920 height=1080"),
        tag("format id=p2398 frameDuration=1001/24000s width=1080 height=1920"),
        tag("format id=p48 frameDuration=1/48s width=1920 height=1080"),
        tag("format id=unrated name=FFVideoFormatRateUndefined"),
        asset("talk", "start=0s duration=1000s hasVideo=1 hasAudio=1 format=p25"),
        asset("tape", "start=3600s duration=100s hasVideo=1 hasAudio=1 format=p25"),
        asset("music", "duration=300s hasAudio=1"),
        asset("mute", "duration=300s hasVideo=1 hasAudio=0"),
        asset("picture", "duration=0s hasVideo=1"),
        asset("endless", "hasVideo=1 hasAudio=1"),
        tag("asset id=lost duration=300s hasAudio=1", {tag("media-rep src=")}),
        tag("effect id=title uid=title"),
        tag("effect id=filter uid=filter"),
    };
}

} // namespace

QByteArray selection(const QList<Tag> &content, const QList<Tag> &more)
{
    const Tag root = tag("fcpxml version=1.11", QList<Tag>{tag("resources", resources() + more)} + content);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE fcpxml>\n" + root.toXml();
}

QByteArray sequence(QByteArrayView description, const QList<Tag> &items, const QList<Tag> &more)
{
    return selection({tag("project name=Film", {tag(description, {tag("spine", items)})})}, more);
}

QByteArray project(const char *duration, const QList<Tag> &items, const QList<Tag> &more)
{
    return sequence(QByteArray("sequence format=p25 tcStart=0s duration=") + duration, items, more);
}

Tag compound(const char *id, QByteArrayView description, const QList<Tag> &items)
{
    return tag(QByteArray("media id=") + id, {tag(description, {tag("spine", items)})});
}

} // namespace StoryDocument
