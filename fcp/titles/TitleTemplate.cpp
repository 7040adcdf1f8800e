#include "fcp/titles/TitleTemplate.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"
#include "fcp/Rational.h"
#include "fcp/texts/ProjectTexts.h"
#include "fcp/texts/TextFields.h"

#include <libxml/xmlsave.h>

#include <algorithm>
#include <array>
#include <map>

using namespace Qt::StringLiterals;

namespace {

XmlDocument parsed(const QByteArray &xml)
{
    return XmlDocument::parse(xml, u"不支持含外部实体的 XML。");
}

/// Whether a run of `element` is the one that takes the text.
bool takesText(const xmlNode *element)
{
    return Xml::isElement(element, "text-style") && Xml::isElement(element->parent, "text") && !element->children;
}

QByteArray contentOf(const xmlNode *element)
{
    const std::unique_ptr<xmlChar, decltype(xmlFree)> content(xmlNodeGetContent(element), xmlFree);
    return QByteArray(reinterpret_cast<const char *>(content.get()));
}

void remove(xmlNode *node)
{
    xmlUnlinkNode(node);
    xmlFreeNode(node);
}

} // namespace

qint64 TitleTemplate::styleCount() const
{
    const XmlDocument tree = parsed(xml);
    qint64 count = 0;
    for (const xmlNode *const child : Xml::Children(tree.root()))
        count += Xml::isElement(child, "text-style-def") ? 1 : 0;
    return count;
}

QString TitleTemplate::name() const
{
    return QString::fromUtf8(effects.first().name);
}

TitleTemplate::Surroundings TitleTemplate::surroundings() const
{
    const XmlDocument tree = parsed(xml);
    Surroundings around;
    bool isBehind = false;
    for (const xmlNode *const field : Xml::Children(tree.root())) {
        if (!Xml::isElement(field, "text"))
            continue;
        const xmlNode *const run = Xml::child(field, "text-style");
        if (run && takesText(run))
            isBehind = true;
        else
            (isBehind ? around.after : around.before) += QString::fromUtf8(contentOf(field));
    }
    return around;
}

double TitleTemplate::lastKeyframe() const
{
    const XmlDocument tree = parsed(xml);
    double last = 0;
    for (const xmlNode *element = tree.root(); element; element = Xml::nextElement(element, tree.root())) {
        if (!Xml::isElement(element, "keyframe"))
            continue;
        if (const auto time = Rational::parseTime(Xml::attribute(element, "time").value_or(QByteArray())))
            last = std::max(last, time->toDouble());
    }
    return last;
}

namespace {

TitleTemplate::Effect readEffect(JsonReader &json)
{
    TitleTemplate::Effect effect;
    json.readObject({"name", "uid"}, [&](QByteArrayView key) {
        if (key == "name")
            effect.name = json.readText().toUtf8();
        else if (key == "uid")
            effect.uid = json.readText().toUtf8();
        else if (key == "src" && !json.readNull())
            effect.src = json.readText().toUtf8();
    });
    return effect;
}

/// Whether the XML is a title with one place for its text, whose references all lead somewhere.
bool isWhole(const TitleTemplate &look)
{
    try {
        const XmlDocument tree = parsed(look.xml);
        if (!Xml::isElement(tree.root(), "title") || !Xml::attribute(tree.root(), "ref"))
            return false;
        const qint64 styles = look.styleCount();
        qsizetype places = 0;
        for (const xmlNode *element = tree.root(); element; element = Xml::nextElement(element, tree.root())) {
            places += takesText(element) ? 1 : 0;
            if (!Xml::attribute(element, "ref"))
                continue;
            const qint64 reference = Xml::integerAttribute(element, "ref").value_or(-1);
            const qint64 count = Xml::isElement(element, "text-style") ? styles : look.effects.size();
            if (reference < 0 || reference >= count)
                return false;
        }
        return places == 1;
    } catch (const PlatformError &) {
        return false;
    } catch (const ConversionError &) {
        return false;
    }
}

} // namespace

TitleTemplate readTitleTemplate(JsonReader &json)
{
    TitleTemplate look;
    json.readObject({"effects", "xml"}, [&](QByteArrayView key) {
        if (key == "effects")
            json.readArray([&] { look.effects.append(readEffect(json)); });
        else if (key == "xml")
            look.xml = json.readText().toUtf8();
    });
    if (!isWhole(look))
        json.refuse(u"标题样式"_s);
    return look;
}

void writeTitleTemplate(JsonWriter &json, const TitleTemplate &look)
{
    json.beginObject();
    json.key("effects").beginArray();
    for (const TitleTemplate::Effect &effect : look.effects) {
        json.beginObject();
        json.key("name").text(QString::fromUtf8(effect.name));
        if (!effect.src.isEmpty())
            json.key("src").text(QString::fromUtf8(effect.src));
        json.key("uid").text(QString::fromUtf8(effect.uid));
        json.endObject();
    }
    json.endArray();
    json.key("xml").text(QString::fromUtf8(look.xml));
    json.endObject();
}

namespace TitleTemplates {

namespace {

const xmlNode *resource(const XmlDocument &document, const xmlNode *project, const QByteArray &id)
{
    const auto inside = [&](const xmlNode *parent) -> const xmlNode * {
        const xmlNode *const resources = parent ? Xml::child(parent, "resources") : nullptr;
        for (const xmlNode *const each : Xml::Children(resources)) {
            if (Xml::attribute(each, "id") == id)
                return each;
        }
        return nullptr;
    };
    const xmlNode *const found = inside(document.root());
    // The oldest documents have their resources inside the project.
    return found ? found : inside(project);
}

const xmlNode *find(const XmlDocument &document, const xmlNode *project, const QString &text)
{
    for (const ProjectTexts::Track &track : ProjectTexts::read(document, project)) {
        if (track.captions)
            continue;
        for (qsizetype i = 0; i < track.items.size(); ++i) {
            const xmlNode *const title = track.places[size_t(i)].element;
            if (text.isEmpty() || track.items[i].text == text || Xml::attribute(title, "name") == text.toUtf8())
                return title;
        }
    }
    throw ConversionError(text.isEmpty() ? u"项目中没有可以用作样式的标题。"_s
                                         : u"项目中没有文字或名称为“%1”的标题。"_s.arg(text));
}

/// Takes one title apart.
class Reader
{
public:
    Reader(const XmlDocument &document, const xmlNode *project, const xmlNode *title, int minorVersion)
        : m_document(document)
        , m_project(project)
        , m_minorVersion(minorVersion)
        , m_tree(parsed("<title/>"))
    {
        xmlNode *const copy = xmlDocCopyNode(const_cast<xmlNode *>(title), m_tree.get(), 1);
        if (!copy)
            throw std::bad_alloc();
        xmlNode *const old = xmlDocSetRootElement(m_tree.get(), copy);
        xmlFreeNode(old);
    }

    TitleTemplate read()
    {
        keepLook();
        emptyText();
        dropUnusedStyles();
        number();
        TitleTemplate look{.effects = m_effects, .xml = {}};
        const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(), xmlBufferFree);
        xmlNodeDump(buffer.get(), m_tree.get(), root(), 0, 0);
        look.xml =
            QByteArray(reinterpret_cast<const char *>(xmlBufferContent(buffer.get())), xmlBufferLength(buffer.get()));
        return look;
    }

private:
    xmlNode *root() const { return m_tree.root(); }

    bool isLook(const xmlNode *child) const
    {
        static constexpr std::array<QByteArrayView, 8> names{"param",          "text",         "text-style-def",
                                                             "adjust-crop",    "adjust-blend", "adjust-transform",
                                                             "adjust-corners", "filter-video"};
        const bool isLater = Xml::isElement(child, "adjust-colorConform") && m_minorVersion >= 11;
        return isLater || std::ranges::find(names, Xml::elementName(child)) != names.end();
    }

    /// Only what is seen of a title stays, and no blanks between its parts.
    void keepLook()
    {
        for (xmlNode *child = root()->children; child;) {
            xmlNode *const next = child->next;
            if (child->type != XML_ELEMENT_NODE || !isLook(child))
                remove(child);
            child = next;
        }
        for (const char *const name : {"name", "lane", "offset", "start", "duration", "enabled"})
            Xml::removeAttribute(root(), name);
        for (xmlNode *element = root(); element && m_minorVersion < 11; element = Xml::nextElement(element, root()))
            Xml::removeAttribute(element, "auxValue");
    }

    /// The first field that shows something gives its text away, and keeps its first run.
    void emptyText()
    {
        const auto fields = TextFields::read(root());
        const auto field = std::ranges::find_if(fields, [](const auto &each) { return !each.shown().isEmpty(); });
        if (field == fields.end())
            throw ConversionError(u"所选标题没有文字，不能用作样式。"_s);
        auto *const element = const_cast<xmlNode *>(field->element);
        xmlNode *const first = Xml::child(element, "text-style");
        for (xmlNode *child = element->children; child;) {
            xmlNode *const next = child->next;
            if (child != first)
                remove(child);
            child = next;
        }
        if (!first)
            throw ConversionError(u"所选标题的文字没有样式，不能用作样式。"_s);
        while (first->children)
            remove(first->children);
        for (const auto &other : fields) {
            if (other.element != field->element)
                keepFilled(const_cast<xmlNode *>(other.element));
        }
    }

    /// An empty run would take the text, too.
    static void keepFilled(xmlNode *field)
    {
        for (xmlNode *child = field->children; child;) {
            xmlNode *const next = child->next;
            if (child->type != XML_ELEMENT_NODE || !child->children)
                remove(child);
            child = next;
        }
    }

    void dropUnusedStyles()
    {
        std::vector<QByteArray> used;
        for (const xmlNode *element = root(); element; element = Xml::nextElement(element, root())) {
            if (Xml::isElement(element, "text-style") && Xml::attribute(element, "ref"))
                used.push_back(*Xml::attribute(element, "ref"));
        }
        for (xmlNode *child = root()->children; child;) {
            xmlNode *const next = child->next;
            if (Xml::isElement(child, "text-style-def") &&
                std::ranges::find(used, Xml::attribute(child, "id").value_or(QByteArray())) == used.end())
                remove(child);
            child = next;
        }
    }

    /// Effects and styles by their index.
    void number()
    {
        std::map<QByteArray, QByteArray> styles;
        for (xmlNode *const child : Xml::Children(root())) {
            if (Xml::isElement(child, "text-style-def"))
                styles.emplace(Xml::attribute(child, "id").value_or(QByteArray()), QByteArray::number(styles.size()));
        }
        std::map<QByteArray, QByteArray> effects;
        for (xmlNode *element = root(); element; element = Xml::nextElement(element, root())) {
            const auto id = Xml::attribute(element, "id");
            const auto ref = Xml::attribute(element, "ref");
            if (Xml::isElement(element, "text-style-def"))
                Xml::setAttribute(element, "id", styles.at(id.value_or(QByteArray())));
            else if (ref && Xml::isElement(element, "text-style") && styles.contains(*ref))
                Xml::setAttribute(element, "ref", styles.at(*ref));
            else if (ref && Xml::isElement(element, "text-style"))
                throw ConversionError(u"所选标题的文字样式不完整。"_s);
            else if (element == root() || ref)
                Xml::setAttribute(element, "ref", effectIndex(effects, ref.value_or(QByteArray())));
        }
    }

    QByteArray effectIndex(std::map<QByteArray, QByteArray> &known, const QByteArray &id)
    {
        if (known.contains(id))
            return known.at(id);
        const xmlNode *const effect = resource(m_document, m_project, id);
        if (!effect || !Xml::isElement(effect, "effect") || !Xml::attribute(effect, "uid"))
            throw ConversionError(u"所选标题引用的不是字幕模板。"_s);
        const auto value = [&](const char *name) { return Xml::attribute(effect, name).value_or(QByteArray()); };
        m_effects.append({.name = value("name"), .uid = value("uid"), .src = value("src")});
        return known.emplace(id, QByteArray::number(m_effects.size() - 1)).first->second;
    }

    const XmlDocument &m_document;
    const xmlNode *m_project;
    int m_minorVersion;
    XmlDocument m_tree;
    QList<TitleTemplate::Effect> m_effects;
};

} // namespace

TitleTemplate read(const XmlDocument &document, const xmlNode *project, const QString &text, int minorVersion)
{
    return read(document, project, find(document, project, text), minorVersion);
}

TitleTemplate read(const XmlDocument &document, const xmlNode *project, const xmlNode *title, int minorVersion)
{
    return Reader(document, project, title, minorVersion).read();
}

} // namespace TitleTemplates
