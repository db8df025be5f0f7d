#pragma once

#include "platform/air.h"
#include "platform/location_manager.h"
#include "platform/network_scanner.h"
#include "platform/wifi_client.h"
#include "simulated/questions.h"

#include <QSemaphore>

#include <atomic>

namespace netvane::simulated {

/// Reads `reading`, or the result of `script`.
class WiFiInterface final : public platform::WiFiInterface {
public:
    bool powerOn() const override { return isOn; }
    std::optional<platform::LinkReading> readLink() override
    {
        auto seen = script ? script() : reading;
        ++reads; // from here on `reading` may be changed
        if (isHeld)
            letGo.acquire();
        return seen;
    }

    std::atomic<bool> isOn = true;
    /// Absent: the interface was removed. Set only while no read runs, or while a held read is
    /// already counted in `reads`.
    std::optional<platform::LinkReading> reading = platform::LinkReading {};
    /// Set before the first read; runs on its thread.
    std::function<std::optional<platform::LinkReading>()> script;
    std::atomic<bool> isHeld = false; ///< reads wait until `letGo` is released
    QSemaphore letGo;
    std::atomic<int> reads = 0;
};

class WiFiClient final : public platform::WiFiClient {
public:
    std::vector<std::shared_ptr<platform::WiFiInterface>> interfaces() override { return list; }

    std::vector<std::shared_ptr<platform::WiFiInterface>> list;
};

/// Reads `reading`, which is set only while no read runs, or the result of `script`.
class AirReader final : public platform::AirReader {
public:
    base::Result<platform::AirReading> read(const QString& interfaceName) override
    {
        lastName = interfaceName;
        ++reads;
        return script ? script() : reading;
    }

    base::Result<platform::AirReading> reading = platform::AirReading {};
    /// Set before the first read; runs on its thread.
    std::function<platform::AirReading()> script;
    QString lastName; ///< what the last read asked for
    std::atomic<int> reads = 0;
};

/// Scans wait for `finish`. Main thread.
class NetworkScanner final : public platform::NetworkScanner {
public:
    using Networks = base::Result<std::vector<platform::NearbyNetwork>>;

    void scan(QObject* owner, DeliverNetworks deliver) override
    {
        ++scans;
        waiting.add(owner, std::move(deliver));
    }
    void readCurrentChannel(QObject* owner, DeliverChannel deliver) override
    {
        QMetaObject::invokeMethod(
            owner, [this, deliver = std::move(deliver)] { deliver(currentChannel); },
            Qt::QueuedConnection);
    }
    void finish(const Networks& networks) { waiting.answer(networks); }

    int scans = 0;
    std::optional<platform::WiFiChannel> currentChannel;
    Questions<Networks> waiting;
};

/// The permission for scans. Main thread.
class LocationManager final : public platform::LocationManager {
public:
    using Status = platform::AuthorizationStatus;

    Status authorizationStatus() const override { return status; }
    void requestAlwaysAuthorization() override { ++requests; }

    /// Sets the status and emits the signal.
    void change(Status changed)
    {
        status = changed;
        Q_EMIT didChangeAuthorization(changed);
    }

    Status status = Status::NotDetermined;
    int requests = 0;
};

} // namespace netvane::simulated
