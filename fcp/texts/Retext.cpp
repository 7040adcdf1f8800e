#include "fcp/texts/Retext.h"

#include "core/ConversionError.h"
#include "core/SRT.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"
#include "fcp/texts/TextDifference.h"
#include "fcp/texts/TextEditor.h"
#include "fcp/texts/TextFields.h"
#include "fcp/texts/TextMatching.h"
#include "fcp/texts/TitleCopy.h"
#include "fcp/titles/Identifiers.h"

#include <QMultiHash>

#include <algorithm>
#include <set>

using namespace Qt::StringLiterals;

namespace Retext {

namespace {

using ProjectTexts::Track;

constexpr QStringView entityRefusal = u"不支持含外部实体的 XML。";

const Track &choose(const std::vector<Track> &tracks, const QString &label)
{
    std::vector<const Track *> found;
    for (const Track &track : tracks) {
        if (label.isEmpty() ? !track.items.isEmpty() : track.label == label)
            found.push_back(&track);
    }
    if (found.size() == 1)
        return *found.front();
    if (!label.isEmpty())
        throw ConversionError(u"项目中没有名为“%1”的字幕轨。"_s.arg(label));
    if (found.empty())
        throw ConversionError(u"项目中没有可读取的字幕。"_s);
    throw ConversionError(
        u"项目中有多条字幕轨，请指定其中一条：%1。"_s.arg(ProjectTexts::labels(tracks).join(u"、"_s)));
}

/// What a file makes of a text: SRT has no place for some characters of it.
QString asInSRT(const Subtitle &cue)
{
    try {
        const QList<Subtitle> read = SRT::parse(SRT::serialize({cue}));
        return read.size() == 1 ? read.front().text : cue.text;
    } catch (const ConversionError &) {
        return cue.text;
    }
}

QByteArray timeText(const Rational &seconds)
{
    const QByteArray number = QByteArray::number(seconds.numerator());
    return seconds.denominator() == 1 ? number + 's' : number + '/' + QByteArray::number(seconds.denominator()) + 's';
}

/// Whether a text hangs on something, so that it can go elsewhere and its neighbours stay.
bool isConnected(const xmlNode *element)
{
    const xmlNode *const parent = element->parent;
    return Xml::integerAttribute(element, "lane").value_or(0) != 0 && !Xml::isElement(parent, "spine") &&
           !Xml::isElement(parent, "audition");
}

class Work
{
public:
    Work(const Request &request, const QByteArray &bytes, const XmlDocument &tree, const Track &track)
        : m_request(request)
        , m_track(track)
        , m_editor(bytes, tree)
        , m_copies(tree)
    {}

    Result run()
    {
        std::vector<TextMatching::Standing> standing;
        for (qsizetype i = 0; i < m_track.items.size(); ++i)
            standing.push_back({.cue = m_track.items[i], .number = qint64(m_editor.number(place(size_t(i)).element))});
        const auto matches = TextMatching::match(m_request.cues, m_request.origins, standing, m_track.frameDuration);
        std::set<size_t> matched;
        for (size_t i = 0; i < matches.size(); ++i) {
            const Subtitle &cue = m_request.cues[qsizetype(i)];
            if (!matches[i]) {
                m_receipt.added.append(cue);
                continue;
            }
            matched.insert(*matches[i]);
            putText(cue, *matches[i]);
            putPlace(cue, *matches[i]);
        }
        for (size_t i = 0; i < standing.size(); ++i) {
            if (!matched.contains(i))
                remove(i);
        }
        for (const Subtitle &cue : std::as_const(m_receipt.added))
            add(cue);
        return {.document = m_editor.changed(), .receipt = std::move(m_receipt)};
    }

private:
    const TextWalk::Found &place(size_t index) const { return m_track.places[index]; }
    qint64 frame(qint64 milliseconds) const { return TextMatching::frame(milliseconds, m_track.frameDuration); }

    void refuse(qint64 cue, QStringView reason) { m_receipt.refused.append({.cue = cue, .reason = reason.toString()}); }

    void putText(const Subtitle &cue, size_t index)
    {
        const Subtitle &old = m_track.items[qsizetype(index)];
        const QString text = TextFields::tidied(cue.text);
        if (text == old.text || text == asInSRT(old))
            return;
        if (text.isEmpty())
            return refuse(cue.id, u"没有文字");
        // A compound clip that is shown twice shows the same title twice.
        if (!m_written.insert(place(index).element).second)
            return refuse(cue.id, u"同一标题在项目中出现多次，已按前一条修改");
        const auto outcome = m_editor.setText(place(index).element, text);
        if (outcome == TextEditor::Outcome::unclearFields)
            return refuse(cue.id, u"标题有多个文本栏，无法判断改动属于哪一栏");
        m_receipt.changed.append({.cue = cue.id,
                                  .before = old.text,
                                  .after = text,
                                  .styles = outcome == TextEditor::Outcome::writtenOverStyles});
    }

    /// Why a title cannot be elsewhere than it is, empty when it can.
    QStringView obstacle(const TextWalk::Found &found) const
    {
        if (!m_track.frameDuration)
            return u"项目没有说明帧率";
        if (!isConnected(found.element))
            return u"标题在故事情节中，移动会影响相邻片段，请在 FCP 中调整";
        if (found.cut || found.scale != Rational(1))
            return u"标题位于被裁切或变速的片段内，请在 FCP 中调整";
        return {};
    }

    void putPlace(const Subtitle &cue, size_t index)
    {
        const Subtitle &old = m_track.items[qsizetype(index)];
        if (frame(cue.start) == frame(old.start) && frame(cue.end) == frame(old.end))
            return;
        m_receipt.moved.append({.cue = cue, .start = old.start, .end = old.end});
        if (m_request.scope == Scope::texts)
            return;
        const TextWalk::Found &found = place(index);
        if (const QStringView reason = obstacle(found); !reason.isEmpty())
            return refuse(cue.id, reason);
        if (!m_moved.insert(found.element).second)
            return refuse(cue.id, u"同一标题在项目中出现多次，已按前一条修改");
        m_editor.setAttribute(found.element, "offset", offsetText(cue, found));
        m_editor.setAttribute(found.element, "duration", durationText(cue));
    }

    /// In the parent's own time, on the frame nearest to it, as titles are written.
    QByteArray offsetText(const Subtitle &cue, const TextWalk::Found &found) const
    {
        const Rational frames = *m_track.frameDuration;
        const Rational local = found.parentTimes.toLocal(Rational(frame(cue.start)) * frames);
        return timeText(Rational((local / frames).rounded()) * frames);
    }

    QByteArray durationText(const Subtitle &cue) const
    {
        return timeText(Rational(std::max<qint64>(frame(cue.end) - frame(cue.start), 1)) * *m_track.frameDuration);
    }

    void remove(size_t index)
    {
        const Subtitle &old = m_track.items[qsizetype(index)];
        m_receipt.removed.append(old);
        if (m_request.scope == Scope::texts)
            return;
        const xmlNode *const element = place(index).element;
        if (!isConnected(element) || !TitleCopy::isPlain(element))
            return refuse(old.id, u"标题上还有其他内容，或在故事情节中，请在 FCP 中删除");
        if (m_written.insert(element).second)
            m_editor.remove(element);
    }

    /// A new title looks like its nearest neighbour and hangs where that does.
    void add(const Subtitle &cue)
    {
        if (m_request.scope == Scope::texts)
            return;
        const TextWalk::Found *nearest = nullptr;
        qint64 distance = 0;
        for (size_t i = 0; i < m_track.places.size(); ++i) {
            const qint64 away = std::abs(m_track.items[qsizetype(i)].start - cue.start);
            if ((nearest && away >= distance) || !obstacle(place(i)).isEmpty() || !TitleCopy::isPlain(place(i).element))
                continue;
            nearest = &place(i);
            distance = away;
        }
        const QString text = TextFields::tidied(cue.text);
        if (!nearest || text.isEmpty())
            return refuse(cue.id, u"找不到可以参照的标题");
        m_editor.insertBehind(nearest->element,
                              m_copies.copy(m_editor.xml(nearest->element),
                                            {.offset = offsetText(cue, *nearest), .duration = durationText(cue)},
                                            text));
    }

    const Request &m_request;
    const Track &m_track;
    TextEditor m_editor;
    TitleCopy m_copies;
    Receipt m_receipt;
    std::set<const xmlNode *> m_written;
    std::set<const xmlNode *> m_moved;
};

/// Reads the result again: every changed title must say what was asked for, and nothing else may have changed.
void verify(const Result &result, const XmlDocument &before, const Request &request, const QString &label,
            const Check &check)
{
    const XmlDocument after = XmlDocument::parse(result.document, entityRefusal, check);
    const auto tracks = ProjectTexts::read(after, FCPXML::project(after, request.project), check);
    QMultiHash<QString, qint64> texts;
    for (const Track &track : tracks) {
        if (track.label != label)
            continue;
        for (const Subtitle &cue : track.items)
            texts.insert(cue.text, cue.id);
    }
    const auto stands = [&](const Changed &each) { return texts.contains(each.after); };
    if (!std::ranges::all_of(result.receipt.changed, stands) ||
        (request.scope == Scope::texts && !TextDifference::isAll(before, after, check)))
        throw ConversionError(u"写入后核对不一致，原文件没有改动。"_s);
}

} // namespace

Result apply(const QByteArray &bytes, const Request &request, const Check &check)
{
    const XmlDocument tree = XmlDocument::parse(bytes, entityRefusal, check);
    const auto tracks = ProjectTexts::read(tree, FCPXML::project(tree, request.project), check);
    const Track &track = choose(tracks, request.track);
    try {
        Result result = Work(request, bytes, tree, track).run();
        if (result.document != bytes)
            verify(result, tree, request, track.label, check);
        return result;
    } catch (const RationalOverflow &) {
        throw ConversionError(u"FCP 时间值无效。"_s);
    }
}

} // namespace Retext
