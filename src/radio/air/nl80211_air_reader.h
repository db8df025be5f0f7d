#pragma once

#include "radio/air/air_messages.h"
#include "radio/interface_choice.h"

#include <memory>

namespace netvane::radio {

/// One pass: what the kernel says of the interfaces, and all about one of them.
struct AirPass {
    std::vector<platform::AirAdapter> adapters; ///< in the order of use
    std::uint32_t index = 0; ///< of the interface that is used
    AirMessages messages; ///< about it
};

/// Asks nl80211. Needs no privilege, and no scan is started: the kernel's table is read as it is.
/// For background threads; `interfaceName` and the failures as `platform::AirReader::read`.
base::Result<AirPass> readAirPass(const InterfaceChoice& choice, const QString& interfaceName);

class Nl80211AirReader : public platform::AirReader {
public:
    explicit Nl80211AirReader(std::shared_ptr<InterfaceChoice> choice)
        : m_choice(std::move(choice))
    {
    }

    base::Result<platform::AirReading> read(const QString& interfaceName) override;

private:
    const std::shared_ptr<InterfaceChoice> m_choice;
};

} // namespace netvane::radio
