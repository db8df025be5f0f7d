// The kernel's answers about a link: one interface, and up to four stations, channels and networks.
#include "fuzz_target.h"
#include "radio/nl80211_messages.h"

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    const auto message = [&] { return takeBytes(input, 512); };
    const auto interface = radio::parseInterface(asBytes(message()));
    std::vector<radio::StationRecord> stations;
    std::vector<radio::SurveyRecord> survey;
    std::vector<radio::BssRecord> networks;
    for (int i = 0; i < 4 && input.remaining_bytes() > 0; ++i) {
        stations.push_back(radio::parseStation(asBytes(message())));
        survey.push_back(radio::parseSurvey(asBytes(message())));
        networks.push_back(radio::parseBss(asBytes(message())));
    }
    for (const auto& station : stations)
        require(!station.transmitRateMbps || *station.transmitRateMbps >= 0, "rates have no sign");
    for (const auto& network : networks)
        require(!network.bssid || network.bssid->size() == 6, "an address has six bytes");
    if (interface.name)
        require(!interface.name->contains('\0'), "a name ends at its zero");
    (void)radio::linkReading(interface, stations, survey, networks);
    (void)radio::needsScanTable(interface, stations);
}
