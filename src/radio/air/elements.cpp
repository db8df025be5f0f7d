#include "radio/air/elements.h"

#include "radio/air/channel_elements.h"
#include "radio/air/security_elements.h"
#include "radio/nl80211_messages.h"

#include <algorithm>
#include <bitset>

namespace netvane::radio {

using platform::AirNetwork;
using platform::AirStandard;

namespace {

constexpr size_t kAddressSize = 6;

bool bitOf(ElementBytes body, size_t bit)
{
    return bit / 8 < body.size() && (body[bit / 8] >> (bit % 8) & 1) != 0;
}

void announce(AirNetwork& network, AirStandard standard, std::optional<int> streams)
{
    network.standard = std::max(network.standard.value_or(AirStandard::Legacy), standard);
    network.streams = std::max(network.streams, streams);
}

/// Each bit pair of a map of VHT and HE is about one number of streams; 3 means none.
std::optional<int> streamsOfMap(ElementBytes body, size_t at)
{
    constexpr unsigned kNone = 3;
    if (body.size() < at + 2)
        return {};
    const unsigned map = unsigned(body[at] | body[at + 1] << 8);
    for (int streams = 8; streams > 0; --streams) {
        if ((map >> (2 * (streams - 1)) & kNone) != kNone)
            return streams;
    }
    return {};
}

/// A byte of the set for each number of streams.
std::optional<int> htStreams(ElementBytes body)
{
    constexpr size_t kSet = 3;
    if (body.size() < kSet + 4)
        return {};
    const auto set = body.subspan(kSet, 4);
    const auto streams = std::ranges::count_if(set, [](std::uint8_t byte) { return byte != 0; });
    return streams > 0 ? std::optional(int(streams)) : std::nullopt;
}

/// Of the modulations that every EHT device knows, in the narrowest map.
std::optional<int> ehtStreams(ElementBytes body)
{
    constexpr size_t kMap = 11;
    if (body.size() <= kMap)
        return {};
    const int streams = body[kMap] & 0xf;
    return streams >= 1 && streams <= 8 ? std::optional(streams) : std::nullopt;
}

void readLoad(ElementBytes body, AirNetwork& network)
{
    constexpr double kWhole = 255;
    if (body.size() < 3)
        return;
    network.stations = body[0] | body[1] << 8;
    network.utilization = body[2] / kWhole;
}

void readCountry(ElementBytes body, AirNetwork& network)
{
    const auto isPlain = [](int c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); };
    if (body.size() >= 2 && std::ranges::all_of(body.first(2), isPlain))
        network.country = QString::fromLatin1(reinterpret_cast<const char*>(body.data()), 2);
}

/// Only of the kind that beacons have: a basic one, which begins with the address of the device.
void readMultiLink(ElementBytes body, AirNetwork& network)
{
    constexpr unsigned kTypeBits = 7;
    constexpr size_t kHasLinkId = 4;
    constexpr size_t kCommonLength = 2;
    constexpr size_t kAddress = 3;
    constexpr size_t kLinkId = kAddress + kAddressSize;
    if (body.size() < kLinkId || (body[0] & kTypeBits) != 0)
        return;
    network.deviceAddress
        = addressText(QByteArray(reinterpret_cast<const char*>(&body[kAddress]), kAddressSize));
    const size_t end = kCommonLength + body[kCommonLength];
    if (bitOf(body, kHasLinkId) && end > kLinkId && body.size() > kLinkId)
        network.linkId = body[kLinkId] & 0xf;
}

void readElement(int number, ElementBytes body, AirNetwork& network)
{
    constexpr size_t kNeighbourReport = 1;
    constexpr size_t kBssTransition = 19;
    constexpr size_t kVhtMap = 4;
    constexpr size_t kHeMap = 17;
    switch (number) {
    case kCountry:
        return readCountry(body, network);
    case kBssLoad:
        return readLoad(body, network);
    case kHtCapabilities:
        return announce(network, AirStandard::Ht, htStreams(body));
    case kVhtCapabilities:
        return announce(network, AirStandard::Vht, streamsOfMap(body, kVhtMap));
    case kHeCapabilities:
        return announce(network, AirStandard::He, streamsOfMap(body, kHeMap));
    case kEhtCapabilities:
        return announce(network, AirStandard::Eht, ehtStreams(body));
    case kMobilityDomain:
        network.offersFastTransition = true;
        if (body.size() >= 2)
            network.mobilityDomain = body[0] | body[1] << 8;
        return;
    case kRmCapabilities:
        network.offersNeighbours = bitOf(body, kNeighbourReport);
        return;
    case kExtendedCapabilities:
        network.offersTransition = bitOf(body, kBssTransition);
        return;
    case kMultiLink:
        return readMultiLink(body, network);
    default:
        return;
    }
}

} // namespace

ElementBytes elementsOf(const QByteArray& bytes)
{
    return {reinterpret_cast<const std::uint8_t*>(bytes.constData()), size_t(bytes.size())};
}

void forEachElement(
    ElementBytes elements, const std::function<void(int number, ElementBytes body)>& take)
{
    while (elements.size() >= 2) {
        const size_t length = elements[1];
        if (elements.size() < 2 + length)
            return;
        const auto body = elements.subspan(2, length);
        if (elements[0] != kExtension)
            take(elements[0], body);
        else if (!body.empty())
            take(kExtension + 1 + body[0], body.subspan(1));
        elements = elements.subspan(2 + length);
    }
}

void readElements(ElementBytes elements, AirNetwork& network)
{
    constexpr size_t kNumbers = 512; // those of elements and of their extensions
    std::bitset<kNumbers> seen;
    ChannelElements channel;
    SecurityElements security;
    forEachElement(elements, [&](int number, ElementBytes body) {
        // Of vendors there are many.
        if (number != kVendor && seen.test(size_t(number)))
            return;
        seen.set(size_t(number));
        readElement(number, body, network);
        channel.take(number, body);
        security.take(number, body);
    });
    if (!network.standard)
        network.standard = AirStandard::Legacy;
    if (network.span)
        channel.complete(*network.span);
    security.complete(network.security);
}

} // namespace netvane::radio
