#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace netvane::radio {

/// The software that drives an adapter. Absent where the kernel does not tell, or leaves it empty.
struct DriverInfo {
    std::optional<QString> driver;
    std::optional<QString> version; ///< of the driver; of the kernel where it is a part of that
    std::optional<QString> firmware;

    bool operator==(const DriverInfo&) const = default;
};

/// Asks the kernel (SIOCETHTOOL, ETHTOOL_GDRVINFO), which needs no privilege.
DriverInfo driverInfoOf(const QByteArray& interfaceName);

} // namespace netvane::radio
