#pragma once

#include <QByteArray>
#include <QStringList>

namespace netvane::net {

/// The addresses in the `nameserver` lines of resolv.conf(5), in order and as they are written:
/// what the C library takes for an address, IPv6 also with a scope (`fe80::1%wlan0`). Other lines
/// are passed over. The C library asks the first three only; all are told.
QStringList parseNameservers(const QByteArray& text);

} // namespace netvane::net
