#pragma once

#include "platform/wifi_client.h"

#include <QSemaphore>

#include <atomic>

namespace netvane::test {

/// An interface that answers what it is told. A read can be held until it is let go.
class FakeWiFiInterface : public platform::WiFiInterface {
public:
    bool powerOn() const override { return isOn; }

    std::optional<platform::LinkReading> readLink() override
    {
        const auto seen = reading;
        ++reads; // from here on the test may change `reading`
        if (isHeld)
            letGo.acquire();
        return seen;
    }

    std::atomic<bool> isOn = true;
    std::atomic<bool> isHeld = false;
    QSemaphore letGo;
    std::atomic<int> reads = 0;
    /// Absent: the interface is gone. Set only while no pass is in flight, or one is held that has
    /// been counted in `reads`.
    std::optional<platform::LinkReading> reading = platform::LinkReading {};
};

class FakeWiFiClient : public platform::WiFiClient {
public:
    std::vector<std::shared_ptr<platform::WiFiInterface>> interfaces() override { return list; }

    std::vector<std::shared_ptr<platform::WiFiInterface>> list;
};

} // namespace netvane::test
