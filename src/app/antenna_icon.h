#pragma once

#include <QIcon>

namespace netvane::app {

/// The antenna of the status item in one colour: the icon theme's own drawing under the program's
/// name where it is installed, so that panels recolour it, else drawn here for panels of any size.
QIcon antennaIcon(const QColor& colour);

} // namespace netvane::app
