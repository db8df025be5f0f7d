#pragma once

#include <QByteArray>

namespace netvane::bus {

/// Whether a bus at one of these addresses (D-Bus, "Server Addresses") answers; true as well when
/// an address is of a kind that only libdbus knows. Blocks for 2 s at most; not on the
/// main thread.
bool isBusAwake(const QByteArray& addresses);

} // namespace netvane::bus
