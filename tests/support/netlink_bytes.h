#pragma once

#include <QByteArray>

#include <cstddef>
#include <span>

namespace netvane::test {

/// The bytes of a number in memory.
template <typename Number>
QByteArray raw(Number number)
{
    return QByteArray(reinterpret_cast<const char*>(&number), sizeof number);
}

/// One netlink attribute with its padding; `claimed` replaces the length in its header.
inline QByteArray attribute(int type, const QByteArray& payload, int claimed = -1)
{
    const auto length = quint16(claimed >= 0 ? claimed : payload.size() + 4);
    return raw(length) + raw(quint16(type)) + payload
        + QByteArray((4 - payload.size() % 4) % 4, '\0');
}

inline std::span<const std::byte> bytesOf(const QByteArray& bytes)
{
    return {reinterpret_cast<const std::byte*>(bytes.constData()), size_t(bytes.size())};
}

} // namespace netvane::test
