#pragma once

#include <QString>

#include <utility>
#include <variant>

namespace netvane::base {

/// The kind of a failure. errno, netlink and D-Bus errors are each mapped to it in one place.
enum class FailureKind {
    NotAvailable, ///< the kernel subsystem or the service does not exist
    NotFound, ///< it exists, but the requested device or object does not
    NotAllowed,
    TimedOut,
    Interrupted, ///< the answer changed while it was read; a new request may succeed
    Other,
};

struct Failure {
    FailureKind kind = FailureKind::Other;
    QString text; ///< for a log line; for the user only where the operation says so

    bool operator==(const Failure&) const = default;
};

/// The value of an operation of the platform layer, or the reason why there is none. The caller
/// must check it.
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
