#pragma once

#include "platform/status_notifier_host.h"

namespace netvane::test {

/// A panel that the test starts and ends; nothing is known at first.
class FakeStatusNotifierHost final : public platform::StatusNotifierHost {
public:
    std::optional<bool> isPresent() const override { return m_isPresent; }
    void setPresent(bool isPresent)
    {
        m_isPresent = isPresent;
        Q_EMIT presenceChanged();
    }

private:
    std::optional<bool> m_isPresent;
};

} // namespace netvane::test
