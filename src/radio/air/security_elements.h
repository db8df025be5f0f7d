#pragma once

#include "radio/air/elements.h"

namespace netvane::radio {

/// How an access point protects its network: the element RSN and WPA's of a vendor.
class SecurityElements {
public:
    void take(int number, ElementBytes body);

    /// Adds what was taken. `security` has what the bit of privacy says: `wep`, which only stands
    /// where no element says better; absent where that bit is not known.
    void complete(std::optional<platform::AirSecurity>& security) const;

private:
    void takeRsn(ElementBytes body);

    platform::AirSecurity m_security;
    bool m_isSecured = false; ///< by one of the elements, whatever is in it
};

/// Where the part of the element RSN ends that says how to join: before the identifiers of keys.
/// Shorter if the element is.
size_t rsnPolicySize(ElementBytes body);

} // namespace netvane::radio
