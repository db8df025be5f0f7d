#pragma once

#include <QByteArray>
#include <QString>

namespace netvane::radio {

/// Whether the interface is up and nothing blocks its radio, from `class/net/NAME/flags`
/// (IFF_UP) and the rfkill switches of its wiphy; true when sysfs tells neither. Touches no
/// netlink, so that it never waits for a driver.
bool isRadioOn(const QString& sysfsRoot, const QByteArray& interfaceName);

} // namespace netvane::radio
