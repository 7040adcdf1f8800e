#include "fcp/texts/ProjectTexts.h"

#include "core/ConversionError.h"
#include "fcp/audio/DraggedTimeline.h"
#include "fcp/texts/CaptionRole.h"
#include "fcp/texts/TextFields.h"
#include "fcp/xml/XmlListener.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace ProjectTexts {

namespace {

/// Clips that stand in no project lie as their offsets say; one alone begins at the timeline's 0.
void walkClips(const std::vector<const xmlNode *> &clips, TextWalk &walk)
{
    std::vector<Rational> offsets;
    for (const xmlNode *const clip : clips) {
        const auto text = Xml::attribute(clip, "offset");
        const auto offset = text ? Rational::parseTime(*text) : std::nullopt;
        if (!offset && clips.size() > 1)
            throw ConversionError(u"请一次拖入一个项目或片段，以保持音轨时间对应。"_s);
        offsets.push_back(offset.value_or(0));
    }
    const Rational origin = *std::ranges::min_element(offsets);
    for (size_t i = 0; i < clips.size(); ++i)
        walk.walkClip(clips[i], offsets[i], origin);
}

void walk(const XmlDocument &document, const xmlNode *project, MediaResources &resources, TextWalk &walk)
{
    if (!project) {
        walkClips(DraggedTimeline::find(document).clips, walk);
    } else if (const xmlNode *const sequence = Xml::child(project, "sequence")) {
        walk.walkSequence(resources.readSequence(sequence));
    }
}

QString attributeText(const xmlNode *element, QByteArrayView name)
{
    return QString::fromUtf8(Xml::attribute(element, name).value_or(QByteArray()));
}

/// The frames of a timeline, and milliseconds for them.
class Grid
{
public:
    explicit Grid(const std::optional<Rational> &frameDuration)
        : m_frameDuration(frameDuration)
    {}

    /// What is seen from `range` on, at least a millisecond of it. Clips may begin between frames, and what hangs on
    /// them then does; it is seen on the nearest ones. @throws RationalOverflow beyond any cue
    Subtitle cue(const TimeRange &range) const
    {
        const qint64 start = milliseconds(range.begin);
        return {.start = start, .end = std::max(milliseconds(*range.end), start + 1), .text = {}};
    }

private:
    qint64 milliseconds(const Rational &seconds) const
    {
        const Rational onGrid =
            m_frameDuration ? Rational((seconds / *m_frameDuration).rounded()) * *m_frameDuration : seconds;
        return (onGrid * Rational(1'000)).rounded();
    }

    std::optional<Rational> m_frameDuration;
};

/// A role as people read it. Final Cut Pro makes a role's first subrole "name.name-1", which says nothing more.
QString roleLabel(const QString &role, bool captions)
{
    if (captions) {
        const auto parts = CaptionRole::parse(role);
        return parts ? CaptionRole::formatName(parts->format) + u' ' + parts->language : u"说明字幕"_s;
    }
    if (role.isEmpty())
        return u"标题"_s;
    const qsizetype dot = role.indexOf(u'.');
    if (dot < 0)
        return role;
    const QString main = role.first(dot);
    const QString sub = role.sliced(dot + 1);
    return sub.isEmpty() || sub == main + u"-1"_s ? main : sub;
}

/// Lanes are told only where they tell tracks apart.
void nameTracks(std::vector<Track> &tracks)
{
    std::map<QString, int> count;
    for (Track &track : tracks) {
        track.label = roleLabel(track.role, track.captions);
        ++count[track.label];
    }
    std::set<QString> used;
    for (Track &track : tracks) {
        if (count[track.label] > 1)
            track.label += u" %1"_s.arg(track.lane);
        const QString label = track.label;
        for (int i = 2; !used.insert(track.label).second; ++i)
            track.label = label + u" (%1)"_s.arg(i);
    }
}

void sortByStart(Track &track)
{
    std::vector<size_t> order(track.places.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    const auto start = [&](size_t i) { return track.items[qsizetype(i)].start; };
    if (!std::ranges::is_sorted(order, {}, start)) {
        std::ranges::stable_sort(order, {}, start);
        QList<Subtitle> items;
        std::vector<TextWalk::Found> places;
        items.reserve(track.items.size());
        places.reserve(track.places.size());
        for (const size_t i : order) {
            items.append(track.items[qsizetype(i)]);
            places.push_back(std::move(track.places[i]));
        }
        track.items = std::move(items);
        track.places = std::move(places);
    }
    for (qsizetype i = 0; i < track.items.size(); ++i)
        track.items[i].id = i + 1;
}

class Collector
{
public:
    explicit Collector(const Grid &grid)
        : m_grid(grid)
    {}

    void take(TextWalk::Found found)
    {
        QString text = TextFields::shown(TextFields::read(found.element));
        if (text.isEmpty())
            return;
        Track &into = track(found);
        if (found.obstacle.isEmpty()) {
            try {
                Subtitle cue = m_grid.cue(found.shown);
                cue.text = std::move(text);
                into.items.append(std::move(cue));
                into.places.push_back(std::move(found));
                return;
            } catch (const RationalOverflow &) {
                found.obstacle = u"时间无法读取"_s;
            }
        }
        const QString name = attributeText(found.element, "name");
        into.skipped.append({.name = name.isEmpty() ? text : name, .reason = found.obstacle});
    }

    std::vector<Track> finish()
    {
        for (Track &track : m_tracks)
            sortByStart(track);
        nameTracks(m_tracks);
        return std::move(m_tracks);
    }

private:
    Track &track(const TextWalk::Found &found)
    {
        const QByteArray role = Xml::attribute(found.element, "role").value_or(QByteArray());
        const bool captions = Xml::isElement(found.element, "caption");
        const auto [known, isNew] = m_index.try_emplace({captions, role, found.lane}, m_tracks.size());
        if (isNew)
            m_tracks.push_back({.label = {},
                                .role = QString::fromUtf8(role),
                                .lane = found.lane,
                                .captions = captions,
                                .items = {},
                                .frameDuration = {},
                                .places = {},
                                .skipped = {}});
        return m_tracks[known->second];
    }

    const Grid &m_grid;
    std::vector<Track> m_tracks;
    std::map<std::tuple<bool, QByteArray, qint64>, size_t> m_index;
};

/// Keeps what tells where texts stand and what they say out of all that a document holds.
class TextsOnly final : public XmlListener
{
public:
    bool begin(const XmlTag &tag, const xmlNode *parent, int /*line*/) override
    {
        return !parent || !tag.isPlain() ||
               !TextWalk::passesOver(parent, QByteArrayView(reinterpret_cast<const char *>(tag.name())));
    }
};

} // namespace

XmlDocument document(QByteArrayView bytes, const Check &check)
{
    TextsOnly texts;
    return XmlDocument::parse(bytes, u"不支持含外部实体的 XML。", texts, check);
}

std::vector<Track> read(const XmlDocument &document, const xmlNode *project, const Check &check)
{
    try {
        MediaResources resources(document, project);
        TextWalk walk(resources, check);
        ProjectTexts::walk(document, project, resources, walk);
        const Grid grid(walk.frameDuration());
        Collector collector(grid);
        SparseCheck goOn(check);
        for (TextWalk::Found &found : walk.takeFound()) {
            goOn();
            collector.take(std::move(found));
        }
        std::vector<Track> tracks = collector.finish();
        for (Track &track : tracks)
            track.frameDuration = walk.frameDuration();
        return tracks;
    } catch (const RationalOverflow &) {
        throw ConversionError(u"FCP 时间值无效。"_s);
    }
}

std::vector<QList<TextOrigin>> origins(const XmlDocument &document, const std::vector<Track> &tracks,
                                       const Check &check)
{
    SparseCheck goOn(check);
    std::unordered_map<const xmlNode *, qint64> numbers;
    for (const xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        goOn();
        if (Xml::isElement(element, "title") || Xml::isElement(element, "caption"))
            numbers.emplace(element, qint64(numbers.size()));
    }
    std::vector<QList<TextOrigin>> origins;
    for (const Track &track : tracks) {
        QList<TextOrigin> &own = origins.emplace_back();
        for (qsizetype i = 0; i < track.items.size(); ++i)
            own.append({.cue = track.items[i].id,
                        .number = numbers.at(track.places[size_t(i)].element),
                        .text = track.items[i].text});
    }
    return origins;
}

QStringList labels(const std::vector<Track> &tracks)
{
    QStringList labels;
    for (const Track &track : tracks)
        labels.append(track.label);
    return labels;
}

} // namespace ProjectTexts
