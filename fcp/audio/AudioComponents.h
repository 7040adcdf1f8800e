#pragma once

#include "fcp/timeline/TimeRange.h"

#include <QByteArray>
#include <QSet>

#include <libxml/tree.h>

#include <vector>

/// The components of a clip's sound (its channels, or its roles) as far as the document lists them.
///
/// A plan plays a file's sound whole: one component that is on lets all of them sound.
class AudioComponents
{
public:
    /// Takes the components among the children of a clip, or of a source of a synchronized clip.
    explicit AudioComponents(const std::vector<const xmlNode *> &children);
    explicit AudioComponents(const xmlNode *parent);

    bool areMuted() const;    ///< Some are listed, and none of them is on.
    bool haveEffects() const; ///< One that is on has an enabled audio filter.

    /// The roles of the components that are on, as full() gives them. Empty where none tells.
    const QSet<QByteArray> &rolesOn() const { return m_rolesOn; }

    /// The roles that are listed and all of whose components are off.
    QSet<QByteArray> rolesOff() const { return m_rolesOff - m_rolesOn; }

    /// A role with its subrole: "dialogue" is "dialogue.dialogue-1".
    static QByteArray full(const QByteArray &role);

    /// The factor of the loudest component that is on; 1 where none is. `sound` is the clip's range in its own time.
    double volume(const TimeRange &sound) const;

private:
    std::vector<const xmlNode *> m_on;
    QSet<QByteArray> m_rolesOn;
    QSet<QByteArray> m_rolesOff;
    bool m_listed = false;
};
