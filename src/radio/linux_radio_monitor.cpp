#include "radio/linux_radio_monitor.h"

#include "base/background_work.h"
#include "radio/interface_choice.h"
#include "radio/nl80211_socket.h"

#include <QSocketNotifier>

#include <linux/genetlink.h>
#include <net/if.h>

namespace netvane::radio {
namespace {

using netlink::GenericEvents;

QString interfaceName(std::uint32_t index)
{
    char name[IF_NAMESIZE] = {};
    return ::if_indextoname(index, name) ? QString::fromUtf8(name) : QString();
}

std::vector<KnownLink> readLinks()
{
    std::vector<KnownLink> links;
    auto wifi = Nl80211Socket::open();
    if (!wifi)
        return links;
    for (const auto& interface : wifi.value().dump(NL80211_CMD_GET_INTERFACE, 0, parseInterface)) {
        if (!isStation(interface))
            continue;
        const auto [stations, networks] = readAssociation(wifi.value(), interface);
        if (const auto bssid = bssidOf(stations, networks))
            links.push_back({*interface.index, interface.ssid, bssid});
    }
    return links;
}

std::unique_ptr<GenericEvents> openEvents(
    const char* family, std::span<const char* const> groups, std::span<const std::uint8_t> commands)
{
    auto events = GenericEvents::open(family, groups, commands);
    return events ? std::make_unique<GenericEvents>(std::move(events.value())) : nullptr;
}

} // namespace

/// What is opened in the background; each socket null if it cannot be.
struct LinuxRadioMonitor::Sources {
    /// First: whatever registers from here on is noticed.
    std::unique_ptr<GenericEvents> families = openEvents(
        "nlctrl", std::array {"notify"}, std::array<std::uint8_t, 1> {CTRL_CMD_NEWFAMILY});
    std::unique_ptr<GenericEvents> radio = openEvents(NL80211_GENL_NAME,
        std::array {NL80211_MULTICAST_GROUP_MLME, NL80211_MULTICAST_GROUP_SCAN}, kRadioCommands);
    std::vector<KnownLink> links = readLinks();
};

LinuxRadioMonitor::LinuxRadioMonitor(base::Clock& clock, base::WorkQueue& queue)
    : m_clock(clock)
    , m_queue(queue)
    , m_reader(interfaceName)
{
    listen();
}

LinuxRadioMonitor::~LinuxRadioMonitor() = default;

void LinuxRadioMonitor::listen()
{
    base::runInBackground(
        m_queue, this, [] { return std::make_shared<Sources>(); },
        [this](const std::shared_ptr<Sources>& sources) { follow(sources); });
}

void LinuxRadioMonitor::follow(std::shared_ptr<Sources> sources)
{
    const auto watch = [this](std::unique_ptr<QSocketNotifier>& notifier,
                           const std::unique_ptr<GenericEvents>& events, auto receiver) {
        notifier.reset();
        if (!events)
            return;
        notifier = std::make_unique<QSocketNotifier>(events->descriptor(), QSocketNotifier::Read);
        connect(notifier.get(), &QSocketNotifier::activated, this, receiver);
    };
    watch(m_events, sources->radio, &LinuxRadioMonitor::receive);
    watch(m_families, sources->families, &LinuxRadioMonitor::receiveFamilies);
    m_reader.setLinks(sources->links);
    m_sources = std::move(sources);
}

void LinuxRadioMonitor::receive()
{
    m_sources->radio->receive([this](const netlink::GenericMessage& message) {
        if (const auto event = m_reader.read(message, m_clock.monotonicNow()))
            Q_EMIT happened(*event);
    });
}

void LinuxRadioMonitor::receiveFamilies()
{
    bool isOurs = false;
    m_sources->families->receive([&isOurs](const netlink::GenericMessage& message) {
        const netlink::Attributes<CTRL_ATTR_MAX> attributes(message.attributes);
        isOurs = isOurs || attributes.text(CTRL_ATTR_FAMILY_NAME) == NL80211_GENL_NAME;
    });
    if (isOurs)
        listen();
}

} // namespace netvane::radio
