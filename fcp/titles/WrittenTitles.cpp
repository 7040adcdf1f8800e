#include "fcp/titles/WrittenTitles.h"

#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/Storyline.h"
#include "fcp/titles/TitleGrid.h"

#include <algorithm>
#include <functional>
#include <map>

using namespace Qt::StringLiterals;

namespace WrittenTitles {

namespace {

struct Found
{
    const xmlNode *parent;
    QString text;
    std::optional<Rational> offset;   ///< Seconds, in the parent's own time.
    std::optional<Rational> duration; ///< Seconds.
};

std::optional<qint64> wholeFrames(const std::optional<Rational> &seconds, const FrameRate &rate)
{
    if (!seconds)
        return std::nullopt;
    const Rational frames = *seconds * Rational(rate.numerator, rate.denominator);
    return frames.denominator() == 1 ? std::optional(frames.numerator()) : std::nullopt;
}

/// The titles by the time at which they stand on the timeline.
std::vector<Found> inOrder(std::vector<Found> titles, const Storyline &storyline,
                           const std::vector<TitleGrid::Title> &expected, const FrameRate &rate, SparseCheck &goOn)
{
    std::map<const xmlNode *, const Storyline::Clip *> clips;
    for (const TitleGrid::Title &title : expected) {
        goOn();
        if (const Storyline::Clip *const clip = storyline.clipAt(title.startFrame))
            clips.emplace(clip->element, clip);
    }
    const Rational framesPerSecond(rate.numerator, rate.denominator);
    std::vector<std::pair<qint64, Found>> placed;
    for (Found &title : titles) {
        goOn();
        const auto clip = clips.find(title.parent);
        // What hangs where no cue belongs counts as standing behind all others.
        qint64 frame = std::numeric_limits<qint64>::max();
        if (clip != clips.end() && title.offset)
            frame = ((*title.offset * framesPerSecond - clip->second->origin) / clip->second->pace).rounded();
        placed.emplace_back(frame, std::move(title));
    }
    std::ranges::stable_sort(placed, {}, &std::pair<qint64, Found>::first);
    std::vector<Found> result;
    result.reserve(placed.size());
    for (auto &[frame, title] : placed)
        result.push_back(std::move(title));
    return result;
}

/// Whether `text` is `own` with what stands around it.
bool says(QStringView text, const TitleTemplate::Surroundings &around, QStringView own)
{
    return text.size() == around.before.size() + own.size() + around.after.size() && text.startsWith(around.before) &&
           text.endsWith(around.after) && text.sliced(around.before.size(), own.size()) == own;
}

bool stands(const Found &title, const TitleGrid::Title &expected, const Storyline &storyline, const FrameRate &rate,
            const TitleTemplate::Surroundings &around)
{
    const Storyline::Clip *const clip = storyline.clipAt(expected.startFrame);
    return clip && clip->element == title.parent &&
           wholeFrames(title.offset, rate) == clip->localFrame(expected.startFrame) &&
           wholeFrames(title.duration, rate) == expected.endFrame - expected.startFrame &&
           says(title.text, around, expected.text);
}

ConversionError difference(qint64 cueID)
{
    return ConversionError::aboutCue(cueID, u" 条字幕写入后核对不一致，原文件没有改动。");
}

/// The one media resource of a clip's document; null when there is none.
const xmlNode *media(const XmlDocument &document)
{
    const xmlNode *const resources = Xml::child(document.root(), "resources");
    return resources ? Xml::child(resources, "media") : nullptr;
}

/// Holds the titles of one track against its cues.
void compareTrack(std::vector<Found> titles, const TitleTrack &track, const xmlNode *spine, const Rational &start,
                  const Check &check)
{
    SparseCheck goOn(check);
    const FrameRate &rate = track.options.rate;
    const std::vector<TitleGrid::Title> expected = TitleGrid::place(track.cues, track.options, check);
    try {
        const Storyline storyline(spine, start, rate);
        titles = inOrder(std::move(titles), storyline, expected, rate, goOn);
        const auto around = track.look ? track.look->surroundings() : TitleTemplate::Surroundings();
        for (size_t i = 0; i < expected.size(); ++i) {
            goOn();
            if (i >= titles.size() || !stands(titles[i], expected[i], storyline, rate, around))
                throw difference(expected[i].cueID);
        }
    } catch (const RationalOverflow &) {
        throw difference(expected.front().cueID);
    }
    if (titles.size() > expected.size())
        throw difference(expected.back().cueID);
}

/// `owner` finds the element in the document whose sequence carries the titles.
void compare(QByteArrayView document, const std::vector<XmlDocument::Wanted> &marks,
             const std::vector<TitleTrack> &tracks, const std::function<const xmlNode *(const XmlDocument &)> &owner,
             const Check &check)
{
    std::vector<std::vector<Found>> titles(marks.size());
    const XmlDocument::Extraction extraction{.wanted = marks, .take = [&](const XmlDocument::Extract &title) {
                                                 titles[title.wanted].push_back(
                                                     {.parent = title.parent,
                                                      .text = QString::fromUtf8(title.text),
                                                      .offset = Rational::parseTime(title.attribute("offset")),
                                                      .duration = Rational::parseTime(title.attribute("duration"))});
                                             }};
    const XmlDocument rest = XmlDocument::parse(document, u"不支持含外部实体的 XML。", extraction, check);
    const xmlNode *const found = owner(rest);
    const xmlNode *const sequence = found ? Xml::child(found, "sequence") : nullptr;
    const xmlNode *const spine = sequence ? Xml::child(sequence, "spine") : nullptr;
    const auto start =
        sequence ? Rational::parseTime(Xml::attribute(sequence, "tcStart").value_or("0s")) : std::nullopt;
    for (size_t i = 0; i < tracks.size(); ++i) {
        if (!spine || !start || i >= titles.size())
            throw difference(tracks[i].cues.front().id);
        compareTrack(std::move(titles[i]), tracks[i], spine, *start, check);
    }
}

} // namespace

void verify(QByteArrayView document, const std::vector<XmlDocument::Wanted> &marks,
            const std::vector<TitleTrack> &tracks, const QString &projectName, const Check &check)
{
    compare(
        document, marks, tracks, [&](const XmlDocument &rest) { return FCPXML::project(rest, projectName); }, check);
}

void verifyClip(QByteArrayView document, const std::vector<XmlDocument::Wanted> &marks,
                const std::vector<TitleTrack> &tracks, const Check &check)
{
    compare(document, marks, tracks, media, check);
}

} // namespace WrittenTitles
