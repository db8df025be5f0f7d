#pragma once

#include "platform/air.h"

#include <QByteArray>

#include <cstdint>
#include <functional>
#include <span>

namespace netvane::radio {

/// Bytes from the air; anybody in reach can send any.
using ElementBytes = std::span<const std::uint8_t>;
ElementBytes elementsOf(const QByteArray& bytes);

/// The numbers of elements (IEEE 802.11-2020, table 9-92; EHT: IEEE 802.11be). Elements with an
/// extension have number 255 and the extension's in their first byte; here 256 is added to that.
enum ElementNumber {
    kSsid = 0,
    kCountry = 7,
    kBssLoad = 11,
    kHtCapabilities = 45,
    kRsn = 48,
    kMobilityDomain = 54,
    kHtOperation = 61,
    kRmCapabilities = 70,
    kExtendedCapabilities = 127,
    kVhtCapabilities = 191,
    kVhtOperation = 192,
    kVendor = 221,
    kExtension = 255,
    kHeCapabilities = 256 + 35,
    kHeOperation = 256 + 36,
    kEhtOperation = 256 + 106,
    kMultiLink = 256 + 107,
    kEhtCapabilities = 256 + 108,
};

/// Calls `take` for each element in its order, until one does not fit: with its number and what
/// follows its length, or its extension.
void forEachElement(
    ElementBytes elements, const std::function<void(int number, ElementBytes body)>& take);

/// The vendor's element of WPA: the identifier and the type with which it begins.
bool isWpaElement(ElementBytes vendorBody);

/// What an access point announces of itself, completed in `network`, which has the frequency of its
/// primary channel in `span`. Each element counts once, a later one of the same number completes
/// nothing. One that is malformed, or describes a channel that does not cover the primary one, says
/// nothing.
void readElements(ElementBytes elements, platform::AirNetwork& network);

} // namespace netvane::radio
