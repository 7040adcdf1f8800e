#include "fcp/audio/AudioComponents.h"

#include "fcp/audio/ClipVolume.h"
#include "fcp/xml/XmlDocument.h"

#include <algorithm>

namespace {

bool isComponent(const xmlNode *element)
{
    return Xml::isElement(element, "audio-channel-source") || Xml::isElement(element, "audio-role-source");
}

std::vector<const xmlNode *> childrenOf(const xmlNode *parent)
{
    std::vector<const xmlNode *> children;
    for (const xmlNode *const child : Xml::Children(parent))
        children.push_back(child);
    return children;
}

bool isOn(const xmlNode *component)
{
    return Xml::attribute(component, "active") != "0" && Xml::attribute(component, "enabled") != "0";
}

bool isActiveFilter(const xmlNode *child)
{
    return Xml::isElement(child, "filter-audio") && Xml::attribute(child, "enabled") != "0";
}

bool hasFilter(const xmlNode *component)
{
    return std::ranges::any_of(childrenOf(component), isActiveFilter);
}

} // namespace

AudioComponents::AudioComponents(const std::vector<const xmlNode *> &children)
{
    for (const xmlNode *const child : children) {
        if (!isComponent(child))
            continue;
        m_listed = true;
        if (isOn(child))
            m_on.push_back(child);
        if (const auto role = Xml::attribute(child, "role"))
            (isOn(child) ? m_rolesOn : m_rolesOff).insert(full(*role));
    }
}

AudioComponents::AudioComponents(const xmlNode *parent)
    : AudioComponents(childrenOf(parent))
{}

bool AudioComponents::areMuted() const
{
    return m_listed && m_on.empty();
}

bool AudioComponents::haveEffects() const
{
    return std::any_of(m_on.begin(), m_on.end(), hasFilter);
}

QByteArray AudioComponents::full(const QByteArray &role)
{
    return role.contains('.') ? role : role + '.' + role + "-1";
}

double AudioComponents::volume(const TimeRange &sound) const
{
    if (m_on.empty())
        return 1;
    double loudest = 0;
    for (const xmlNode *const component : m_on)
        loudest = std::max(loudest, ClipVolume::product(childrenOf(component), sound));
    return loudest;
}
