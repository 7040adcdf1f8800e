#pragma once

#include <QString>

/// Where what we keep lies. The folders are the same on every system, below the home folder ($HOME).
namespace Locations {

QString draft();        ///< The draft file of the running session.
QString stylePresets(); ///< The file of the style presets.
QString glossary();     ///< The file of the person's own terms.
QString fontIndex();    ///< The file of what was found out about the installed fonts.
QString waveforms();    ///< The folder of the waveforms that need not be made again.
QString sessions();     ///< The folder in which the workflow extension puts its session files.

} // namespace Locations
