#pragma once

#include "simulated/http.h"
#include "simulated/manual_clock.h"

namespace netvane::test {

struct ClockOfTransfers {
    simulated::ManualClock clockOfTransfers;
};

class FakeHttpTransfers : ClockOfTransfers, public simulated::HttpTransfers {
public:
    FakeHttpTransfers()
        : simulated::HttpTransfers(clockOfTransfers)
    {
    }
};

} // namespace netvane::test
