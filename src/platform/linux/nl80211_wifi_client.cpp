#include "platform/linux/nl80211_wifi_client.h"

#include "platform/linux/netlink_socket.h"
#include "platform/linux/nl80211_messages.h"

#include <QDir>
#include <QFile>

#include <linux/nl80211.h>
#include <net/if.h>
#include <netlink/genl/ctrl.h>
#include <netlink/genl/genl.h>
#include <netlink/netlink.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::platform {
namespace {

/// One conversation with nl80211.
class Nl80211 {
public:
    /// NotAvailable where the kernel has no nl80211 at all.
    static Result<Nl80211> open()
    {
        auto socket = NetlinkSocket::open(NETLINK_GENERIC);
        if (!socket)
            return socket.failure();
        const int family = genl_ctrl_resolve(socket.value().handle(), NL80211_GENL_NAME);
        if (family < 0)
            return netlinkFailure(family);
        return Nl80211(std::move(socket.value()), family);
    }

    /// Everything that `command` lists, about one interface or (index 0) about all. What came
    /// before a failure counts: half an answer is better than none.
    template <typename Parse>
    auto dump(std::uint8_t command, std::uint32_t index, Parse parse)
    {
        std::vector<decltype(parse(AttributeBytes {}))> records;
        const NetlinkMessage message(nlmsg_alloc());
        if (!message
            || !genlmsg_put(
                message.get(), NL_AUTO_PORT, NL_AUTO_SEQ, m_family, 0, NLM_F_DUMP, command, 0))
            return records;
        if (index != 0 && nla_put_u32(message.get(), NL80211_ATTR_IFINDEX, index) < 0)
            return records;
        const auto take = [&](const nlmsghdr& answer) {
            // Other programs' configuration can end up in this socket's queue; it is not ours.
            if (answer.nlmsg_type != m_family
                || !genlmsg_valid_hdr(const_cast<nlmsghdr*>(&answer), 0))
                return;
            auto* header = static_cast<genlmsghdr*>(nlmsg_data(&answer));
            records.push_back(
                parse({reinterpret_cast<const std::byte*>(genlmsg_attrdata(header, 0)),
                    size_t(genlmsg_attrlen(header, 0))}));
        };
        (void)m_socket.request(*message, take, [&records] { records.clear(); });
        return records;
    }

private:
    Nl80211(NetlinkSocket socket, int family)
        : m_socket(std::move(socket))
        , m_family(family)
    {
    }

    NetlinkSocket m_socket;
    int m_family;
};

bool isStation(const InterfaceRecord& record)
{
    return record.type == NL80211_IFTYPE_STATION && record.index && record.name;
}

/// The number in a small file of sysfs, in C notation; absent when it cannot be read.
std::optional<uint> sysfsNumber(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    bool ok = false;
    const uint number = file.read(32).trimmed().toUInt(&ok, 0);
    return ok ? std::optional(number) : std::nullopt;
}

class Nl80211WiFiInterface : public WiFiInterface {
public:
    Nl80211WiFiInterface(QString sysfsRoot, QByteArray name)
        : m_sysfsRoot(std::move(sysfsRoot))
        , m_name(std::move(name))
    {
    }

    bool powerOn() const override { return isRadioOn(m_sysfsRoot, m_name); }

    std::optional<LinkReading> readLink() override
    {
        auto wifi = Nl80211::open();
        if (!wifi)
            return {};
        const auto interfaces = wifi.value().dump(NL80211_CMD_GET_INTERFACE, 0, parseInterface);
        const auto mine = std::ranges::find_if(interfaces,
            [this](const auto& record) { return isStation(record) && *record.name == m_name; });
        if (mine == interfaces.end())
            return {};
        const auto stations
            = wifi.value().dump(NL80211_CMD_GET_STATION, *mine->index, parseStation);
        std::vector<SurveyRecord> survey;
        if (!stations.empty() || mine->frequencyMhz)
            survey = wifi.value().dump(NL80211_CMD_GET_SURVEY, *mine->index, parseSurvey);
        std::vector<BssRecord> networks;
        if (needsScanTable(*mine, stations))
            networks = wifi.value().dump(NL80211_CMD_GET_SCAN, *mine->index, parseBss);
        return linkReading(*mine, stations, survey, networks);
    }

private:
    QString m_sysfsRoot;
    QByteArray m_name;
};

} // namespace

std::unique_ptr<Nl80211WiFiClient> Nl80211WiFiClient::create(const QString& sysfsRoot)
{
    if (!NetlinkSocket::open(NETLINK_GENERIC))
        return nullptr;
    return std::unique_ptr<Nl80211WiFiClient>(new Nl80211WiFiClient(sysfsRoot));
}

std::vector<std::shared_ptr<WiFiInterface>> Nl80211WiFiClient::interfaces()
{
    std::vector<std::shared_ptr<WiFiInterface>> found;
    auto wifi = Nl80211::open();
    if (!wifi)
        return found;
    for (const auto& record : wifi.value().dump(NL80211_CMD_GET_INTERFACE, 0, parseInterface)) {
        if (isStation(record))
            found.push_back(std::make_shared<Nl80211WiFiInterface>(m_sysfsRoot, *record.name));
    }
    return found;
}

bool isRadioOn(const QString& sysfsRoot, const QByteArray& interfaceName)
{
    const QString device = sysfsRoot + u"/class/net/"_s + QFile::decodeName(interfaceName);
    if (const auto flags = sysfsNumber(device + u"/flags"_s); flags && (*flags & IFF_UP) == 0)
        return false;
    const QDir wiphy(device + u"/phy80211"_s);
    const auto switches = wiphy.entryList({u"rfkill*"_s}, QDir::Dirs);
    return std::ranges::none_of(switches, [&wiphy](const QString& name) {
        return sysfsNumber(wiphy.filePath(name + u"/soft"_s)).value_or(0) != 0
            || sysfsNumber(wiphy.filePath(name + u"/hard"_s)).value_or(0) != 0;
    });
}

} // namespace netvane::platform
