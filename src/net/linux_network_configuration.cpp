#include "net/linux_network_configuration.h"

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

template <typename Header>
struct Question {
    int request;
    int answer; ///< the message type of the answer
    Header header;
};

/// The wanted records of a dump. Records before a failure count.
template <typename Header, typename Record>
std::vector<Record> dump(netlink::NetlinkSocket& socket, Question<Header> question,
    std::optional<Record> (*parse)(netlink::AttributeBytes), bool (*isWanted)(const Record&))
{
    std::vector<Record> records;
    const netlink::NetlinkMessage message(nlmsg_alloc_simple(question.request, NLM_F_DUMP));
    if (!message
        || nlmsg_append(message.get(), &question.header, sizeof(Header), NLMSG_ALIGNTO) < 0)
        return records;
    const auto take = [&](const nlmsghdr& answer) {
        if (answer.nlmsg_type != question.answer)
            return;
        auto record = parse(
            {static_cast<const std::byte*>(nlmsg_data(&answer)), size_t(nlmsg_datalen(&answer))});
        if (record && isWanted(*record))
            records.push_back(std::move(*record));
    };
    (void)socket.request(*message, take, [&records] { records.clear(); });
    return records;
}

/// Only default routes are kept: a router may have a million others.
std::vector<RouteRecord> readDefaultRoutes(netlink::NetlinkSocket& socket)
{
    // With it the kernel omits the other tables; kernels before 4.20 ignore it.
    const int on = 1;
    (void)::setsockopt(
        nl_socket_get_fd(socket.handle()), SOL_NETLINK, NETLINK_GET_STRICT_CHK, &on, sizeof on);
    const Question<rtmsg> question {
        RTM_GETROUTE, RTM_NEWROUTE, {.rtm_family = AF_INET, .rtm_table = RT_TABLE_MAIN}};
    return dump(socket, question, parseRoute, isDefaultRoute);
}

std::vector<NextHopRecord> readNextHops(netlink::NetlinkSocket& socket)
{
    const auto all = [](const NextHopRecord&) { return true; };
    return dump<nhmsg, NextHopRecord>(
        socket, {RTM_GETNEXTHOP, RTM_NEWNEXTHOP, {}}, parseNextHop, all);
}

std::vector<LinkRecord> readTunnels(netlink::NetlinkSocket& socket)
{
    const auto isTunnel = [](const LinkRecord& link) { return link.isTunnel; };
    return dump<ifinfomsg, LinkRecord>(socket, {RTM_GETLINK, RTM_NEWLINK, {}}, parseLink, isTunnel);
}

} // namespace

std::optional<QString> LinuxNetworkConfiguration::defaultRouter()
{
    auto socket = netlink::NetlinkSocket::open(NETLINK_ROUTE);
    if (!socket)
        return {};
    const auto routes = readDefaultRoutes(socket.value());
    std::vector<NextHopRecord> nextHops;
    if (std::ranges::any_of(routes, needsNextHops))
        nextHops = readNextHops(socket.value());
    std::vector<LinkRecord> tunnels;
    if (routes.size() > 1) // with one there is no choice
        tunnels = readTunnels(socket.value());
    return defaultRouterOf(routes, nextHops, tunnels);
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
