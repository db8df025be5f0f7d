#pragma once

#include "base/clock.h"
#include "platform/connection.h"

namespace netvane::net {

/// See `platform::ConnectionFactory::sendFullPacket`. The packet is a harmless request (RFC 9110)
/// of the size of one segment; the kernel tells whether it was acknowledged (TCP_INFO, tcp(7)).
std::unique_ptr<platform::Connection> fullPacket(
    base::Clock& clock, const QString& host, quint16 port, platform::ConnectionHandler handler);

} // namespace netvane::net
