#pragma once

#include <QByteArray>

namespace netvane::radio {

/// Whether the interface is up and nothing blocks its radio, from sysfs: `class/net/NAME/flags`
/// (IFF_UP) and the rfkill switches of its wiphy; true when sysfs tells neither. Touches no
/// netlink, so that it never waits for a driver.
bool isRadioOn(const QByteArray& interfaceName);

} // namespace netvane::radio
