#include "radio/scan_kernel.h"

#include "radio/interface_choice.h"
#include "radio/nl80211_socket.h"
#include "radio/radio_power.h"

#include <QFile>

#include <linux/nl80211.h>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {

base::Result<ScanSetup> Nl80211ScanKernel::prepare()
{
    auto wifi = Nl80211Socket::open(); // without nl80211 there is no interface
    const auto interfaces = wifi ? m_choice->inOrder(wifi.value()) : std::vector<InterfaceRecord>();
    if (interfaces.empty())
        return base::Failure {base::FailureKind::NotFound, u"No Wi-Fi interface available"_s};
    const auto& first = interfaces.front();
    if (!isRadioOn(*first.name))
        return base::Failure {base::FailureKind::NotAvailable, u"Wi-Fi is turned off"_s};
    auto events = netlink::GenericEvents::open(
        NL80211_GENL_NAME, std::array {NL80211_MULTICAST_GROUP_SCAN}, kScanCommands);
    if (!events)
        return base::Failure {base::FailureKind::Other, events.failure().text};
    return ScanSetup {{*first.index, QFile::decodeName(*first.name)},
        std::make_shared<netlink::GenericEvents>(std::move(events.value()))};
}

base::Result<std::monostate> Nl80211ScanKernel::trigger(const ScanInterface& interface)
{
    auto wifi = Nl80211Socket::open();
    return wifi ? wifi.value().triggerScan(interface.index) : wifi.failure();
}

base::Result<std::vector<BssRecord>> Nl80211ScanKernel::readTable(const ScanInterface& interface)
{
    auto wifi = Nl80211Socket::open();
    if (!wifi)
        return wifi.failure();
    std::vector<BssRecord> table;
    const auto read = wifi.value().dumpInto(table, NL80211_CMD_GET_SCAN, interface.index, parseBss);
    // With many networks in range the table often changes while it is read; it is still usable.
    if (!read && read.failure().kind != base::FailureKind::Interrupted)
        return read.failure();
    return table;
}

} // namespace netvane::radio
