#include "air/channel_advice.h"

#include "air/heard_networks.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::air {
namespace {

using Kind = ChannelAdvice::Kind;

/// A radio does not wait for what is weaker (IEEE 802.11-2020, 17.3.10.6).
constexpr int kLeastDbm = -82;
/// Beacons and a little traffic of a network that tells nothing of its load.
constexpr Airtime kAssumed = 40;
/// By so much the load of a channel swings from minute to minute; less is not clearly quieter.
constexpr Airtime kClearly = 150;
/// An access point must listen before it sends on a radar channel, and leave it for each radar.
constexpr Airtime kRadarCost = 100;
/// Shorter listening says nothing of a channel: beacons come every 102 ms.
constexpr std::uint64_t kLeastListeningMs = 50;

Airtime thousandths(double share)
{
    return Airtime(std::floor(std::clamp(share, 0.0, 1.0) * 1000 + 0.5));
}

/// The common part of a block with all that a network covers.
int overlapWith(const AirNetwork& network, const Range& range)
{
    int most = 0;
    for (const auto& part : rangesOf(*network.span))
        most = std::max(most, overlap(part, range));
    return most;
}

/// One device has several networks on one channel, with addresses that differ in the first or the
/// last byte. They move together.
bool isSameDevice(const AirNetwork& one, const AirNetwork& other)
{
    return one.span->primaryMhz == other.span->primaryMhz && one.bssid && other.bssid
        && QStringView(*one.bssid).mid(3, 11) == QStringView(*other.bssid).mid(3, 11);
}

class Judge {
public:
    Judge(ChannelBand band, const Surroundings& surroundings)
        : m_surroundings(surroundings)
        , m_band(band)
    {
        for (const auto& network : surroundings.networks) {
            if (network.isOurs && isInBand(network)
                && (!m_ours || m_ours->signalDbm < network.signalDbm))
                m_ours = &network;
        }
        if (!m_ours)
            return;
        m_range = rangesOf(*m_ours->span).front();
        for (const auto& network : surroundings.networks) {
            if (isInBand(network) && isFresh(network) && !network.isOurs
                && network.signalDbm.value_or(0) >= kLeastDbm && !isSameDevice(network, *m_ours))
                m_others.push_back(&network);
        }
    }

    ChannelAdvice advice() const
    {
        ChannelAdvice advice {.band = m_band};
        if (!m_ours)
            return advice;
        const auto channel = platform::channelOf(m_ours->span->primaryMhz);
        advice.channel = channel ? channel->number : 0;
        advice.airtime = airtimeOf(m_range);
        advice.kind = isHeard() ? Kind::Stay : Kind::NothingHeard;
        if (!isHeard())
            return advice;
        if (!chooseBest(advice))
            advice.kind = Kind::RulesUnknown;
        else if (advice.airtime - costOf(advice.bestAirtime, advice.hasRadar) >= kClearly)
            advice.kind = Kind::Move;
        return advice;
    }

private:
    bool isInBand(const AirNetwork& network) const
    {
        return network.span && platform::bandOf(network.span->primaryMhz) == m_band;
    }

    /// What was heard away from our channel tells that somebody has looked there.
    bool isHeard() const
    {
        return m_surroundings.wasScanned
            || std::ranges::any_of(m_others,
                [this](const AirNetwork* network) { return overlapWith(*network, m_range) == 0; });
    }

    static Airtime costOf(Airtime airtime, bool hasRadar)
    {
        return airtime + (hasRadar ? kRadarCost : 0);
    }

    /// False where the rules are not known.
    bool chooseBest(ChannelAdvice& advice) const
    {
        const int width = m_band == ChannelBand::TwoGHz ? 20 : m_range.width();
        for (const auto& block : blocks(m_band, width)) {
            bool hasRadar = false;
            if (block.range == m_range || !isAllowed(block, hasRadar))
                continue;
            const Airtime airtime = airtimeOf(block.range);
            if (advice.best
                && costOf(airtime, hasRadar) >= costOf(advice.bestAirtime, advice.hasRadar))
                continue;
            advice.best = block;
            advice.bestAirtime = airtime;
            advice.hasRadar = hasRadar;
        }
        return advice.best.has_value();
    }

    /// Each channel of 20 MHz in it.
    bool isAllowed(const Block& block, bool& hasRadar) const
    {
        for (int middle = block.range.low + 10; middle < block.range.high; middle += 20) {
            const auto& known = m_surroundings.channels;
            const auto found
                = std::ranges::find(known, std::uint32_t(middle), &AirChannel::frequencyMhz);
            if (found == known.end() || !found->isAllowed || found->isPassive)
                return false;
            hasRadar |= found->needsRadarCheck;
        }
        return true;
    }

    Airtime airtimeOf(const Range& range) const
    {
        Airtime assumed = 0;
        Airtime measured = surveyed(range);
        for (const auto* network : m_others) {
            const int common = overlapWith(*network, range);
            assumed += common * kAssumed / 1000;
            if (network->utilization)
                measured = std::max(measured, common * thousandths(*network->utilization) / 1000);
        }
        // What we and our access point send is measured by all, but would move with us.
        const double own = m_surroundings.change.transmit.value_or(0)
            + m_surroundings.change.ownReceive.value_or(0);
        measured -= thousandths(own) * overlap(m_range, range) / 1000;
        return std::min(1000, std::max(measured, assumed));
    }

    /// The busiest of the radio's own counts of the channels in it; of ours, that of just now.
    Airtime surveyed(const Range& range) const
    {
        const auto isInside
            = [&range](std::uint32_t mhz) { return int(mhz) > range.low && int(mhz) < range.high; };
        const auto primary = m_ours->span->primaryMhz;
        const auto& now = m_surroundings.change.busy;
        Airtime most = now && isInside(primary) ? thousandths(*now) : 0;
        for (const auto& channel : m_surroundings.channels) {
            if (!isInside(channel.frequencyMhz) || (now && channel.frequencyMhz == primary)
                || !channel.survey || channel.survey->activeMs.value_or(0) < kLeastListeningMs)
                continue;
            if (const auto share = platform::busyShare({}, *channel.survey))
                most = std::max(most, thousandths(*share));
        }
        return most;
    }

    const Surroundings& m_surroundings;
    const ChannelBand m_band;
    const AirNetwork* m_ours = nullptr;
    Range m_range; ///< of ours
    std::vector<const AirNetwork*> m_others;
};

QString percent(Airtime airtime)
{
    return QString::number((airtime + 5) / 10) + u" %"_s;
}

} // namespace

ChannelAdvice adviseChannel(ChannelBand band, const Surroundings& surroundings)
{
    return Judge(band, surroundings).advice();
}

QString sentence(const ChannelAdvice& advice)
{
    const QString here = percent(advice.airtime);
    switch (advice.kind) {
    case Kind::NoAccessPoint:
        return u"Your access point is not in this band."_s;
    case Kind::NothingHeard:
        return u"Nobody has looked at the other channels in the last two minutes. A scan would."_s;
    case Kind::RulesUnknown:
        return u"No other channel of this band is known to be allowed here."_s;
    case Kind::Stay:
        return u"Moving will not help: others use about %1 of the time on your channel %2, and %3 "
               "on channel %4, the quietest of the others."_s.arg(here)
                   .arg(advice.channel)
                   .arg(percent(advice.bestAirtime))
                   .arg(advice.best->number);
    case Kind::Move:
        return u"Channel %1 is quieter: others use about %2 of the time there, and %3 on your "
               "channel %4.%5"_s.arg(advice.best->number)
                   .arg(percent(advice.bestAirtime), here)
                   .arg(advice.channel)
                   .arg(advice.hasRadar
                           ? u" It is a radar channel: the access point listens for a minute "
                             "before it sends there, and leaves it when it finds a radar."_s
                           : QString());
    }
    return {};
}

QString bandName(ChannelBand band)
{
    switch (band) {
    case ChannelBand::TwoGHz:
        return u"2.4 GHz"_s;
    case ChannelBand::FiveGHz:
        return u"5 GHz"_s;
    case ChannelBand::SixGHz:
        return u"6 GHz"_s;
    case ChannelBand::Unknown:
        break;
    }
    return {};
}

} // namespace netvane::air
