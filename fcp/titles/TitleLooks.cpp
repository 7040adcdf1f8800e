#include "fcp/titles/TitleLooks.h"

#include "core/ConversionError.h"
#include "fcp/ColorText.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"

#include <QHash>

#include <cmath>

using namespace Qt::StringLiterals;

namespace TitleLooks {

namespace {

/// Gathers looks, each once.
class Gathering
{
public:
    Gathering(const XmlDocument &document, int minorVersion, const Check &check)
        : m_document(document)
        , m_minorVersion(minorVersion)
        , m_check(check)
    {}

    void addFrom(const xmlNode *project)
    {
        for (const ProjectTexts::Track &track : ProjectTexts::read(m_document, project)) {
            for (qsizetype i = 0; !track.captions && i < track.items.size(); ++i) {
                if (m_check)
                    m_check();
                add(project, track.places[size_t(i)].element, track.items[i].text);
            }
        }
    }

    QList<Offer> offers() { return std::move(m_offers); }

private:
    void add(const xmlNode *project, const xmlNode *title, const QString &text)
    {
        try {
            const TitleTemplate look = TitleTemplates::read(m_document, project, title, m_minorVersion);
            const auto known = m_places.constFind(look.xml);
            if (known != m_places.constEnd() && m_offers[*known].look == look) {
                ++m_offers[*known].titles;
                return;
            }
            m_places.insert(look.xml, m_offers.size());
            const QByteArray name = Xml::attribute(title, "name").value_or(QByteArray());
            m_offers.append({.look = look, .text = text, .name = QString::fromUtf8(name)});
        } catch (const ConversionError &) { // NOLINT(bugprone-empty-catch): it is not offered
        }
    }

    const XmlDocument &m_document;
    int m_minorVersion;
    const Check &m_check;
    QList<Offer> m_offers;
    QHash<QByteArray, qsizetype> m_places; ///< Of the newest offer with that XML.
};

/// The style of the text that a cue takes the place of; null where it has none.
const xmlNode *textStyle(const xmlNode *title)
{
    QByteArray wanted;
    for (const xmlNode *element = title; element; element = Xml::nextElement(element, title)) {
        if (Xml::isElement(element, "text-style") && Xml::isElement(element->parent, "text") && !element->children)
            wanted = Xml::attribute(element, "ref").value_or(QByteArray());
    }
    for (const xmlNode *const child : Xml::Children(title)) {
        if (Xml::isElement(child, "text-style-def") && Xml::attribute(child, "id") == wanted)
            return Xml::child(child, "text-style");
    }
    return nullptr;
}

std::optional<double> number(const QByteArray &text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

void takeNumber(const xmlNode *style, const char *name, double lowest, double highest, double &field)
{
    const auto value = number(Xml::attribute(style, name).value_or(QByteArray()));
    if (value && *value >= lowest && *value <= highest)
        field = *value;
}

void takeColor(const xmlNode *style, const char *name, QString &field)
{
    const QString text = QString::fromUtf8(Xml::attribute(style, name).value_or(QByteArray()));
    if (ColorText::read(text))
        field = text;
}

/// "0 -40": percent of the frame's height from its middle, after what is across.
void takePlace(const xmlNode *title, Options &options)
{
    const xmlNode *const transform = Xml::child(title, "adjust-transform");
    const QByteArray position = transform ? Xml::attribute(transform, "position").value_or(QByteArray()) : QByteArray();
    const QList<QByteArray> parts = position.split(' ');
    const auto height = parts.size() == 2 ? number(parts[1]) : std::nullopt;
    if (height && *height >= -50 && *height <= -10)
        options.bottomPercent = *height + 50;
}

} // namespace

QList<Offer> offered(const XmlDocument &document, int minorVersion, const Check &check)
{
    Gathering gathering(document, minorVersion, check);
    const std::vector<xmlNode *> projects = FCPXML::projects(document);
    if (projects.empty())
        gathering.addFrom(nullptr);
    for (const xmlNode *const project : projects)
        gathering.addFrom(project);
    return gathering.offers();
}

Options drawn(const TitleTemplate &look, Options base)
{
    const XmlDocument tree = XmlDocument::parse(look.xml, u"不支持含外部实体的 XML。");
    takePlace(tree.root(), base);
    base.strokeEnabled = false;
    base.shadowEnabled = false;
    const xmlNode *const style = textStyle(tree.root());
    if (!style)
        return base;
    if (const auto font = Xml::attribute(style, "font"); font && !font->isEmpty())
        base.font = QString::fromUtf8(*font);
    const auto face = Xml::attribute(style, "fontFace");
    base.fontFace = face ? std::optional(QString::fromUtf8(*face)) : std::nullopt;
    takeNumber(style, "fontSize", 1, double(base.height), base.fontSize);
    takeColor(style, "fontColor", base.fontColor);
    base.strokeEnabled = Xml::attribute(style, "strokeColor") && Xml::attribute(style, "strokeWidth");
    takeColor(style, "strokeColor", base.strokeColor);
    takeNumber(style, "strokeWidth", 0, 20, base.strokeWidth);
    base.shadowEnabled = Xml::attribute(style, "shadowColor").has_value();
    takeColor(style, "shadowColor", base.shadowColor);
    takeNumber(style, "shadowBlurRadius", 0, 30, base.shadowBlur);
    return base;
}

} // namespace TitleLooks
