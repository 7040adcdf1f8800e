#include "fcp/titles/TitleEffects.h"

#include "fcp/titles/TitleDocument.h"

#include <algorithm>
#include <new>

namespace TitleEffects {

namespace {

const TitleTemplate::Effect &basicTitle()
{
    static const TitleTemplate::Effect effect{
        .name = "基本字幕", .uid = TitleDocument::basicTitle.toByteArray(), .src = {}};
    return effect;
}

class Resources
{
public:
    Resources(xmlNode *resources, xmlNode *after, const Identifiers &ids)
        : m_resources(resources)
        , m_after(after)
        , m_ids(ids.counter("subeffect"))
    {}

    QByteArray ours()
    {
        if (m_ours.isEmpty())
            m_ours = add(basicTitle());
        return m_ours;
    }

    QByteArray users(const TitleTemplate::Effect &effect)
    {
        for (const xmlNode *const each : Xml::Children(m_resources)) {
            const auto id = Xml::attribute(each, "id");
            if (id && *id != m_ours && Xml::isElement(each, "effect") && Xml::attribute(each, "uid") == effect.uid &&
                Xml::attribute(each, "src").value_or(QByteArray()) == effect.src)
                return *id;
        }
        return add(effect);
    }

private:
    QByteArray add(const TitleTemplate::Effect &effect)
    {
        QByteArray id = "subeffect" + QByteArray::number(m_ids.next());
        xmlNode *const element =
            xmlNewDocNode(m_resources->doc, nullptr, reinterpret_cast<const xmlChar *>("effect"), nullptr);
        if (!element)
            throw std::bad_alloc();
        place(element);
        Xml::setAttribute(element, "id", id);
        Xml::setAttribute(element, "name", effect.name);
        Xml::setAttribute(element, "uid", effect.uid);
        if (!effect.src.isEmpty())
            Xml::setAttribute(element, "src", effect.src);
        return id;
    }

    void place(xmlNode *element)
    {
        if (!m_after) {
            xmlAddChild(m_resources, element);
            return;
        }
        // On a line that begins as that of the element before.
        if (xmlNode *const indent = xmlDocCopyNode(m_after->prev, m_resources->doc, 1))
            m_after = xmlAddNextSibling(m_after, indent);
        m_after = xmlAddNextSibling(m_after, element);
    }

    xmlNode *m_resources;
    xmlNode *m_after;
    Identifiers::Counter m_ids;
    QByteArray m_ours;
};

} // namespace

std::vector<QList<QByteArray>> add(xmlNode *resources, xmlNode *after, const std::vector<PlacedTrack> &tracks,
                                   const Identifiers &ids)
{
    Resources into(resources, after, ids);
    std::vector<QList<QByteArray>> effects;
    for (const PlacedTrack &each : tracks) {
        QList<QByteArray> &own = effects.emplace_back();
        if (each.track.captions)
            continue;
        if (!each.track.look)
            own.append(into.ours());
        else
            std::ranges::transform(each.track.look->effects, std::back_inserter(own),
                                   [&](const TitleTemplate::Effect &effect) { return into.users(effect); });
    }
    return effects;
}

} // namespace TitleEffects
