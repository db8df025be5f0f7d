#pragma once

#include "base/clock.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace netvane::probes {

/// Delivers at most one value per `interval`: the first at once, and of those within an interval
/// the last one at its end. A timer runs only while a value is held back. Main thread.
template <typename Value>
class LatestValueThrottle {
public:
    /// `clock` outlives this. `deliver` may send further values.
    LatestValueThrottle(base::Clock& clock, std::chrono::milliseconds interval,
        std::function<void(const Value&)> deliver)
        : m_clock(clock)
        , m_interval(interval)
        , m_deliver(std::move(deliver))
    {
    }

    void send(Value value)
    {
        if (m_heldBack) {
            m_heldBack = std::move(value);
            return;
        }
        const auto now = m_clock.monotonicNow();
        if (!m_lastDelivery || now >= *m_lastDelivery + m_interval) {
            deliver(value);
            return;
        }
        m_heldBack = std::move(value);
        const auto left
            = std::chrono::ceil<std::chrono::milliseconds>(*m_lastDelivery + m_interval - now);
        m_intervalEnd
            = m_clock.after(left, [this] { deliver(*std::exchange(m_heldBack, std::nullopt)); });
    }

private:
    void deliver(const Value& value)
    {
        m_lastDelivery = m_clock.monotonicNow();
        m_deliver(value);
    }

    base::Clock& m_clock;
    const std::chrono::milliseconds m_interval;
    const std::function<void(const Value&)> m_deliver;
    std::optional<std::chrono::steady_clock::time_point> m_lastDelivery;
    std::optional<Value> m_heldBack; ///< waits for the end of the interval
    std::unique_ptr<base::Timer> m_intervalEnd;
};

} // namespace netvane::probes
