#pragma once

#include "netlink/netlink_socket.h"

#include <QByteArray>

#include <linux/netlink.h>
#include <netlink/attr.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

namespace netvane::netlink {

/// The fixed header of a message; absent if the message is shorter.
template <typename Header>
std::optional<Header> headerOf(AttributeBytes message)
{
    if (message.size() < sizeof(Header))
        return {};
    Header header {};
    std::memcpy(&header, message.data(), sizeof header);
    return header;
}

/// What follows it.
template <typename Header>
AttributeBytes attributesAfter(AttributeBytes message)
{
    return message.subspan(std::min(message.size(), size_t(NLMSG_ALIGN(sizeof(Header)))));
}

/// Attributes by number, up to `Max`; higher numbers and incomplete attributes are ignored. Each
/// getter returns nothing unless the attribute has exactly the expected size, so that a wrong
/// attribute of a driver does not affect the others.
template <int Max>
class Attributes {
public:
    explicit Attributes(AttributeBytes bytes)
    {
        // libnl does not read beyond `bytes`, even if an attribute claims more.
        nla_parse(m_table.data(), Max,
            reinterpret_cast<nlattr*>(const_cast<std::byte*>(bytes.data())), int(bytes.size()),
            nullptr);
    }

    bool has(int number) const { return m_table[size_t(number)] != nullptr; }

    template <typename Number>
    std::optional<Number> number(int number) const
    {
        const nlattr* attribute = m_table[size_t(number)];
        if (!attribute || nla_len(attribute) != int(sizeof(Number)))
            return {};
        Number value {};
        std::memcpy(&value, nla_data(attribute), sizeof value);
        return value;
    }

    /// The payload without any change; absent without the attribute.
    std::optional<QByteArray> bytes(int number) const
    {
        const nlattr* attribute = m_table[size_t(number)];
        if (!attribute)
            return {};
        return QByteArray(static_cast<const char*>(nla_data(attribute)), nla_len(attribute));
    }

    /// A text that ends at its first zero byte, or with the attribute.
    std::optional<QByteArray> text(int number) const
    {
        auto whole = bytes(number);
        if (whole)
            whole->truncate(qsizetype(qstrnlen(whole->constData(), uint(whole->size()))));
        return whole;
    }

    /// The attributes inside; empty without the attribute.
    AttributeBytes nested(int number) const
    {
        const nlattr* attribute = m_table[size_t(number)];
        if (!attribute)
            return {};
        return {static_cast<const std::byte*>(nla_data(attribute)), size_t(nla_len(attribute))};
    }

private:
    std::array<nlattr*, size_t(Max) + 1> m_table {};
};

} // namespace netvane::netlink
