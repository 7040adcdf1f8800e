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
using Names = std::span<const QByteArrayView>;

bool isOneOf(const xmlNode *element, Names names)
{
    return std::ranges::find(names, Xml::elementName(element)) != names.end();
}

bool isClip(const xmlNode *element)
{
    static constexpr std::array<QByteArrayView, 11> names{"title",     "caption", "asset-clip",  "video",
                                                          "clip",      "gap",     "ref-clip",    "mc-clip",
                                                          "sync-clip", "audio",   "live-drawing"};
    return isOneOf(element, names);
}

std::optional<Rational> readTime(const xmlNode *element, QByteArrayView name)
{
    const auto text = Xml::attribute(element, name);
    return text ? Rational::parseTime(*text) : std::nullopt;
}

QString timeText(const Rational &seconds)
{
    const QString numerator = QString::number(seconds.numerator());
    return seconds.denominator() == 1 ? numerator + u's'
                                      : numerator + u'/' + QString::number(seconds.denominator()) + u's';
}

} // namespace

KnownTroubles::KnownTroubles(const XmlDocument &document, Findings &findings, const Check &check)
    : m_document(document)
    , m_findings(findings)
    , m_check(check)
{
    for (const xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        if (!element->parent || !Xml::isElement(element->parent, "resources"))
            continue;
        if (const auto id = Xml::attribute(element, "id"))
            m_resources.insert(*id, element);
    }
}

void KnownTroubles::run()
{
    if (m_document.get()->standalone == 1)
        error(m_document.root(), u"document.standalone"_s, u"文档声明不能写 standalone=\"yes\"。"_s,
              u"删除 standalone。"_s);
    visit(m_document.root(), {});
}

void KnownTroubles::error(const xmlNode *element, const QString &rule, const QString &message, const QString &fix)
{
    m_findings.add(element, rule, Severity::error, message, fix);
}

void KnownTroubles::warning(const xmlNode *element, const QString &rule, const QString &message, const QString &fix)
{
    m_findings.add(element, rule, Severity::warning, message, fix);
}

// Recursion is bounded: the parser refuses documents deeper than 256 elements.
void KnownTroubles::visit(const xmlNode *element, const Timeline &around)
{
    m_check();
    const bool clip = isClip(element);
    if (clip || Xml::isElement(element, "spine")) {
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
    if (Xml::isElement(element, "caption"))
        checkCaption(element);
    // Texts and parameters hold nothing that is looked for here, and are most of a document.
    static constexpr std::array<QByteArrayView, 5> leaves{"text", "text-style-def", "param", "metadata", "bookmark"};
    if (isOneOf(element, leaves))
        return;
    if (clip)
        checkCaptionsOf(element);
    const Timeline inner = inside(element, around);
    for (const xmlNode *const child : Xml::Children(element))
        visit(child, inner);
}

KnownTroubles::Timeline KnownTroubles::inside(const xmlNode *element, const Timeline &around) const
{
    Timeline inner = around;
    inner.isStoryline = Xml::isElement(element, "spine") || Xml::isElement(element, "mc-angle");
    inner.holdsContent = false;
    if (Xml::isElement(element, "sequence") || Xml::isElement(element, "multicam")) {
        const xmlNode *const format = m_resources.value(Xml::attribute(element, "format").value_or(QByteArray()));
        inner.frameDuration = format ? readTime(format, "frameDuration") : std::nullopt;
        if (inner.frameDuration && *inner.frameDuration <= 0)
            inner.frameDuration = std::nullopt;
        inner.begin = readTime(element, "tcStart").value_or(0);
        inner.straight = true;
    } else if (Xml::isElement(element, "spine")) {
        // The primary storyline counts in its sequence's time, a connected one in its own.
        if (Xml::attribute(element, "lane"))
            inner.begin = 0;
    } else if (isClip(element)) {
        inner.begin = readTime(element, "start").value_or(0);
        inner.holdsContent = Xml::isElement(element, "clip") || Xml::isElement(element, "sync-clip");
        inner.straight = around.straight && !inner.holdsContent && !Xml::child(element, "conform-rate") &&
                         !Xml::child(element, "timeMap");
    } else if (Xml::isElement(element, "audition")) {
        inner.holdsContent = true;
    }
    return inner;
}

void KnownTroubles::checkResource(const xmlNode *element)
{
    const QByteArrayView name = Xml::elementName(element);
    if (name == "sequence") {
        const xmlNode *const format = m_resources.value(Xml::attribute(element, "format").value_or(QByteArray()));
        if (format && !Xml::attribute(format, "frameDuration"))
            error(element, u"format.frame-duration"_s, u"格式缺少帧时长。"_s,
                  u"在它引用的 format 中写明 frameDuration。"_s);
        if (Xml::attribute(element, "audioLayout") == "mono")
            error(element, u"sequence.audio-layout"_s, u"序列不能用单声道布局。"_s, u"改为 stereo 或 surround。"_s);
    } else if (name == "media-rep" && Xml::attribute(element, "src") == "") {
        error(element, u"asset.source"_s, u"找不到媒体文件。"_s, u"写明 src。"_s);
    } else if (name == "effect" && Xml::attribute(element, "uid").value_or(QByteArray()).startsWith("~/")) {
        warning(element, u"effect.local"_s, u"此 Motion 模板属于某一台电脑，没有安装它的电脑无法显示。"_s);
    }
    static const QRegularExpression date(u"^\\d{4}-\\d\\d-\\d\\d( \\d\\d:\\d\\d:\\d\\d( [+-]\\d{4})?)?$"_s);
    const auto modified = Xml::attribute(element, "modDate");
    if (modified && !date.match(QString::fromUtf8(*modified)).hasMatch())
        error(element, u"date"_s, u"日期“%1”写法不对。"_s.arg(QString::fromUtf8(*modified)),
              u"时区写成数字，例如 +0800，或删除 modDate。"_s);
}

void KnownTroubles::checkTimes(const xmlNode *element, const Timeline &around)
{
    bool readable = true;
    for (const QByteArrayView name : {"offset", "start", "duration"}) {
        const auto text = Xml::attribute(element, name);
        if (!text || Rational::parseTime(*text))
            continue;
        readable = false;
        error(element, u"time.form"_s, u"时间“%1”写法不对。"_s.arg(QString::fromUtf8(*text)),
              u"写成有理数秒，例如 1001/30000s。"_s);
    }
    if (!readable)
        return;
    if (const auto duration = readTime(element, "duration"); duration && *duration < 0)
        return error(element, u"time.negative"_s, u"时长为负。"_s);
    // Sound may lie between frames.
    if (!around.frameDuration || Xml::isElement(element, "audio"))
        return;
    const bool isConnected = Xml::integerAttribute(element, "lane").value_or(0) != 0;
    if (around.straight && (isConnected || around.isStoryline))
        checkGrid(element, "offset", around.begin, around);
    if (isConnected || around.isStoryline)
        checkGrid(element, "duration", 0, around);
}

void KnownTroubles::checkGrid(const xmlNode *element, QByteArrayView attribute, const Rational &base,
                              const Timeline &around)
{
    const auto time = readTime(element, attribute);
    if (!time)
        return;
    const Rational frames = (*time - base) / *around.frameDuration;
    if (frames.denominator() == 1)
        return;
    const Rational nearest = Rational(frames.rounded()) * *around.frameDuration + base;
    warning(element, u"time.grid"_s, u"此项目不在编辑帧边界上（%1）。"_s.arg(QString::fromUtf8(attribute)),
            u"%1 改为 %2。"_s.arg(QString::fromUtf8(attribute), timeText(nearest)));
}

void KnownTroubles::checkLane(const xmlNode *element, const Timeline &around)
{
    const auto lane = Xml::attribute(element, "lane");
    const auto number = Xml::integerAttribute(element, "lane");
    if (lane && !number)
        return error(element, u"lane.form"_s, u"轨道“%1”不是整数。"_s.arg(QString::fromUtf8(*lane)));
    const bool isConnected = number.value_or(0) != 0;
    const xmlNode *const parent = element->parent;
    if (isConnected && (Xml::isElement(parent, "spine") || Xml::isElement(parent, "mc-angle")))
        warning(element, u"lane.storyline"_s, u"故事情节中的片段不能有轨道。"_s, u"删除 lane。"_s);
    else if (!isConnected && isClip(parent) && !around.holdsContent)
        // A file's own components stand in "video" and "audio" without a lane.
        if (!Xml::isElement(element, "audio") && !Xml::isElement(element, "video"))
            warning(element, u"lane.missing"_s, u"连接的片段没有轨道。"_s, u"写明 lane，例如 lane=\"1\"。"_s);
}

void KnownTroubles::checkReference(const xmlNode *element)
{
    const auto id = Xml::attribute(element, "ref");
    const xmlNode *const resource = id ? m_resources.value(*id) : nullptr;
    if (!resource)
        return;
    if (Xml::isElement(element, "title") && !Xml::isElement(resource, "effect"))
        error(element, u"title.effect"_s, u"引用的不是字幕模板。"_s, u"ref 改为字幕模板（effect）的编号。"_s);
    if (Xml::isElement(element, "asset-clip") && Xml::isElement(resource, "asset")) {
        try {
            checkRange(element, resource);
        } catch (const RationalOverflow &) {
            error(element, u"time.range"_s, u"时间数值过大。"_s);
        }
    }
}

void KnownTroubles::checkRange(const xmlNode *clip, const xmlNode *asset)
{
    const auto length = readTime(asset, "duration");
    if (!length)
        return;
    if (*length == Rational(0) && Xml::attribute(asset, "hasVideo") == "1")
        return error(clip, u"asset.still"_s, u"静止图像不能用 asset-clip。"_s, u"改用 video 元素。"_s);
    if (*length <= 0 || Xml::child(clip, "timeMap") || Xml::child(clip, "conform-rate"))
        return;
    const Rational tolerance(1, 10); // seconds: assets end between the frames of a timeline
    const Rational begin = readTime(asset, "start").value_or(0);
    const Rational from = readTime(clip, "start").value_or(0);
    const Rational to = from + readTime(clip, "duration").value_or(0);
    if (from + tolerance < begin || to > begin + *length + tolerance)
        warning(clip, u"asset.range"_s, u"片段超出素材范围。"_s,
                u"素材从 %1 开始，长 %2。"_s.arg(timeText(begin), timeText(*length)));
}

void KnownTroubles::checkCaption(const xmlNode *caption)
{
    const auto role = CaptionRole::parse(QString::fromUtf8(Xml::attribute(caption, "role").value_or(QByteArray())));
    if (!role)
        warning(caption, u"caption.role"_s, u"字幕角色写法不对。"_s, u"例如 iTT?captionFormat=ITT.en。"_s);
    else if (CaptionRole::knownLanguage(role->language) != role->language)
        warning(caption, u"caption.language"_s, u"语言会变成英语：%1。"_s.arg(role->language),
                u"简体中文写作 cmn-Hans。"_s);
    const bool isJapanese = role && role->language.startsWith(u"ja"_s);
    const qsizetype lines = TextFields::shown(TextFields::read(caption)).count(u'\n') + 1;
    if (lines > (isJapanese ? 4 : 2))
        warning(caption, u"caption.lines"_s, u"文本行数太多。"_s, u"分成两条，或合并为两行以内。"_s);
}

/// Captions of one language must not overlap. Those of a clip come in any order.
void KnownTroubles::checkCaptionsOf(const xmlNode *parent)
{
    QMap<QByteArray, std::vector<std::pair<Span, const xmlNode *>>> byRole;
    for (const xmlNode *const child : Xml::Children(parent)) {
        if (!Xml::isElement(child, "caption"))
            continue;
        const auto offset = readTime(child, "offset");
        const auto duration = readTime(child, "duration");
        if (!offset || !duration)
            continue;
        try {
            byRole[Xml::attribute(child, "role").value_or(QByteArray())].push_back(
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
