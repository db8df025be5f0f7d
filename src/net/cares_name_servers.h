#pragma once

#include "base/clock.h"
#include "platform/name_server_client.h"

#include <QObject>

namespace netvane::net {

/// Name servers asked with c-ares, one question after the other on a socket and a port of its own.
/// At most `kMostQuestions` are under way; a further one is not asked and gets `Nothing` at once.
class CaresNameServers final : public platform::NameServerClient {
public:
    static constexpr qsizetype kMostQuestions = 16;
    /// The server has so long for each of two tries.
    static constexpr std::chrono::milliseconds kTryLimit {1000};

    /// `clock` outlives this.
    explicit CaresNameServers(base::Clock& clock);
    /// Drops the questions that are under way.
    ~CaresNameServers() override;

    void ask(const QString& server, const QString& name, QObject* owner,
        std::function<void(const platform::NameAnswer&)> deliver) override;

private:
    base::Clock& m_clock;
    QObject m_questions; ///< their parent
};

} // namespace netvane::net
