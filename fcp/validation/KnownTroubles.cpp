#include "fcp/validation/KnownTroubles.h"

#include "fcp/texts/CaptionRole.h"
#include "fcp/texts/TextFields.h"

#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <span>

using namespace Qt::StringLiterals;

namespace {

using Severity = Problem::Severity;
using Element = DocumentSketch::Element;
using Names = std::span<const QByteArrayView>;

bool isOneOf(const Element *element, Names names)
{
    return std::ranges::any_of(names, [&](QByteArrayView name) { return element->is(name); });
}

bool isClip(const Element *element)
{
    static constexpr std::array<QByteArrayView, 11> names{"title",     "caption", "asset-clip",  "video",
                                                          "clip",      "gap",     "ref-clip",    "mc-clip",
                                                          "sync-clip", "audio",   "live-drawing"};
    return isOneOf(element, names);
}

std::optional<Rational> readTime(const Element *element, QByteArrayView name)
{
    const auto text = element->attribute(name);
    return text ? Rational::parseTime(*text) : std::nullopt;
}

std::optional<qint64> laneOf(const Element *element)
{
    const auto text = element->attribute("lane");
    return text ? Xml::integer(*text) : std::nullopt;
}

/// How many lines a caption shows.
qsizetype lineCount(const Element *caption)
{
    std::vector<TextFields::Field> fields;
    for (const Element *text = caption->firstChild(); text; text = text->next()) {
        if (!text->is("text"))
            continue;
        TextFields::Field &field = fields.emplace_back();
        for (const Element *run = text->firstChild(); run; run = run->next()) {
            if (run->is("text-style"))
                field.runs.push_back({.text = QString::fromUtf8(run->text())});
        }
        if (field.runs.empty())
            field.runs.push_back({.text = QString::fromUtf8(text->text())});
    }
    return TextFields::shown(fields).count(u'\n') + 1;
}

QString timeText(const Rational &seconds)
{
    const QString numerator = QString::number(seconds.numerator());
    return seconds.denominator() == 1 ? numerator + u's'
                                      : numerator + u'/' + QString::number(seconds.denominator()) + u's';
}

} // namespace

KnownTroubles::KnownTroubles(const XmlDocument &document, const DocumentSketch &sketch, Findings &findings,
                             const Check &check)
    : m_document(document)
    , m_sketch(sketch)
    , m_findings(findings)
    , m_check(check)
{
    for (const Element &element : sketch.elements()) {
        if (!element.parent() || !element.parent()->is("resources"))
            continue;
        if (const auto id = element.attribute("id"))
            m_resources.insert(id->toByteArray(), &element);
    }
}

const DocumentSketch::Element *KnownTroubles::resource(const Element *element, QByteArrayView attribute) const
{
    const auto id = element->attribute(attribute);
    return id ? m_resources.value(QByteArray::fromRawData(id->data(), id->size())) : nullptr;
}

void KnownTroubles::run()
{
    if (m_document.get()->standalone == 1)
        error(&m_sketch.root(), u"document.standalone"_s, u"文档声明不能写 standalone=\"yes\"。"_s,
              u"删除 standalone。"_s);
    visit(&m_sketch.root(), {});
}

void KnownTroubles::error(const Element *element, const QString &rule, const QString &message, const QString &fix)
{
    m_findings.add(Findings::placeOf(*element), rule, Severity::error, message, fix);
}

void KnownTroubles::warning(const Element *element, const QString &rule, const QString &message, const QString &fix)
{
    m_findings.add(Findings::placeOf(*element), rule, Severity::warning, message, fix);
}

// Recursion is bounded: the parser refuses documents deeper than 256 elements.
void KnownTroubles::visit(const Element *element, const Timeline &around)
{
    m_check();
    const bool clip = isClip(element);
    if (clip || element->is("spine")) {
        try {
            checkTimes(element, around);
        } catch (const RationalOverflow &) {
            error(element, u"time.range"_s, u"时间数值过大。"_s);
        }
        checkLane(element, around);
    }
    if (clip)
        checkReference(element);
    else
        checkResource(element);
    if (element->is("caption"))
        checkCaption(element);
    if (element->isLeaf())
        return;
    if (clip)
        checkCaptionsOf(element);
    const Timeline inner = inside(element, around);
    for (const Element *child = element->firstChild(); child; child = child->next())
        visit(child, inner);
}

KnownTroubles::Timeline KnownTroubles::inside(const Element *element, const Timeline &around) const
{
    Timeline inner = around;
    inner.isStoryline = element->is("spine") || element->is("mc-angle");
    inner.holdsContent = false;
    if (element->is("sequence") || element->is("multicam")) {
        const Element *const format = resource(element, "format");
        inner.frameDuration = format ? readTime(format, "frameDuration") : std::nullopt;
        if (inner.frameDuration && *inner.frameDuration <= 0)
            inner.frameDuration = std::nullopt;
        inner.begin = readTime(element, "tcStart").value_or(0);
        inner.straight = true;
    } else if (element->is("spine")) {
        // The primary storyline counts in its sequence's time, a connected one in its own.
        if (element->attribute("lane"))
            inner.begin = 0;
    } else if (isClip(element)) {
        inner.begin = readTime(element, "start").value_or(0);
        inner.holdsContent = element->is("clip") || element->is("sync-clip");
        inner.straight =
            around.straight && !inner.holdsContent && !element->child("conform-rate") && !element->child("timeMap");
    } else if (element->is("audition")) {
        inner.holdsContent = true;
    }
    return inner;
}

void KnownTroubles::checkResource(const Element *element)
{
    if (element->is("sequence")) {
        const Element *const format = resource(element, "format");
        if (format && !format->attribute("frameDuration"))
            error(element, u"format.frame-duration"_s, u"格式缺少帧时长。"_s,
                  u"在它引用的 format 中写明 frameDuration。"_s);
        if (element->attribute("audioLayout") == "mono")
            error(element, u"sequence.audio-layout"_s, u"序列不能用单声道布局。"_s, u"改为 stereo 或 surround。"_s);
    } else if (element->is("media-rep") && element->attribute("src") == "") {
        error(element, u"asset.source"_s, u"找不到媒体文件。"_s, u"写明 src。"_s);
    } else if (element->is("effect") && element->attribute("uid").value_or("").startsWith("~/")) {
        warning(element, u"effect.local"_s, u"此 Motion 模板属于某一台电脑，没有安装它的电脑无法显示。"_s);
    }
    const auto modified = element->attribute("modDate");
    static const QRegularExpression date(u"^\\d{4}-\\d\\d-\\d\\d( \\d\\d:\\d\\d:\\d\\d( [+-]\\d{4})?)?$"_s);
    if (modified && !date.match(QString::fromUtf8(*modified)).hasMatch())
        error(element, u"date"_s, u"日期“%1”写法不对。"_s.arg(QString::fromUtf8(*modified)),
              u"时区写成数字，例如 +0800，或删除 modDate。"_s);
}

void KnownTroubles::checkTimes(const Element *element, const Timeline &around)
{
    bool readable = true;
    const QByteArrayView names[] = {"offset", "start", "duration"};
    std::optional<Rational> times[3];
    for (size_t i = 0; i < std::size(names); ++i) {
        const auto text = element->attribute(names[i]);
        times[i] = text ? Rational::parseTime(*text) : std::nullopt;
        if (!text || times[i])
            continue;
        readable = false;
        error(element, u"time.form"_s, u"时间“%1”写法不对。"_s.arg(QString::fromUtf8(*text)),
              u"写成有理数秒，例如 1001/30000s。"_s);
    }
    if (!readable)
        return;
    const auto &[offset, start, duration] = times;
    if (duration && *duration < 0)
        return error(element, u"time.negative"_s, u"时长为负。"_s);
    // Sound may lie between frames.
    if (!around.frameDuration || element->is("audio"))
        return;
    const bool isConnected = laneOf(element).value_or(0) != 0;
    if (around.straight && (isConnected || around.isStoryline))
        checkGrid(element, "offset", offset, around.begin, around);
    if (isConnected || around.isStoryline)
        checkGrid(element, "duration", duration, 0, around);
}

void KnownTroubles::checkGrid(const Element *element, QByteArrayView attribute, const std::optional<Rational> &time,
                              const Rational &base, const Timeline &around)
{
    if (!time)
        return;
    const Rational frames = (*time - base) / *around.frameDuration;
    if (frames.denominator() == 1)
        return;
    const Rational nearest = Rational(frames.rounded()) * *around.frameDuration + base;
    warning(element, u"time.grid"_s, u"此项目不在编辑帧边界上（%1）。"_s.arg(QString::fromUtf8(attribute)),
            u"%1 改为 %2。"_s.arg(QString::fromUtf8(attribute), timeText(nearest)));
}

void KnownTroubles::checkLane(const Element *element, const Timeline &around)
{
    const auto lane = element->attribute("lane");
    const auto number = laneOf(element);
    if (lane && !number)
        return error(element, u"lane.form"_s, u"轨道“%1”不是整数。"_s.arg(QString::fromUtf8(*lane)));
    const bool isConnected = number.value_or(0) != 0;
    const Element *const parent = element->parent();
    if (!parent)
        return;
    if (isConnected && (parent->is("spine") || parent->is("mc-angle")))
        warning(element, u"lane.storyline"_s, u"故事情节中的片段不能有轨道。"_s, u"删除 lane。"_s);
    else if (!isConnected && isClip(parent) && !around.holdsContent)
        // A file's own components stand in "video" and "audio" without a lane.
        if (!element->is("audio") && !element->is("video"))
            warning(element, u"lane.missing"_s, u"连接的片段没有轨道。"_s, u"写明 lane，例如 lane=\"1\"。"_s);
}

void KnownTroubles::checkReference(const Element *element)
{
    const Element *const referred = resource(element, "ref");
    if (!referred)
        return;
    if (element->is("title") && !referred->is("effect"))
        error(element, u"title.effect"_s, u"引用的不是字幕模板。"_s, u"ref 改为字幕模板（effect）的编号。"_s);
    if (element->is("asset-clip") && referred->is("asset")) {
        try {
            checkRange(element, referred);
        } catch (const RationalOverflow &) {
            error(element, u"time.range"_s, u"时间数值过大。"_s);
        }
    }
}

void KnownTroubles::checkRange(const Element *clip, const Element *asset)
{
    const auto length = readTime(asset, "duration");
    if (!length)
        return;
    if (*length == Rational(0) && asset->attribute("hasVideo") == "1")
        return error(clip, u"asset.still"_s, u"静止图像不能用 asset-clip。"_s, u"改用 video 元素。"_s);
    if (*length <= 0 || clip->child("timeMap") || clip->child("conform-rate"))
        return;
    const Rational tolerance(1, 10); // seconds: assets end between the frames of a timeline
    const Rational begin = readTime(asset, "start").value_or(0);
    const Rational from = readTime(clip, "start").value_or(0);
    const Rational to = from + readTime(clip, "duration").value_or(0);
    if (from + tolerance < begin || to > begin + *length + tolerance)
        warning(clip, u"asset.range"_s, u"片段超出素材范围。"_s,
                u"素材从 %1 开始，长 %2。"_s.arg(timeText(begin), timeText(*length)));
}

void KnownTroubles::checkCaption(const Element *caption)
{
    const auto role = CaptionRole::parse(QString::fromUtf8(caption->attribute("role").value_or("")));
    if (!role)
        warning(caption, u"caption.role"_s, u"字幕角色写法不对。"_s, u"例如 iTT?captionFormat=ITT.en。"_s);
    else if (CaptionRole::knownLanguage(role->language) != role->language)
        warning(caption, u"caption.language"_s, u"语言会变成英语：%1。"_s.arg(role->language),
                u"简体中文写作 cmn-Hans。"_s);
    const bool isJapanese = role && role->language.startsWith(u"ja"_s);
    const qsizetype lines = lineCount(caption);
    if (lines > (isJapanese ? 4 : 2))
        warning(caption, u"caption.lines"_s, u"文本行数太多。"_s, u"分成两条，或合并为两行以内。"_s);
}

/// Captions of one language must not overlap. Those of a clip come in any order.
void KnownTroubles::checkCaptionsOf(const Element *parent)
{
    QMap<QByteArray, std::vector<std::pair<Span, const Element *>>> byRole;
    for (const Element *child = parent->firstChild(); child; child = child->next()) {
        if (!child->is("caption"))
            continue;
        const auto offset = readTime(child, "offset");
        const auto duration = readTime(child, "duration");
        if (!offset || !duration)
            continue;
        try {
            byRole[child->attribute("role").value_or("").toByteArray()].push_back(
                {{.begin = *offset, .end = *offset + *duration}, child});
        } catch (const RationalOverflow &) {
            error(child, u"time.range"_s, u"时间数值过大。"_s);
        }
    }
    for (auto &captions : byRole) {
        std::ranges::stable_sort(captions, {}, [](const auto &each) { return each.first.begin; });
        for (size_t i = 1; i < captions.size(); ++i) {
            if (captions[i].first.begin < captions[i - 1].first.end)
                warning(captions[i].second, u"caption.overlap"_s, u"重叠错误：与前一条同语言字幕重叠。"_s);
        }
    }
}
