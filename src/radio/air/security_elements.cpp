#include "radio/air/security_elements.h"

#include <algorithm>
#include <array>

namespace netvane::radio {

using platform::AirSecurity;

namespace {

constexpr size_t kSuiteSize = 4;
constexpr size_t kPairwise = 2 + kSuiteSize; // after the version and the group's cipher
constexpr std::array<std::uint8_t, 4> kWpaType {0x00, 0x50, 0xf2, 0x01};
constexpr std::array<std::uint8_t, 3> kStandardSuite {0x00, 0x0f, 0xac};

/// The end of a list of suites that begins with its count; absent beyond the element.
std::optional<size_t> endOfList(ElementBytes body, size_t at)
{
    if (body.size() < at + 2)
        return {};
    const size_t end = at + 2 + kSuiteSize * size_t(body[at] | body[at + 1] << 8);
    return end <= body.size() ? std::optional(end) : std::nullopt;
}

/// IEEE 802.11-2020, table 9-151, with later ones.
void addSuite(AirSecurity& security, ElementBytes suite)
{
    if (!std::ranges::equal(suite.first(3), kStandardSuite)) {
        security.other = true;
        return;
    }
    switch (suite[3]) {
    case 1: // 802.1X
    case 3:
    case 5:
    case 11:
    case 22:
    case 23:
        security.enterprise = true;
        return;
    case 12:
    case 13:
        security.enterprise192 = true;
        return;
    case 2: // shared key
    case 4:
    case 6:
    case 19:
    case 20:
        security.wpa2 = true;
        return;
    case 8: // SAE
    case 9:
    case 24:
    case 25:
        security.wpa3 = true;
        return;
    case 18:
        security.owe = true;
        return;
    default:
        security.other = true;
    }
}

} // namespace

bool isWpaElement(ElementBytes vendorBody)
{
    return vendorBody.size() >= kWpaType.size()
        && std::ranges::equal(vendorBody.first(kWpaType.size()), kWpaType);
}

size_t rsnPolicySize(ElementBytes body)
{
    const auto suites = endOfList(body, kPairwise);
    const auto end = suites ? endOfList(body, *suites) : std::nullopt;
    return std::min(body.size(), end ? *end + 2 : suites.value_or(kPairwise));
}

void SecurityElements::take(int number, ElementBytes body)
{
    if (number == kRsn) {
        m_isSecured = true;
        takeRsn(body);
    } else if (number == kVendor && isWpaElement(body)) {
        m_isSecured = true;
        m_security.wpa = true;
    }
}

void SecurityElements::takeRsn(ElementBytes body)
{
    constexpr int kRequired = 0x40;
    constexpr int kOffered = 0x80;
    const auto suites = endOfList(body, kPairwise);
    const auto end = suites ? endOfList(body, *suites) : std::nullopt;
    // What it does not say is 802.1X, by the standard; what is cut off is not known.
    if (!end) {
        const bool isCut = suites ? body.size() > *suites : body.size() > kPairwise;
        (isCut ? m_security.other : m_security.enterprise) = true;
        return;
    }
    for (size_t at = *suites + 2; at < *end; at += kSuiteSize)
        addSuite(m_security, body.subspan(at, kSuiteSize));
    if (*end == *suites + 2)
        m_security.other = true;
    if (body.size() < *end + 2)
        return;
    m_security.protectsManagement = (body[*end] & kOffered) != 0;
    m_security.requiresProtection = (body[*end] & kRequired) != 0;
}

void SecurityElements::complete(std::optional<AirSecurity>& security) const
{
    if (m_isSecured)
        security = m_security;
}

} // namespace netvane::radio
