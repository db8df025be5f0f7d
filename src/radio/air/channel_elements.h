#pragma once

#include "radio/air/elements.h"

#include <map>

namespace netvane::radio {

/// The width and the centre of a channel, which several elements describe: the narrow part of HT,
/// a wide one of VHT, HE (in 6 GHz the only one) and EHT.
class ChannelElements {
public:
    void take(int number, ElementBytes body);

    /// Completes a span that has its primary channel. The widest that covers it counts; without
    /// any it is 20 MHz wide.
    void complete(platform::AirSpan& span) const;

private:
    std::map<int, ElementBytes> m_bodies; ///< valid as long as the elements
};

} // namespace netvane::radio
