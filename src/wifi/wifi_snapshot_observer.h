#pragma once

namespace netvane::wifi {

struct WiFiInfo;

/// Who wants every snapshot that the sampler takes, changed or not. Called on the main thread.
class WiFiSnapshotObserver {
public:
    virtual ~WiFiSnapshotObserver() = default;
    virtual void checkForNetworkChanges(const WiFiInfo& wifiInfo) = 0;
};

} // namespace netvane::wifi
