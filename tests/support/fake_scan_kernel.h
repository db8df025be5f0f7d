#pragma once

#include "radio/scan_kernel.h"

#include <sys/socket.h>

#include <array>
#include <atomic>

namespace netvane::test {

/// A kernel with one interface, "wlan0", whose events are datagrams from the test. Set `table`
/// before a scan ends.
class FakeScanKernel : public radio::ScanKernel {
public:
    /// `family` is the number of nl80211 in the events, which are about the interface 3.
    explicit FakeScanKernel(int family)
        : m_family(family)
    {
        ::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, m_ends.data());
    }
    ~FakeScanKernel() override
    {
        for (const int end : m_ends)
            ::close(end);
    }

    base::Result<radio::ScanSetup> prepare() override
    {
        return radio::ScanSetup {{3, QStringLiteral("wlan0")},
            std::make_shared<netlink::GenericEvents>(
                base::FileDescriptor(::dup(m_ends[0])), m_family)};
    }
    base::Result<std::monostate> trigger(const radio::ScanInterface&) override
    {
        ++triggers;
        return std::monostate {};
    }
    base::Result<std::vector<radio::BssRecord>> readTable(const radio::ScanInterface&) override
    {
        ++reads;
        return table;
    }

    void tell(const QByteArray& datagram)
    {
        [[maybe_unused]] const auto sent
            = ::send(m_ends[1], datagram.constData(), size_t(datagram.size()), 0);
    }

    std::vector<radio::BssRecord> table {{.frequencyMhz = 2437, .bssid = "\2\0\0\0\0"}};
    std::atomic<int> triggers = 0;
    std::atomic<int> reads = 0;

private:
    const int m_family;
    std::array<int, 2> m_ends {-1, -1};
};

} // namespace netvane::test
