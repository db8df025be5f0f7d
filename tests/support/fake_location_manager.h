#pragma once

#include "platform/location_manager.h"

namespace netvane::test {

/// A permission that the test grants and takes away.
class FakeLocationManager : public platform::LocationManager {
public:
    using Status = platform::AuthorizationStatus;

    Status authorizationStatus() const override { return status; }
    void requestAlwaysAuthorization() override { ++requests; }

    /// The system's answer changes and it says so.
    void change(Status changed)
    {
        status = changed;
        Q_EMIT didChangeAuthorization(changed);
    }

    Status status = Status::NotDetermined;
    int requests = 0;
};

} // namespace netvane::test
