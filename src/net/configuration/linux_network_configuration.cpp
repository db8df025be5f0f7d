#include "net/configuration/linux_network_configuration.h"

#include "net/configuration/network_state.h"
#include "net/configuration/resolv_conf.h"
#include "netlink/netlink_socket.h"

#include <QFile>
#include <QFileInfo>

#include <arpa/inet.h>
#include <linux/if_addr.h>
#include <linux/neighbour.h>
#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <netlink/attr.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>

#include <algorithm>

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

/// A request with a header and up to one address.
template <typename Header>
struct Question {
    int request;
    int answer; ///< the message type of the answer
    Header header;
    int flags = NLM_F_DUMP;
    int addressAttribute = 0;
    QByteArray address {};
};

template <typename Record>
struct Answer {
    std::vector<Record> records; ///< those before a failure, too
    bool isComplete = false; ///< false: no answer in time, or not all of it
};

bool all(const auto&)
{
    return true;
}

/// Asks for the wanted records. A refusal is a complete answer without any.
template <typename Header, typename Record>
Answer<Record> ask(netlink::NetlinkSocket& socket, Question<Header> question,
    std::optional<Record> (*parse)(netlink::AttributeBytes),
    bool (*isWanted)(const Record&) = all<Record>)
{
    Answer<Record> result;
    const netlink::NetlinkMessage message(nlmsg_alloc_simple(question.request, question.flags));
    if (!message || nlmsg_append(message.get(), &question.header, sizeof(Header), NLMSG_ALIGNTO) < 0
        || (question.addressAttribute != 0
            && nla_put(message.get(), question.addressAttribute, int(question.address.size()),
                   question.address.constData())
                < 0))
        return result;
    const auto take = [&](const nlmsghdr& answer) {
        if (answer.nlmsg_type != question.answer)
            return;
        auto record = parse(
            {static_cast<const std::byte*>(nlmsg_data(&answer)), size_t(nlmsg_datalen(&answer))});
        if (record && isWanted(*record))
            result.records.push_back(std::move(*record));
    };
    const auto end = socket.request(*message, take, [&result] { result.records.clear(); });
    using base::FailureKind;
    result.isComplete = end
        || (end.failure().kind != FailureKind::TimedOut
            && end.failure().kind != FailureKind::Interrupted);
    return result;
}

/// Only those of the main table that are wanted are kept: a router may have a million others.
std::vector<RouteRecord> readRoutes(
    netlink::NetlinkSocket& socket, int family, bool (*isWanted)(const RouteRecord&))
{
    // With it the kernel omits the other tables; kernels before 4.20 ignore it.
    const int on = 1;
    (void)::setsockopt(
        nl_socket_get_fd(socket.handle()), SOL_NETLINK, NETLINK_GET_STRICT_CHK, &on, sizeof on);
    const Question<rtmsg> question {RTM_GETROUTE, RTM_NEWROUTE,
        {.rtm_family = std::uint8_t(family), .rtm_table = RT_TABLE_MAIN}};
    return ask(socket, question, parseRoute, isWanted).records;
}

/// None unless some of the routes need them.
std::vector<NextHopRecord> readNextHops(
    netlink::NetlinkSocket& socket, const std::vector<RouteRecord>& routes)
{
    if (std::ranges::none_of(routes, needsNextHops))
        return {};
    return ask<nhmsg>(socket, {RTM_GETNEXTHOP, RTM_NEWNEXTHOP, {}}, parseNextHop).records;
}

Answer<LinkRecord> readLinks(netlink::NetlinkSocket& socket)
{
    return ask<ifinfomsg>(socket, {RTM_GETLINK, RTM_NEWLINK, {}}, parseLink);
}

QByteArray bytesOf(int family, const QString& address)
{
    QByteArray bytes(qsizetype(family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr)), '\0');
    return ::inet_pton(family, address.toLatin1().constData(), bytes.data()) == 1 ? bytes
                                                                                  : QByteArray();
}

/// Where the kernel sends what is for an address. This is more than the default route: a VPN may
/// leave that as it is, and lead everything away by two routes of half the internet each, or by
/// rules (ip-rule(8)). False if the kernel does not answer.
bool readChosenRoute(netlink::NetlinkSocket& socket, int family, const QString& address,
    std::optional<Gateway>& chosen)
{
    const auto bytes = bytesOf(family, address);
    if (bytes.isEmpty())
        return true;
    constexpr int kBitsInByte = 8;
    const Question<rtmsg> question {.request = RTM_GETROUTE,
        .answer = RTM_NEWROUTE,
        .header = {.rtm_family = std::uint8_t(family),
            .rtm_dst_len = std::uint8_t(bytes.size() * kBitsInByte)},
        .flags = 0,
        .addressAttribute = RTA_DST,
        .address = bytes};
    const auto answer = ask(socket, question, parseRoute);
    if (!answer.records.empty() && answer.records.front().type == RTN_UNICAST)
        chosen = nextOf(answer.records.front(), {});
    return answer.isComplete;
}

/// A VPN that replaces the default route needs one to its own server all the same.
std::optional<Gateway> readPastTunnels(netlink::NetlinkSocket& socket, int family,
    const std::optional<Gateway>& chosen, const std::vector<std::uint32_t>& tunnels)
{
    if (chosen && std::ranges::find(tunnels, chosen->device) == tunnels.end())
        return chosen;
    auto routes = readRoutes(socket, family, isDefaultRoute);
    auto found = gatewayPastTunnels(routes, readNextHops(socket, routes), tunnels);
    if (!found && chosen && family == AF_INET)
        found = gatewayPastTunnels(readRoutes(socket, family, isHostRoute), {}, tunnels);
    return found;
}

std::optional<std::uint16_t> readNeighbour(netlink::NetlinkSocket& socket, const Gateway& gateway)
{
    const int family = gateway.address.contains(u':') ? AF_INET6 : AF_INET;
    const auto bytes = bytesOf(family, gateway.address);
    if (bytes.isEmpty())
        return {};
    const Question<ndmsg> question {.request = RTM_GETNEIGH,
        .answer = RTM_NEWNEIGH,
        .header = {.ndm_family = std::uint8_t(family), .ndm_ifindex = int(gateway.device)},
        .flags = 0,
        .addressAttribute = NDA_DST,
        .address = bytes};
    const auto answer = ask(socket, question, parseNeighbour);
    return answer.records.empty() ? std::nullopt : std::optional(answer.records.front());
}

} // namespace

std::optional<QString> LinuxNetworkConfiguration::defaultRouter()
{
    auto socket = netlink::NetlinkSocket::open(NETLINK_ROUTE);
    if (!socket)
        return {};
    const auto routes = readRoutes(socket.value(), AF_INET, isDefaultRoute);
    std::vector<std::uint32_t> tunnels;
    if (routes.size() > 1) // with one there is no choice
        tunnels = tunnelsAmong(readLinks(socket.value()).records);
    return defaultRouterOf(routes, readNextHops(socket.value(), routes), tunnels);
}

std::optional<platform::NetworkState> LinuxNetworkConfiguration::readState()
{
    auto opened = netlink::NetlinkSocket::open(NETLINK_ROUTE);
    if (!opened)
        return {};
    auto& socket = opened.value();
    const auto links = readLinks(socket);
    NetworkRecords records {.links = links.records};
    // What was not told must not look like what is not there, which is a fault.
    if (!links.isComplete || !readChosenRoute(socket, AF_INET, m_internet.ipv4, records.ipv4.chosen)
        || !readChosenRoute(socket, AF_INET6, m_internet.ipv6, records.ipv6.chosen))
        return {};
    records.addresses
        = ask<ifaddrmsg>(socket, {RTM_GETADDR, RTM_NEWADDR, {}}, parseAddress).records;
    const auto tunnels = tunnelsAmong(records.links);
    records.ipv4.pastTunnels = readPastTunnels(socket, AF_INET, records.ipv4.chosen, tunnels);
    records.ipv6.pastTunnels = readPastTunnels(socket, AF_INET6, records.ipv6.chosen, tunnels);
    settleModems(records);
    if (const auto gateway = physicalGateway(records))
        records.neighbour = readNeighbour(socket, *gateway);
    return networkState(records, [this](const QString& name) {
        const QString folder = m_files.devices + u'/' + name;
        return QFileInfo::exists(folder + u"/phy80211"_s)
            || QFileInfo::exists(folder + u"/wireless"_s);
    });
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
