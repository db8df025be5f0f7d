#include "net/linux_network_configuration.h"

#include "net/netlink_dump.h"
#include "net/network_state.h"
#include "net/resolv_conf.h"
#include "net/route_messages.h"
#include "netlink/netlink_socket.h"

#include <QFile>
#include <QFileInfo>

#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {
namespace {

constexpr qint64 kFileLimit = 65536;
const QString kStubAddress = u"127.0.0.53"_s; // systemd-resolved(8)
const QString kStubFile = u"stub-resolv.conf"_s;

/// The beginning of a file, whole lines only; absent when it cannot be read. Only regular files:
/// opening a FIFO or a device could block.
std::optional<QByteArray> readLines(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    QByteArray text = file.read(kFileLimit);
    if (text.size() == kFileLimit)
        text.truncate(text.lastIndexOf('\n') + 1);
    return text;
}

/// Only default routes are kept: a router may have a million others.
std::vector<RouteRecord> readDefaultRoutes(netlink::NetlinkSocket& socket)
{
    // With it the kernel omits the other tables; kernels before 4.20 ignore it.
    const int on = 1;
    const int descriptor = nl_socket_get_fd(socket.handle());
    (void)::setsockopt(descriptor, SOL_NETLINK, NETLINK_GET_STRICT_CHK, &on, sizeof on);
    const rtmsg header {.rtm_family = AF_INET, .rtm_table = RT_TABLE_MAIN};
    const auto parse = [](netlink::AttributeBytes message) {
        const auto route = parseRoute(message);
        return route && isDefaultRoute(*route) ? route : std::nullopt;
    };
    auto routes = ask(socket, {RTM_GETROUTE, RTM_NEWROUTE}, header, parse);
    const int off = 0;
    (void)::setsockopt(descriptor, SOL_NETLINK, NETLINK_GET_STRICT_CHK, &off, sizeof off);
    return routes;
}

std::optional<Gateway> readDefaultGateway(netlink::NetlinkSocket& socket)
{
    const auto routes = readDefaultRoutes(socket);
    std::vector<NextHopRecord> nextHops;
    if (std::ranges::any_of(routes, needsNextHops))
        nextHops = ask(socket, {RTM_GETNEXTHOP, RTM_NEWNEXTHOP}, nhmsg {}, parseNextHop);
    std::vector<LinkRecord> tunnels;
    if (routes.size() > 1) { // with one there is no choice
        tunnels = ask(socket, {RTM_GETLINK, RTM_NEWLINK}, ifinfomsg {}, parseLink);
        std::erase_if(tunnels, [](const auto& link) { return !link.isTunnel; });
    }
    return defaultGatewayOf(routes, nextHops, tunnels);
}

} // namespace

std::optional<QString> LinuxNetworkConfiguration::defaultRouter()
{
    auto socket = netlink::NetlinkSocket::open(NETLINK_ROUTE);
    if (!socket)
        return {};
    const auto gateway = readDefaultGateway(socket.value());
    return gateway ? std::optional(gateway->address) : std::nullopt;
}

std::optional<platform::NetworkState> LinuxNetworkConfiguration::readState()
{
    auto socket = netlink::NetlinkSocket::open(NETLINK_ROUTE);
    if (!socket)
        return {};
    const auto gateway = readDefaultGateway(socket.value());
    return readNetworkState(socket.value(), gateway);
}

/// The stub hides the real servers. Their list counts only while the C library asks the stub: a
/// file written by hand takes precedence.
QStringList LinuxNetworkConfiguration::dnsServers()
{
    QStringList servers = parseNameservers(readLines(m_files.resolvConf).value_or(QByteArray()));
    const bool isStub = servers.contains(kStubAddress)
        || QFileInfo(m_files.resolvConf).symLinkTarget().endsWith(kStubFile);
    if (isStub) {
        if (const auto upstreams = readLines(m_files.resolvedUpstreams))
            return parseNameservers(*upstreams);
    }
    return servers;
}

/// proc(5): two lines of headings, then one line per interface with the name before a colon.
QStringList LinuxNetworkConfiguration::interfaceNames()
{
    QStringList names;
    const QByteArray table = readLines(m_files.interfaces).value_or(QByteArray());
    for (const QByteArray& line : table.split('\n').mid(2)) {
        if (const qsizetype colon = line.indexOf(':'); colon > 0)
            names.append(QFile::decodeName(line.first(colon).trimmed()));
    }
    return names;
}

} // namespace netvane::net
