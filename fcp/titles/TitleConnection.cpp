#include "fcp/titles/TitleConnection.h"

#include "core/ConversionError.h"
#include "fcp/titles/Storyline.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace TitleConnection {

namespace {

/// What the published element order puts after connected items, in any kind of storyline clip.
bool followsConnectedItems(const xmlNode *element)
{
    static constexpr std::array<QByteArrayView, 14> names{"marker",
                                                          "chapter-marker",
                                                          "rating",
                                                          "keyword",
                                                          "analysis-marker",
                                                          "hidden-clip-marker",
                                                          "audio-channel-source",
                                                          "audio-role-source",
                                                          "sync-source",
                                                          "filter-video",
                                                          "filter-video-mask",
                                                          "filter-audio",
                                                          "metadata",
                                                          "reserved"};
    return std::find(names.begin(), names.end(), Xml::elementName(element)) != names.end();
}

const xmlNode *insertionPoint(const xmlNode *clip)
{
    for (const xmlNode *const child : Xml::Children(clip)) {
        if (followsConnectedItems(child))
            return child;
    }
    return nullptr;
}

/// One above the highest lane of the document, and at least 1.
quint64 freeLane(const XmlDocument &document, SparseCheck &goOn)
{
    qint64 highest = 0;
    for (const xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        goOn();
        highest = std::max(highest, Xml::integerAttribute(element, "lane").value_or(0));
    }
    return static_cast<quint64>(highest) + 1;
}

bool holdsCaptions(const XmlDocument &document, const CaptionRole &role, SparseCheck &goOn)
{
    const QByteArray text = role.toText().toUtf8();
    for (const xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        goOn();
        if (Xml::isElement(element, "caption") && Xml::attribute(element, "role") == text)
            return true;
    }
    return false;
}

/// The layers of the tracks, each on its lane.
std::vector<TitleDocument::Layer> layers(const std::vector<PlacedTrack> &tracks, const Target &target,
                                         SparseCheck &goOn)
{
    std::vector<TitleDocument::Layer> layers;
    quint64 free = freeLane(target.tree, goOn);
    for (size_t i = 0; i < tracks.size(); ++i) {
        const auto &captions = tracks[i].track.captions;
        const bool takesFirst = captions && !holdsCaptions(target.tree, *captions, goOn);
        layers.push_back({.track = tracks[i].track, .effectIDs = target.effectIDs[i], .lane = takesFirst ? 1 : free++});
    }
    return layers;
}

qint64 connectionFrame(const TitleGrid::Title &title, const Storyline::Clip &clip, const FrameRate &rate)
{
    try {
        const qint64 frame = clip.localFrame(title.startFrame);
        if (TitleGrid::isWritable(frame, rate))
            return frame;
    } catch (const RationalOverflow &) { // NOLINT(bugprone-empty-catch): both ways lead to the refusal below
    }
    throw ConversionError::aboutCue(title.cueID, u" 条字幕内容或时间无效。");
}

/// A title and where it hangs.
struct Hung
{
    const Storyline::Clip *clip;
    ConnectedTitle title;
};

Hung hang(const TitleGrid::Title &title, const Storyline &storyline, const FrameRate &rate)
{
    const Storyline::Clip *const clip = storyline.clipAt(title.startFrame);
    if (!clip)
        throw ConversionError::aboutCue(title.cueID, u" 条字幕起点不在主时间线片段内。",
                                        u"它从时间线第 %1 帧开始。"_s.arg(title.startFrame));
    if (clip->retimed)
        throw ConversionError(
            u"字幕连接位置位于变速主片段。请先将项目制作为复合片段，再导出 XML。"_s,
            u"第 %1 条字幕，连接到%2。"_s.arg(QString::number(title.cueID), Xml::place(clip->element)));
    return {.clip = clip,
            .title = {.text = title.text,
                      .layer = 0,
                      .offsetFrame = connectionFrame(title, *clip, rate),
                      .frames = title.endFrame - title.startFrame,
                      .styleNumber = 0}};
}

} // namespace

TitleDocument connect(Target target, std::vector<PlacedTrack> tracks, const Check &check)
{
    SparseCheck goOn(check);
    const FrameRate rate = tracks.front().track.options.rate;
    const Storyline storyline(target.spine, target.projectStart, rate);
    std::vector<Hung> hung;
    for (size_t layer = 0; layer < tracks.size(); ++layer) {
        hung.reserve(hung.size() + tracks[layer].titles.size());
        const auto &look = tracks[layer].track.look;
        const qint64 styles = look ? look->styleCount() : 1;
        for (const TitleGrid::Title &title : tracks[layer].titles) {
            goOn();
            hung.push_back(hang(title, storyline, rate));
            hung.back().title.layer = layer;
            hung.back().title.styleNumber = target.styles.next(styles);
        }
    }
    // Titles come by time, clips nearly always too; where clips overlap, and for further tracks, those of one clip are
    // brought together here.
    std::stable_sort(hung.begin(), hung.end(), [](const Hung &a, const Hung &b) { return a.clip < b.clip; });

    auto layers = TitleConnection::layers(tracks, target, goOn);
    TitleDocument::Content content{.tree = std::move(target.tree),
                                   .layers = std::move(layers),
                                   .indentation = target.indentation,
                                   .titles = {},
                                   .runs = {}};
    content.titles.reserve(hung.size());
    const Storyline::Clip *last = nullptr;
    for (const Hung &each : hung) {
        goOn();
        if (each.clip != last)
            content.runs.push_back({.clip = each.clip->element,
                                    .before = insertionPoint(each.clip->element),
                                    .first = content.titles.size(),
                                    .end = 0});
        last = each.clip;
        content.titles.push_back(each.title);
        content.runs.back().end = content.titles.size();
    }
    return TitleDocument(std::move(content));
}

} // namespace TitleConnection
