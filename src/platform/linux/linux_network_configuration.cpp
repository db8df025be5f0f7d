#include "platform/linux/linux_network_configuration.h"

#include "platform/linux/netlink_socket.h"
#include "platform/linux/resolv_conf.h"
#include "platform/linux/route_messages.h"

#include <QFile>
#include <QFileInfo>

#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>

using namespace Qt::Literals::StringLiterals;

namespace netvane::platform {
namespace {

constexpr qint64 kFileLimit = 64 * 1024;
const QString kStubAddress = u"127.0.0.53"_s; // systemd-resolved(8)
const QString kStubFile = u"stub-resolv.conf"_s;

/// The beginning of a file, whole lines only; absent when it cannot be read. Only regular files:
/// opening anything else could wait for somebody.
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

/// Asks for a dump and hands what follows the header of each message of type `wanted` to `take`.
template <typename Header, typename Take>
void dump(NetlinkSocket& socket, int request, const Header& header, int wanted, Take take,
    const std::function<void()>& restart)
{
    const NetlinkMessage message(nlmsg_alloc_simple(request, NLM_F_DUMP));
    if (!message
        || nlmsg_append(message.get(), const_cast<Header*>(&header), sizeof header, NLMSG_ALIGNTO)
            < 0)
        return;
    (void)socket.request(
        *message,
        [&](const nlmsghdr& answer) {
            if (answer.nlmsg_type == wanted)
                take({static_cast<const std::byte*>(nlmsg_data(&answer)),
                    size_t(nlmsg_datalen(&answer))});
        },
        restart);
}

/// Only the default routes are kept: a router may know a million others.
std::vector<RouteRecord> readDefaultRoutes(NetlinkSocket& socket)
{
    // With it the kernel leaves out the other tables by itself; kernels before 4.20 do not know it.
    const int on = 1;
    (void)::setsockopt(
        nl_socket_get_fd(socket.handle()), SOL_NETLINK, NETLINK_GET_STRICT_CHK, &on, sizeof on);
    std::vector<RouteRecord> routes;
    dump(
        socket, RTM_GETROUTE, rtmsg {.rtm_family = AF_INET, .rtm_table = RT_TABLE_MAIN},
        RTM_NEWROUTE,
        [&routes](AttributeBytes message) {
            if (const auto route = parseRoute(message); route && isDefaultRoute(*route))
                routes.push_back(*route);
        },
        [&routes] { routes.clear(); });
    return routes;
}

std::vector<NextHopRecord> readNextHops(NetlinkSocket& socket)
{
    std::vector<NextHopRecord> nextHops;
    dump(
        socket, RTM_GETNEXTHOP, nhmsg {}, RTM_NEWNEXTHOP,
        [&nextHops](AttributeBytes message) {
            if (auto hop = parseNextHop(message))
                nextHops.push_back(std::move(*hop));
        },
        [&nextHops] { nextHops.clear(); });
    return nextHops;
}

} // namespace

std::optional<QString> LinuxNetworkConfiguration::defaultRouter()
{
    auto socket = NetlinkSocket::open(NETLINK_ROUTE);
    if (!socket)
        return {};
    const auto routes = readDefaultRoutes(socket.value());
    std::vector<NextHopRecord> nextHops;
    if (std::ranges::any_of(routes, needsNextHops))
        nextHops = readNextHops(socket.value());
    return defaultRouterOf(routes, nextHops);
}

/// The stub says nothing about the servers behind it, and only while it is what the C library asks
/// does the list behind it count: a file that was written by hand holds.
QStringList LinuxNetworkConfiguration::dnsServers()
{
    const QStringList servers
        = parseNameservers(readLines(m_files.resolvConf).value_or(QByteArray()));
    const bool isStub = servers.contains(kStubAddress)
        || QFileInfo(m_files.resolvConf).symLinkTarget().endsWith(kStubFile);
    if (isStub) {
        if (const auto upstreams = readLines(m_files.resolvedUpstreams))
            return parseNameservers(*upstreams);
    }
    return servers;
}

/// proc(5): two lines of headings, then a line each, the name before a colon.
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

} // namespace netvane::platform
