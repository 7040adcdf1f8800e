#include "fcp/FCPXML.h"

#include "core/Failure.h"
#include "core/files/FileReader.h"
#include "fcp/titles/NewDocument.h"
#include "fcp/titles/TitleConnection.h"
#include "fcp/titles/TitleEffects.h"
#include "fcp/xml/XmlGuard.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace FCPXML {

namespace {

constexpr QStringView draggedRefusal = u"FCP 数据过大或含不支持的 XML 实体。";

[[noreturn]] void throwMissingStructure(const QString &detail = {})
{
    throw ConversionError(u"项目 XML 缺少必要结构。"_s, detail);
}

/// A "src" value as an absolute URL, unchanged where it has a scheme.
QByteArray absoluteSource(const QByteArray &value, const QUrl &folder)
{
    const QUrl url = QUrl(QString::fromUtf8(value), QUrl::TolerantMode);
    if (value.isEmpty() || !url.scheme().isEmpty())
        return value;
    // "12:30.mov" is no valid URL but a file's name.
    const QUrl relative = url.isValid() ? url : QUrl(u"./"_s + QString::fromUtf8(value), QUrl::TolerantMode);
    return folder.resolved(relative).toEncoded();
}

void resolveSources(const XmlDocument &document, const QString &folder, const Check &check)
{
    SparseCheck goOn(check);
    const QUrl base = QUrl::fromLocalFile(QFileInfo(folder).absoluteFilePath() + u'/');
    for (xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        goOn();
        const auto source = Xml::attribute(element, "src");
        if (!source)
            continue;
        const QByteArray absolute = absoluteSource(*source, base);
        if (absolute != *source)
            Xml::setAttribute(element, "src", absolute);
    }
}

/// The "format" resource of that id in the resources of `parent`, null when there is none. Compared in code: ids come
/// from outside and never become part of a query.
const xmlNode *findFormat(const xmlNode *parent, const QByteArray &id)
{
    for (const xmlNode *const resources : Xml::Children(parent)) {
        if (!Xml::isElement(resources, "resources"))
            continue;
        for (const xmlNode *const format : Xml::Children(resources)) {
            if (Xml::isElement(format, "format") && Xml::attribute(format, "id") == id)
                return format;
        }
    }
    return nullptr;
}

const xmlNode *sequenceFormat(const XmlDocument &document, const xmlNode *sequence)
{
    const auto id = sequence ? Xml::attribute(sequence, "format") : std::nullopt;
    if (!id)
        return nullptr;
    const xmlNode *const format = findFormat(document.root(), *id);
    // The oldest documents have their resources inside the project.
    return format ? format : findFormat(sequence->parent, *id);
}

std::optional<Rational> timeAttribute(const xmlNode *element, QByteArrayView name)
{
    const auto text = Xml::attribute(element, name);
    return text ? Rational::parseTime(*text) : std::nullopt;
}

bool hasFrameDuration(const FrameRate &rate, const xmlNode *format)
{
    static const Rational tolerance(1, 10'000'000); // seconds
    const auto duration = timeAttribute(format, "frameDuration");
    if (!duration)
        return false;
    try {
        const Rational difference = *duration - rate.frameDuration();
        return difference < tolerance && -difference < tolerance;
    } catch (const RationalOverflow &) {
        return false;
    }
}

QString inSeconds(const Rational &time)
{
    return QString::number(time.toDouble(), 'f', 3);
}

/// What a frame format says of its rate; null when there is no format.
QString frameDurationDetail(const xmlNode *format)
{
    if (!format)
        return u"项目没有画面格式。"_s;
    const auto stated = Xml::attribute(format, "frameDuration");
    return stated ? u"%1 的 frameDuration 是 %2。"_s.arg(Xml::place(format), Xml::excerpt(*stated))
                  : u"%1 没有 frameDuration。"_s.arg(Xml::place(format));
}

void checkLength(const std::vector<PlacedTrack> &tracks, const Rational &duration, const FrameRate &rate)
{
    static const Rational tolerance(1, 1'000); // seconds
    const TitleGrid::Title &last = PlacedTracks::last(tracks);
    if (Rational(last.endFrame) * rate.frameDuration() > duration + tolerance)
        throw ConversionError(u"字幕超出项目时长，请检查音频版本或时间偏移。"_s,
                              u"第 %1 条字幕结束于 %2 秒，项目长 %3 秒。"_s.arg(
                                  QString::number(last.cueID),
                                  inSeconds(Rational(last.endFrame) * rate.frameDuration()), inSeconds(duration)));
}

/// A base document that passed its checks, with the effect in place.
TitleDocument extend(XmlDocument base, std::vector<PlacedTrack> tracks, const QString &projectName, const Check &check)
{
    const Options &options = tracks.front().track.options;
    xmlNode *const project = FCPXML::project(base, projectName);
    // Final Cut Pro takes a project without these for a new one and leaves the old one alone.
    Xml::removeAttribute(project, "uid");
    Xml::removeAttribute(project, "modDate");
    const Identifiers ids(base);
    xmlNode *const ofRoot = Xml::child(base.root(), "resources");
    xmlNode *const resources = ofRoot ? ofRoot : Xml::child(project, "resources");
    const xmlNode *const sequence = Xml::child(project, "sequence");
    const xmlNode *const spine = sequence ? Xml::child(sequence, "spine") : nullptr;
    const auto duration = sequence ? timeAttribute(sequence, "duration") : std::nullopt;
    if (!resources)
        throwMissingStructure(u"缺少 resources。"_s);
    if (!spine)
        throwMissingStructure(u"项目没有主时间线（sequence 中的 spine）。"_s);
    if (!duration)
        throwMissingStructure(u"%1 没有可读的 duration。"_s.arg(Xml::place(sequence)));
    const xmlNode *const format = sequenceFormat(base, sequence);
    if (!format || !hasFrameDuration(options.rate, format))
        throw ConversionError(u"字幕帧率与项目不一致，请重新选择项目 XML。"_s,
                              u"字幕按每秒 %1 帧；%2"_s.arg(options.rate.label, frameDurationDetail(format)));
    const auto start = Rational::parseTime(Xml::attribute(sequence, "tcStart").value_or("0s"));
    if (!start)
        throwMissingStructure(u"%1 的 tcStart 无法读取。"_s.arg(Xml::place(sequence)));
    checkLength(tracks, *duration, options.rate);
    Xml::setAttribute(project, "name", options.name.toUtf8());
    auto effectIDs = TitleEffects::add(resources, nullptr, tracks, ids);
    return TitleConnection::connect({.tree = std::move(base),
                                     .spine = spine,
                                     .projectStart = *start,
                                     .styles = ids.counter("substyle"),
                                     .effectIDs = std::move(effectIDs),
                                     .indentation = std::nullopt},
                                    std::move(tracks), check);
}

/// How many projects there are, and what the first of them are called.
QString listed(const std::vector<xmlNode *> &projects)
{
    constexpr size_t most = 5;
    if (projects.empty())
        return u"文件中没有项目。"_s;
    QStringList names;
    for (size_t i = 0; i < std::min(most, projects.size()); ++i)
        names += u'“' + Xml::excerpt(Xml::attribute(projects[i], "name").value_or(QByteArray())) + u'”';
    const QStringView more = projects.size() > most ? u"…" : u"";
    return u"文件中有 %1 个项目：%2%3。"_s.arg(QString::number(projects.size()), names.join(u'、'), more);
}

} // namespace

// Shells complete the name of a bundle, which is a folder, with a slash.
QString fileOf(const QString &path)
{
    const QFileInfo given(QDir::cleanPath(path));
    const bool isBundle = given.suffix().compare(u"fcpxmld", Qt::CaseInsensitive) == 0;
    return isBundle ? given.filePath() + u"/Info.fcpxml"_s : path;
}

QByteArray bytes(const QString &path)
{
    const QString file = fileOf(path);
    return Failure::naming(file, [&] {
        auto bytes = FileReader::readUpTo(file, largestFile);
        if (!bytes)
            throw ConversionError(u"FCPXML 文件过大，请分段导入。"_s);
        return *std::move(bytes);
    });
}

XmlDocument document(const QString &path)
{
    const QString file = fileOf(path);
    const QByteArray read = bytes(path);
    return Failure::naming(file, [&] { return document(read, QFileInfo(file).absolutePath()); });
}

XmlDocument document(QByteArrayView bytes, const QString &folder, const Check &check)
{
    if (bytes.size() > largestFile)
        throw ConversionError(u"FCPXML 文件过大，请分段导入。"_s);
    XmlDocument result = XmlDocument::parse(bytes, u"不支持含外部实体的 XML。", check);
    resolveSources(result, folder, check);
    return result;
}

void checkDragged(QByteArrayView data)
{
    if (data.size() > largestFile || XmlGuard::mentionsEntity(data))
        throw ConversionError(draggedRefusal.toString());
}

XmlDocument draggedDocument(QByteArrayView data, const Check &check)
{
    if (data.size() > largestFile)
        throw ConversionError(draggedRefusal.toString());
    return XmlDocument::parse(data, draggedRefusal, check);
}

std::vector<xmlNode *> projects(const XmlDocument &document)
{
    std::vector<xmlNode *> found;
    const auto collect = [&](const xmlNode *parent) {
        for (xmlNode *const child : Xml::Children(parent)) {
            if (Xml::isElement(child, "project"))
                found.push_back(child);
        }
    };
    const auto collectFromEvents = [&](const xmlNode *parent) {
        for (const xmlNode *const child : Xml::Children(parent)) {
            if (Xml::isElement(child, "event"))
                collect(child);
        }
    };
    const xmlNode *const root = document.root();
    if (Xml::isElement(root, "fcpxml")) {
        collect(root);
        collectFromEvents(root);
        for (const xmlNode *const child : Xml::Children(root)) {
            if (Xml::isElement(child, "library"))
                collectFromEvents(child);
        }
    }
    return found;
}

xmlNode *project(const XmlDocument &document)
{
    const auto found = projects(document);
    if (found.size() != 1)
        throw ConversionError(u"请选择只包含一个项目的 FCPXML。"_s, listed(found));
    return found.front();
}

xmlNode *project(const XmlDocument &document, const QString &name)
{
    if (name.isEmpty())
        return project(document);
    auto found = projects(document);
    std::erase_if(found, [&](const xmlNode *each) { return Xml::attribute(each, "name") != name.toUtf8(); });
    if (found.empty())
        throw ConversionError(u"找不到名为“%1”的项目。"_s.arg(name));
    if (found.size() > 1)
        throw ConversionError(u"有多个名为“%1”的项目。"_s.arg(name));
    return found.front();
}

Options settings(Options options, const XmlDocument &document, const QString &projectName)
{
    const xmlNode *const project = FCPXML::project(document, projectName);
    const xmlNode *const format = sequenceFormat(document, Xml::child(project, "sequence"));
    if (!format)
        throw ConversionError(u"找不到项目画面格式。"_s, u"见%1。"_s.arg(Xml::place(project)));
    const auto name = Xml::attribute(project, "name");
    return settings(std::move(options), format, name ? QString::fromUtf8(*name) : u"项目"_s);
}

Options settings(Options options, const xmlNode *format, const QString &name)
{
    const auto rates = FrameRate::all();
    const auto rate =
        std::find_if(rates.begin(), rates.end(), [&](const FrameRate &each) { return hasFrameDuration(each, format); });
    if (rate == rates.end())
        throw ConversionError(u"项目帧率暂不支持。"_s, frameDurationDetail(format));
    options.rate = *rate;
    options.width = Xml::integerAttribute(format, "width").value_or(3840);
    options.height = Xml::integerAttribute(format, "height").value_or(2160);
    options.fontSize = double(options.height) / 45;
    options.name = name + u"_字幕版"_s;
    return options;
}

TitleDocument convert(const QList<Subtitle> &cues, std::optional<XmlDocument> base, const Options &options,
                      const QString &projectName, const Check &check)
{
    return convert({{.cues = cues, .options = options}}, std::move(base), projectName, check);
}

TitleDocument convert(const std::vector<TitleTrack> &tracks, std::optional<XmlDocument> base,
                      const QString &projectName, const Check &check)
{
    if (!base)
        return NewDocument::project(tracks, check);
    auto placed = PlacedTracks::place(tracks, check);
    try {
        return extend(*std::move(base), std::move(placed), projectName, check);
    } catch (const RationalOverflow &) {
        throwMissingStructure();
    }
}

} // namespace FCPXML
