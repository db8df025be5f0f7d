#pragma once

#include "demo/stage.h"
#include "platform/hop_probe.h"
#include "platform/http_client.h"
#include "platform/http_transfer.h"
#include "platform/resolver.h"

#include <atomic>

namespace netvane::demo {

/// Answers of routers and hosts that nobody was asked for. Handlers run on the main thread.
class ScriptedConnections final : public platform::ConnectionFactory,
                                  public platform::HopProbeFactory {
public:
    explicit ScriptedConnections(std::shared_ptr<Stage> stage)
        : m_stage(std::move(stage))
    {
    }

    std::unique_ptr<platform::Connection> connectTcp(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override;
    std::unique_ptr<platform::Connection> probeHop(const QString& host, quint16 port, int hopLimit,
        platform::ConnectionHandler handler) override;

private:
    const std::shared_ptr<Stage> m_stage;
};

/// What the look-ups of a scene do. Shared with threads that may outlive everything else.
struct Lookups {
    std::atomic<int> microseconds = -1; ///< negative: nothing is resolved
    std::atomic<int> begun = 0;
    std::atomic<int> ended = 0;
};

/// Takes the time of the scene, more or less, and asks nobody.
class ScriptedResolver final : public platform::Resolver {
public:
    explicit ScriptedResolver(std::shared_ptr<Lookups> lookups)
        : m_lookups(std::move(lookups))
    {
    }

    platform::Resolution resolve(const std::string& host) override;

private:
    const std::shared_ptr<Lookups> m_lookups;
};

/// The probe page, or what stands before it.
class ScriptedHttpClient final : public platform::HttpClient {
public:
    explicit ScriptedHttpClient(std::shared_ptr<Stage> stage)
        : m_stage(std::move(stage))
    {
    }

    void get(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver) override;

private:
    const std::shared_ptr<Stage> m_stage;
};

/// Transfers that only take their time.
class ScriptedTransfers final : public platform::HttpTransfers {
public:
    explicit ScriptedTransfers(std::shared_ptr<Stage> stage)
        : m_stage(std::move(stage))
    {
    }

    std::unique_ptr<platform::HttpTransfer> start(const platform::TransferRequest& request,
        std::function<void(const platform::TransferOutcome&)> deliver) override;

private:
    const std::shared_ptr<Stage> m_stage;
};

} // namespace netvane::demo
