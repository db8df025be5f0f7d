#pragma once

#include "verdict/track.h"

namespace netvane::verdict {

/// What changed on the Wi-Fi link within the last readings.
struct RadioChange {
    std::optional<int> signalDbm; ///< now
    std::optional<double> transmitRateMbps;
    double seconds = 0; ///< between the first and the last reading
    double sentPackets = 0;
    double failedPackets = 0;
    double retries = 0;
    double beaconsLost = 0;
    std::optional<double> busyPercent; ///< of the time that the radio listened
    bool powerSave = false;
    TimePoint at;

    /// Of the packets that were sent; 0 where the driver does not count.
    double failedPercent() const;
};

/// Events of a minute are counted, but what stopped a while ago does no harm now.
inline constexpr std::chrono::seconds kEventGoesOn {20};

/// The evidence, summed up for the rules. Refers to the evidence.
struct Facts {
    explicit Facts(const Evidence& evidence);

    const Evidence& evidence;
    bool hasRoute = true; ///< also where that is not known
    bool isThroughVpn = false;
    bool isByRadio = false; ///< packets leave by a Wi-Fi link, or would
    Track router;
    Track firstHop;
    Track secondHop;
    Track internet; ///< of IPv4, or of IPv6 where there is no IPv4
    Track others;
    std::optional<double> nearMs; ///< to the router, by the quicker of the two ways
    LossTrack nearLoss; ///< to the router
    LossTrack farLoss; ///< to the internet
    Loss internetLoss; ///< of all handshakes with the internet target that are remembered
    LossTrack targetLoss; ///< of the handshakes with the internet target alone
    Loss sharedLoss; ///< to the router, while packets to the internet were lost
    bool isLossy = false; ///< packets to the internet are lost, not only those nobody need answer
    double nearShare = 0.5; ///< how likely these are lost before the router, 0 to 1
    bool isNearAlive = false;
    bool isWebFine = false; ///< the page of the portal check came since the target is silent
    bool isDown = false; ///< nothing on the internet answers
    bool isReached = false; ///< the internet answers
    std::optional<RadioChange> radio;

    double ageOf(TimePoint at) const;
    bool isRecent(TimePoint at, std::chrono::seconds limit) const;
    /// The last reading of the Wi-Fi link; null without one.
    const platform::LinkReading* link() const;
    /// The quicker of the two ways to the router.
    const Track& near() const;
    /// Wi-Fi is the way out, or the only one there could be, and it has no link.
    bool lacksLink() const;
    /// Of the radio's events of this kind within the limit; null without one. A sign-in that failed
    /// without a code was not answered at all, as by an access point that is gone: nobody refused
    /// it, and it does not count.
    const platform::RadioEvent* newestEvent(
        platform::RadioEvent::Kind kind, std::chrono::seconds limit) const;
    int countOfEvents(platform::RadioEvent::Kind kind, std::chrono::seconds limit) const;

private:
    void findShare();
    bool isEvent(const platform::RadioEvent& event, platform::RadioEvent::Kind kind,
        std::chrono::seconds limit) const;
};

} // namespace netvane::verdict
