#include "fcp/timeline/MediaResources.h"

#include "core/ConversionError.h"
#include "fcp/timeline/DocumentTime.h"

using namespace Qt::StringLiterals;

MediaResources::MediaResources(const XmlDocument &document, const xmlNode *project)
{
    add(document.root());
    if (project)
        add(project);
}

const xmlNode *MediaResources::find(const xmlNode *element, QByteArrayView attribute) const
{
    const auto id = Xml::attribute(element, attribute);
    return id ? m_byId.value(*id) : nullptr;
}

std::optional<Rational> MediaResources::frameDuration(const xmlNode *element) const
{
    const xmlNode *const format = find(element, "format");
    const auto text = format ? Xml::attribute(format, "frameDuration") : std::nullopt;
    const auto duration = text ? Rational::parseTime(*text) : std::nullopt;
    return duration && *duration > 0 ? duration : std::nullopt;
}

StorySequence MediaResources::readSequence(const xmlNode *sequence) const
{
    return {.spine = Xml::child(sequence, "spine"),
            .start = DocumentTime::read(sequence, "tcStart").value_or(0),
            .duration = DocumentTime::read(sequence, "duration"),
            .frameDuration = frameDuration(sequence)};
}

const MediaAsset &MediaResources::asset(const xmlNode *asset)
{
    const auto known = m_assets.find(asset);
    return known != m_assets.end() ? known->second : m_assets.emplace(asset, MediaAsset::read(asset)).first->second;
}

const StorySequence &MediaResources::compound(const xmlNode *media)
{
    const auto known = m_compounds.find(media);
    if (known != m_compounds.end())
        return known->second;
    const xmlNode *const sequence = Xml::child(media, "sequence");
    return m_compounds.emplace(media, sequence ? readSequence(sequence) : StorySequence()).first->second;
}

void MediaResources::add(const xmlNode *parent)
{
    for (const xmlNode *const resources : Xml::Children(parent)) {
        if (!Xml::isElement(resources, "resources"))
            continue;
        for (const xmlNode *const resource : Xml::Children(resources)) {
            const auto id = Xml::attribute(resource, "id");
            if (!id)
                continue;
            if (m_byId.contains(*id))
                throw ConversionError(u"FCP 资源编号重复。"_s,
                                      u"%1 的编号 %2 已被%3 占用。"_s.arg(Xml::place(resource), Xml::excerpt(*id),
                                                                          Xml::place(m_byId.value(*id))));
            m_byId.insert(*id, resource);
        }
    }
}
