#include "fcp/AudioComponents.h"

#include "fcp/ClipVolume.h"
#include "fcp/XmlDocument.h"

#include <algorithm>

namespace {

bool isComponent(const xmlNode *element)
{
    return Xml::isElement(element, "audio-channel-source") || Xml::isElement(element, "audio-role-source");
}

bool isOn(const xmlNode *component)
{
    return Xml::attribute(component, "active") != "0" && Xml::attribute(component, "enabled") != "0";
}

bool hasFilter(const xmlNode *component)
{
    for (const xmlNode *const child : Xml::Children(component)) {
        if (Xml::isElement(child, "filter-audio") && Xml::attribute(child, "enabled") != "0")
            return true;
    }
    return false;
}

} // namespace

AudioComponents::AudioComponents(const xmlNode *clip)
    : m_clip(clip)
{
    for (const xmlNode *const child : Xml::Children(clip)) {
        if (!isComponent(child))
            continue;
        m_listed = true;
        if (isOn(child))
            m_on.push_back(child);
    }
}

bool AudioComponents::areMuted() const
{
    return m_listed && m_on.empty();
}

bool AudioComponents::haveEffects() const
{
    return std::any_of(m_on.begin(), m_on.end(), hasFilter);
}

double AudioComponents::volume(const TimeRange &sound) const
{
    if (m_on.empty())
        return 1;
    double loudest = 0;
    for (const xmlNode *const component : m_on)
        loudest = std::max(loudest, ClipVolume::product(component, sound));
    return loudest;
}

bool AudioComponents::isSourceMuted(QByteArrayView source) const
{
    bool muted = false;
    for (const xmlNode *const child : Xml::Children(m_clip)) {
        if (!Xml::isElement(child, "sync-source") || Xml::attribute(child, "sourceID") != source)
            continue;
        const AudioComponents components(child);
        if (!components.m_on.empty())
            return false;
        muted |= components.areMuted();
    }
    return muted;
}
