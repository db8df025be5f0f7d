#include "radio/radio_events.h"

#include <algorithm>

namespace netvane::radio {

using platform::RadioEvent;

namespace {

/// Messages about the same thing follow each other at once.
constexpr std::chrono::seconds kSameThing {1};
/// Adapters that are plugged in again and again get new numbers.
constexpr size_t kInterfaces = 64;

// The header of a management frame, with three addresses, and the bodies (IEEE 802.11-2020, 9.3.3).
constexpr qsizetype kAddressSize = 6;
constexpr qsizetype kTransmitter = 10;
constexpr qsizetype kBssid = 16;
constexpr qsizetype kBody = 24;
constexpr qsizetype kEndReason = kBody;
constexpr qsizetype kAuthenticationAlgorithm = kBody;
constexpr qsizetype kAuthenticationStatus = kBody + 4;
constexpr qsizetype kAssociationStatus = kBody + 2;

constexpr int kAlgorithmSae = 3;
// States of SAE that are a step of it and no refusal (IEEE 802.11-2020, 9.4.1.9).
constexpr std::array kSaeSteps {
    76 /* a token first */, 126 /* by hash to element */, 127 /* by public key */};

/// Two bytes, the low one first; absent beyond the frame's end.
std::optional<int> numberAt(const QByteArray& frame, qsizetype at)
{
    if (frame.size() < at + 2)
        return {};
    return uchar(frame[at]) | (uchar(frame[at + 1]) << 8);
}

std::optional<int> statusOfFrame(int command, const QByteArray& frame)
{
    if (command == NL80211_CMD_ASSOCIATE)
        return numberAt(frame, kAssociationStatus);
    const auto status = numberAt(frame, kAuthenticationStatus);
    const bool isStep = numberAt(frame, kAuthenticationAlgorithm) == kAlgorithmSae && status
        && std::ranges::count(kSaeSteps, *status) > 0;
    return isStep ? 0 : status;
}

} // namespace

/// A message that came.
struct RadioEventReader::Arrival {
    int command;
    const netlink::Attributes<NL80211_ATTR_MAX>& attributes;
    RadioEvent event; ///< with what is the same for all
    QByteArray frame; ///< empty without one

    RadioEvent as(RadioEvent::Kind kind) const
    {
        RadioEvent told = event;
        told.kind = kind;
        return told;
    }
};

void RadioEventReader::setLinks(const std::vector<KnownLink>& links)
{
    m_links.clear();
    for (const auto& known : links)
        m_links[known.interfaceIndex] = {.ssid = known.ssid, .bssid = known.bssid};
}

std::optional<RadioEvent> RadioEventReader::read(
    const netlink::GenericMessage& message, TimePoint receivedAt)
{
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(message.attributes);
    const auto index = attributes.number<std::uint32_t>(NL80211_ATTR_IFINDEX);
    Arrival arrival {.command = message.command,
        .attributes = attributes,
        .event = {.at = receivedAt, .interfaceName = index ? m_nameOf(*index) : QString()},
        .frame = attributes.bytes(NL80211_ATTR_FRAME).value_or(QByteArray())};
    if (const auto scan = scanEvent(message))
        return arrival.as(scan->kind == ScanEvent::Kind::Started ? RadioEvent::Kind::ScanStarted
                                                                 : RadioEvent::Kind::ScanEnded);
    if (!index)
        return {};
    if (m_links.size() >= kInterfaces && !m_links.contains(*index))
        m_links.clear();
    Link& link = m_links[*index];
    switch (message.command) {
    case NL80211_CMD_CONNECT:
    case NL80211_CMD_ROAM:
        return connected(arrival, link);
    case NL80211_CMD_DISCONNECT:
        return disconnected(arrival, link);
    case NL80211_CMD_AUTHENTICATE:
    case NL80211_CMD_ASSOCIATE:
        return refused(arrival, link);
    case NL80211_CMD_DEAUTHENTICATE:
    case NL80211_CMD_DISASSOCIATE:
        keepEndFrame(arrival, link);
        return {};
    default:
        return {};
    }
}

std::optional<RadioEvent> RadioEventReader::connected(const Arrival& arrival, Link& link)
{
    const auto status = arrival.attributes.number<std::uint16_t>(NL80211_ATTR_STATUS_CODE);
    if (status.value_or(0) != 0 || arrival.attributes.has(NL80211_ATTR_TIMED_OUT))
        return refused(arrival, link);
    const bool isRoam = arrival.command == NL80211_CMD_ROAM;
    // The request for the association names the network; some drivers do not show it.
    const auto ssid
        = ssidElement(arrival.attributes.bytes(NL80211_ATTR_REQ_IE).value_or(QByteArray()));
    const auto bssid = arrival.attributes.bytes(NL80211_ATTR_MAC);
    const auto before = std::exchange(link,
        {.ssid = ssid || !isRoam ? ssid : link.ssid,
            .bssid = bssid && bssid->size() == kAddressSize ? bssid : std::nullopt});
    const bool isSoon
        = before.bssid && (!before.endedAt || arrival.event.at - *before.endedAt < kRoamLimit);
    const bool isChange
        = isSoon && ssid && ssid == before.ssid && link.bssid && link.bssid != before.bssid;
    auto event = arrival.as(isRoam || isChange ? RadioEvent::Kind::Roamed //
                                               : RadioEvent::Kind::Connected);
    if (link.bssid)
        event.bssid = addressText(*link.bssid);
    return event;
}

std::optional<RadioEvent> RadioEventReader::disconnected(const Arrival& arrival, Link& link)
{
    auto event = arrival.as(RadioEvent::Kind::Disconnected);
    event.byAccessPoint = arrival.attributes.has(NL80211_ATTR_DISCONNECTED_BY_AP);
    if (const auto reason = arrival.attributes.number<std::uint16_t>(NL80211_ATTR_REASON_CODE))
        event.code = *reason;
    auto bssid = link.bssid;
    if (const auto frame = std::exchange(link.endFrame, {});
        frame && event.at - frame->at < kSameThing) {
        event.byAccessPoint = event.byAccessPoint || frame->byAccessPoint;
        if (!event.code)
            event.code = frame->reason;
        bssid = frame->bssid;
    }
    if (bssid)
        event.bssid = addressText(*bssid);
    link.endedAt = event.at;
    return event;
}

/// Without a status, the access point did not answer.
std::optional<RadioEvent> RadioEventReader::refused(const Arrival& arrival, Link& link)
{
    const bool isTimeout = arrival.attributes.has(NL80211_ATTR_TIMED_OUT);
    const bool isFrame = arrival.command != NL80211_CMD_CONNECT;
    std::optional<int> status;
    if (isFrame)
        status = statusOfFrame(arrival.command, arrival.frame);
    else
        status = arrival.attributes.number<std::uint16_t>(NL80211_ATTR_STATUS_CODE);
    if (!isTimeout && status.value_or(0) == 0)
        return {};
    const auto before = std::exchange(link.refusedAt, arrival.event.at);
    if (!isFrame && before && arrival.event.at - *before < kSameThing)
        return {};
    auto event = arrival.as(RadioEvent::Kind::SignInFailed);
    if (!isTimeout)
        event.code = status;
    if (const auto bssid = arrival.attributes.bytes(NL80211_ATTR_MAC);
        bssid && bssid->size() == kAddressSize)
        event.bssid = addressText(*bssid);
    else if (arrival.frame.size() >= kBody)
        event.bssid = addressText(arrival.frame.sliced(kBssid, kAddressSize));
    return event;
}

void RadioEventReader::keepEndFrame(const Arrival& arrival, Link& link)
{
    const QByteArray& frame = arrival.frame;
    if (frame.size() < kBody)
        return;
    const auto bssid = frame.sliced(kBssid, kAddressSize);
    link.endFrame = {.at = arrival.event.at,
        .reason = numberAt(frame, kEndReason),
        .byAccessPoint = frame.sliced(kTransmitter, kAddressSize) == bssid,
        .bssid = bssid};
}

} // namespace netvane::radio
