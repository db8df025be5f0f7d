#pragma once

#include <QIcon>

namespace netvane::app {

/// The antenna of the status item: the icon theme's own drawing under the program's name where it
/// is installed, so that panels recolour it, else drawn here, light for a dark desktop or dark for
/// a light one, for panels of any size. The drawing has a thin seam of the opposite colour, since a
/// panel may be dark on a light desktop.
QIcon antennaIcon(bool isDark);

} // namespace netvane::app
