#pragma once

#include <QByteArray>
#include <QStringList>

namespace netvane::net {

/// The addresses in the `nameserver` lines of resolv.conf(5), in order and as they are written:
/// what the C library accepts as an address, IPv6 also with a scope (`fe80::1%wlan0`). Other lines
/// are skipped. The C library uses the first three only; this returns all.
QStringList parseNameservers(const QByteArray& text);

} // namespace netvane::net
