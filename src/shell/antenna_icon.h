#pragma once

#include <QIcon>

namespace netvane::shell {

/// The antenna of the status item, drawn light for a dark desktop or dark for a light one, for
/// panels of any size. Where the icon theme has a drawing under the program's name, the icon has
/// that name, so that panels which look it up take the theme's and recolour it. The drawing has a
/// thin seam of the opposite colour, since a panel may be dark on a light desktop.
QIcon antennaIcon(bool isDark);

} // namespace netvane::shell
