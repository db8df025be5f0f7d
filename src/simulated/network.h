#pragma once

#include "platform/name_server_client.h"
#include "platform/network_configuration.h"
#include "platform/resolver.h"

#include <QMetaObject>
#include <QSemaphore>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>

namespace netvane::simulated {

/// A value that may be set and read on any thread.
template <typename T>
class Shared {
public:
    Shared& operator=(T value)
    {
        const std::lock_guard lock(m_lock);
        m_value = std::move(value);
        return *this;
    }
    operator T() const
    {
        const std::lock_guard lock(m_lock);
        return m_value;
    }

private:
    mutable std::mutex m_lock;
    T m_value;
};

class NetworkConfiguration final : public platform::NetworkConfiguration {
public:
    std::optional<QString> defaultRouter() override
    {
        routerThread = std::this_thread::get_id();
        return router;
    }
    std::optional<platform::NetworkState> readState() override { return state; }
    QStringList dnsServers() override { return servers; }
    QStringList interfaceNames() override { return interfaces; }

    Shared<std::optional<QString>> router;
    Shared<std::thread::id> routerThread; ///< on which it was asked for last
    Shared<std::optional<platform::NetworkState>> state;
    Shared<QStringList> servers;
    Shared<QStringList> interfaces;
};

/// Answers on a later turn of the main loop with what `script` says. Main thread.
class NameServerClient final : public platform::NameServerClient {
public:
    void ask(const QString& server, const QString& name, QObject* owner,
        std::function<void(const platform::NameAnswer&)> deliver) override
    {
        const auto answer = script ? script(server, name) : platform::NameAnswer {};
        QMetaObject::invokeMethod(
            owner, [answer, deliver = std::move(deliver)] { deliver(answer); },
            Qt::QueuedConnection);
    }

    std::function<platform::NameAnswer(const QString& server, const QString& name)> script;
};

/// Answers every look-up with `status`. A lookup takes real time, on the calling thread.
class Resolver final : public platform::Resolver {
public:
    platform::Resolution resolve(const std::string& host) override
    {
        lastHostIsExpected = host == expectedHost;
        const int number = calls++;
        if (isHeld)
            letGo.acquire();
        if (takeTime)
            takeTime(number);
        ++ended;
        return {.status = status,
            .errorText = status == 0 ? "" : errorText,
            .addresses
            = status == 0 ? std::vector<std::string> {"198.18.0.1"} : std::vector<std::string> {}};
    }

    const std::string expectedHost = "host.test";
    std::atomic<bool> lastHostIsExpected = false;
    std::atomic<int> status = 0; ///< zero or an EAI_ number
    std::string errorText = "Name or service not known"; ///< set before the first look-up
    /// Blocks for the duration of look-up `number`. Set before the first one; runs on its thread.
    std::function<void(int number)> takeTime;
    std::atomic<bool> isHeld = false; ///< look-ups wait until `letGo` is released
    QSemaphore letGo;
    std::atomic<int> calls = 0;
    std::atomic<int> ended = 0;
};

} // namespace netvane::simulated
