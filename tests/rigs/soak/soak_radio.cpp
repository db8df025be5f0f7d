#include "soak_radio.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::soak {
namespace {

constexpr std::chrono::milliseconds kScanTime = 3s;

class Adapter final : public platform::WiFiInterface {
public:
    Adapter(
        std::shared_ptr<platform::WiFiInterface> scripted, std::shared_ptr<const AdapterFate> fate)
        : m_scripted(std::move(scripted))
        , m_fate(std::move(fate))
    {
    }

    bool powerOn() const override { return m_scripted->powerOn(); }
    std::optional<platform::LinkReading> readLink() override
    {
        if (m_fate->isUnplugged)
            return {};
        auto reading = m_scripted->readLink();
        if (const int journey = m_fate->journey; reading && reading->ssid && journey != 0)
            reading->ssid = u"Train %1"_s.arg(journey);
        return reading;
    }

private:
    const std::shared_ptr<platform::WiFiInterface> m_scripted;
    const std::shared_ptr<const AdapterFate> m_fate;
};

} // namespace

SoakRadio::SoakRadio(
    std::shared_ptr<platform::WiFiClient> scripted, std::shared_ptr<const AdapterFate> fate)
    : m_scripted(std::move(scripted))
    , m_fate(std::move(fate))
{
}

std::vector<std::shared_ptr<platform::WiFiInterface>> SoakRadio::interfaces()
{
    std::vector<std::shared_ptr<platform::WiFiInterface>> found;
    if (m_fate->isUnplugged)
        return found;
    for (auto& scripted : m_scripted->interfaces())
        found.push_back(std::make_shared<Adapter>(std::move(scripted), m_fate));
    return found;
}

void CrowdedScanner::scan(QObject* owner, DeliverNetworks deliver)
{
    const bool isBusy = ++m_scans % 3 == 0 && !m_fate->isQuiet;
    m_stage->later(kScanTime, owner, [this, isBusy, deliver = std::move(deliver)] {
        if (isBusy)
            deliver(base::Failure {base::FailureKind::Other, u"the driver is busy"_s});
        else
            deliver(networks());
    });
}

void CrowdedScanner::readCurrentChannel(QObject* owner, DeliverChannel deliver)
{
    m_stage->later(
        0ms, owner, [this, deliver = std::move(deliver)] { deliver(m_stage->link().channel); });
}

std::vector<platform::NearbyNetwork> CrowdedScanner::networks() const
{
    constexpr int kFewest = 200;
    constexpr int kStep = 37;
    const int more = m_fate->isQuiet ? 0 : m_scans * kStep % (kMostNetworks - kFewest);
    const int count = kFewest + more;
    std::vector<platform::NearbyNetwork> found;
    for (int i = 0; i < count; ++i) {
        const platform::WiFiChannel channel = i % 2 == 0
            ? platform::WiFiChannel {1 + i % 13, platform::ChannelBand::TwoGHz}
            : platform::WiFiChannel {36 + 4 * (i % 8), platform::ChannelBand::FiveGHz};
        found.push_back({.ssid = u"neighbour %1 of %2"_s.arg(i).arg(m_scans),
            .bssid = QString::asprintf("02:00:00:00:%02x:%02x", i / 256, i % 256),
            .channel = channel,
            .signalDbm = -40 - i % 50});
    }
    return found;
}

} // namespace netvane::soak
