#pragma once

#include <QString>

#include <utility>
#include <variant>

namespace netvane::base {

/// What kind of thing went wrong; errno, netlink and D-Bus errors are each mapped to it in one
/// place.
enum class FailureKind {
    NotAvailable, ///< the kernel subsystem or the service is not there
    NotFound, ///< it is there, but the device or object asked for is not
    NotAllowed,
    TimedOut,
    Interrupted, ///< the answer changed while it was read; asking again may help
    Other,
};

struct Failure {
    FailureKind kind = FailureKind::Other;
    QString text; ///< for a log line; for the user only where the operation says so

    bool operator==(const Failure&) const = default;
};

/// The value of an operation of the platform layer, or why there is none. Must be looked at.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value)
        : m_state(std::in_place_index<0>, std::move(value))
    {
    }
    Result(Failure failure)
        : m_state(std::in_place_index<1>, std::move(failure))
    {
    }

    explicit operator bool() const { return m_state.index() == 0; }
    /// Only when there is a value.
    const T& value() const { return std::get<0>(m_state); }
    T& value() { return std::get<0>(m_state); }
    /// Only when there is none.
    const Failure& failure() const { return std::get<1>(m_state); }

private:
    std::variant<T, Failure> m_state;
};

} // namespace netvane::base
