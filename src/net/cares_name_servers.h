#pragma once

#include "base/clock.h"
#include "platform/name_server_client.h"

namespace netvane::net {

/// Questions to single name servers by c-ares. The main loop watches their sockets.
class CaresNameServers : public platform::NameServerClient {
public:
    /// Further questions are answered with nothing at once.
    static constexpr int kMostQuestions = 8;

    /// `clock` outlives this and the owners of questions.
    explicit CaresNameServers(base::Clock& clock)
        : m_clock(clock)
    {
    }

    void ask(const QString& server, const QString& name, QObject* owner,
        std::function<void(const platform::NameAnswer&)> deliver) override;

private:
    base::Clock& m_clock;
    const std::shared_ptr<int> m_running = std::make_shared<int>(0);
};

} // namespace netvane::net
