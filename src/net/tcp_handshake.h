#pragma once

#include "net/attempt.h"

namespace netvane::net {

/// Sets up a TCP connection.
class TcpHandshake : public Attempt {
public:
    TcpHandshake();

    Answer takeAnswer() override;
    short awaited() const override;
    std::optional<std::chrono::steady_clock::time_point> kernelAnsweredAt() const override;

private:
    bool ask(const SocketAddress& address) override;
};

} // namespace netvane::net
