#include "radio/air/channel_elements.h"

#include "radio/nl80211_messages.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace netvane::radio {

using platform::AirSpan;
using platform::ChannelBand;

namespace {

constexpr std::array kTaken {kHtOperation, kVhtOperation, kHeOperation, kEhtOperation};

/// The centre with this number; the numbers of centres count in 5 MHz from the band's start.
std::uint32_t centreOf(ChannelBand band, int number)
{
    const int start = band == ChannelBand::SixGHz ? 5950 : 5000;
    return std::uint32_t(start + 5 * number);
}

bool covers(const AirSpan& span)
{
    const int width = span.secondCentreMhz ? 80 : *span.widthMhz;
    return std::abs(int(*span.centreMhz) - int(span.primaryMhz)) <= width / 2 - 10;
}

/// Takes a wider description if it covers the primary channel.
void widen(AirSpan& span, const AirSpan& wider)
{
    if (covers(wider) && wider.widthMhz >= span.widthMhz)
        span = wider;
}

AirSpan spanOf(const AirSpan& primary, ChannelBand band, int width, int centre)
{
    return {
        .primaryMhz = primary.primaryMhz, .centreMhz = centreOf(band, centre), .widthMhz = width};
}

/// 80 MHz around the first number; with a second one 160 around that, or 80 more elsewhere.
AirSpan pairOf(const AirSpan& primary, ChannelBand band, int first, int second)
{
    constexpr int kAdjacent = 8;
    if (second == 0)
        return spanOf(primary, band, 80, first);
    if (std::abs(second - first) == kAdjacent)
        return spanOf(primary, band, 160, second);
    auto span = spanOf(primary, band, 160, first);
    span.secondCentreMhz = centreOf(band, second);
    return span;
}

void addHt(AirSpan& span, ElementBytes body)
{
    constexpr int kAbove = 1;
    constexpr int kBelow = 3;
    constexpr int kAnyWidth = 4;
    if (body.size() < 2 || (body[1] & kAnyWidth) == 0)
        return;
    const int side = body[1] & 3;
    if (side != kAbove && side != kBelow)
        return;
    span.widthMhz = 40;
    span.centreMhz = side == kAbove ? span.primaryMhz + 10 : span.primaryMhz - 10;
}

/// `body` is the information of VHT, three bytes; the widths 2 and 3 are older forms of 1.
void addVht(AirSpan& span, ElementBytes body)
{
    if (body.size() < 3 || body[0] < 1 || body[0] > 3)
        return;
    constexpr int kOld160 = 2;
    widen(span,
        body[0] == kOld160 ? spanOf(span, ChannelBand::FiveGHz, 160, body[1])
                           : pairOf(span, ChannelBand::FiveGHz, body[1], body[2]));
}

void addHe(AirSpan& span, ChannelBand band, ElementBytes body)
{
    constexpr size_t kFixed = 6;
    constexpr size_t kVhtSize = 3;
    if (body.size() < kFixed)
        return;
    const bool hasVht = (body[1] & 0x40) != 0;
    const bool hasShared = (body[1] & 0x80) != 0;
    const bool hasSixGHz = (body[2] & 0x02) != 0;
    auto rest = body.subspan(kFixed);
    if (hasVht && band == ChannelBand::FiveGHz)
        addVht(span, rest);
    const size_t before = (hasVht ? kVhtSize : 0) + (hasShared ? 1 : 0);
    if (!hasSixGHz || band != ChannelBand::SixGHz || rest.size() < before + 4)
        return;
    rest = rest.subspan(before);
    constexpr std::array kWidths {20, 40, 80, 160};
    const int width = kWidths.at(rest[1] & 3);
    widen(span,
        width == 160 ? pairOf(span, band, rest[2], rest[3]) : spanOf(span, band, width, rest[2]));
}

void addEht(AirSpan& span, ChannelBand band, ElementBytes body)
{
    constexpr size_t kFixed = 5;
    constexpr std::array kWidths {20, 40, 80, 160, 320};
    if (body.size() < kFixed + 3 || (body[0] & 1) == 0)
        return;
    const auto information = body.subspan(kFixed);
    const size_t width = information[0] & 7;
    if (width >= kWidths.size() || band == ChannelBand::TwoGHz)
        return;
    const bool isWide = kWidths.at(width) >= 160;
    widen(span, spanOf(span, band, kWidths.at(width), information[isWide ? 2 : 1]));
}

} // namespace

void ChannelElements::take(int number, ElementBytes body)
{
    if (std::ranges::count(kTaken, number) > 0)
        m_bodies.emplace(number, body);
}

void ChannelElements::complete(AirSpan& span) const
{
    const auto band = platform::bandOf(span.primaryMhz);
    if (band == ChannelBand::Unknown)
        return;
    span.widthMhz = 20;
    span.centreMhz = span.primaryMhz;
    const auto body = [this](int number) {
        const auto found = m_bodies.find(number);
        return found == m_bodies.end() ? ElementBytes() : found->second;
    };
    if (band != ChannelBand::SixGHz)
        addHt(span, body(kHtOperation));
    if (band == ChannelBand::FiveGHz)
        addVht(span, body(kVhtOperation));
    addHe(span, band, body(kHeOperation));
    addEht(span, band, body(kEhtOperation));
}

} // namespace netvane::radio
