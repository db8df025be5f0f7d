// The kernel's answers about a link: one interface, and up to four stations, channels and networks.
#include "fuzz_target.h"
#include "radio/nl80211_messages.h"

using namespace netvane;

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    constexpr size_t kLongestMessage = 512;
    constexpr int kMost = 4;
    const auto message = [&] { return fuzz::takeBytes(input, kLongestMessage); };
    const auto interface = radio::parseInterface(fuzz::asBytes(message()));
    std::vector<radio::StationRecord> stations;
    std::vector<radio::SurveyRecord> survey;
    std::vector<radio::BssRecord> networks;
    for (int i = 0; i < kMost && input.remaining_bytes() > 0; ++i) {
        stations.push_back(radio::parseStation(fuzz::asBytes(message())));
        survey.push_back(radio::parseSurvey(fuzz::asBytes(message())));
        networks.push_back(radio::parseBss(fuzz::asBytes(message())));
    }
    for (const auto& station : stations)
        fuzz::require(
            !station.transmitRateMbps || *station.transmitRateMbps >= 0, "rates have no sign");
    for (const auto& network : networks)
        fuzz::require(!network.bssid || network.bssid->size() == 6, "an address has six bytes");
    if (interface.name)
        fuzz::require(!interface.name->contains('\0'), "a name ends at its zero");
    (void)radio::linkReading(interface, stations, survey, networks);
    (void)radio::needsScanTable(interface, stations);
}
