#include "net/cares_name_servers.h"

#include <QObject>
#include <QSocketNotifier>

#include <arpa/inet.h>
#include <netinet/in.h>

#include <ares.h>

#include <array>
#include <map>
#include <utility>

namespace netvane::net {
namespace {

using platform::NameAnswer;

constexpr int kTryMs = 1000;
constexpr int kTries = 2;
constexpr qsizetype kMostAddresses = 8;

NameAnswer::Kind kindOf(int status)
{
    switch (status) {
    case ARES_SUCCESS:
        return NameAnswer::Kind::Addresses;
    case ARES_ENOTFOUND:
        return NameAnswer::Kind::NoSuchName;
    case ARES_ENODATA:
        return NameAnswer::Kind::NoAddresses;
    case ARES_ESERVFAIL:
    case ARES_EREFUSED:
    case ARES_ENOTIMP:
    case ARES_EFORMERR:
    case ARES_EBADRESP:
        return NameAnswer::Kind::Failed;
    default:
        return NameAnswer::Kind::Nothing;
    }
}

struct FreeAddresses {
    void operator()(ares_addrinfo* addresses) const { ares_freeaddrinfo(addresses); }
};

QStringList textOf(const ares_addrinfo& found)
{
    QStringList texts;
    for (const auto* node = found.nodes; node && texts.size() < kMostAddresses;
         node = node->ai_next) {
        if (node->ai_family != AF_INET)
            continue;
        std::array<char, INET_ADDRSTRLEN> text {};
        const auto* address = reinterpret_cast<const sockaddr_in*>(node->ai_addr);
        ::inet_ntop(AF_INET, &address->sin_addr, text.data(), text.size());
        texts.append(QString::fromLatin1(text.data()));
    }
    return texts;
}

/// One question, on a channel of its own. Ends itself.
class Question : public QObject {
public:
    Question(QObject* owner, base::Clock& clock, std::shared_ptr<int> running,
        std::function<void(const NameAnswer&)> deliver)
        : QObject(owner)
        , m_clock(clock)
        , m_running(std::move(running))
        , m_deliver(std::move(deliver))
        , m_startedAt(clock.monotonicNow())
    {
        ++*m_running;
    }
    ~Question() override
    {
        --*m_running;
        m_isOver = true;
        if (m_channel)
            ares_destroy(m_channel);
    }

    void send(const QByteArray& server, const QByteArray& name)
    {
        ares_options options {};
        options.flags = ARES_FLAG_NOSEARCH | ARES_FLAG_NOALIASES;
        options.timeout = kTryMs;
        options.tries = kTries;
        options.lookups = const_cast<char*>("b"); // no file of hosts
        options.sock_state_cb = &Question::watchSocket;
        options.sock_state_cb_data = this;
        const bool isReady = ares_init_options(&m_channel, &options,
                                 ARES_OPT_FLAGS | ARES_OPT_TIMEOUTMS | ARES_OPT_TRIES
                                     | ARES_OPT_LOOKUPS | ARES_OPT_SOCK_STATE_CB)
                == ARES_SUCCESS
            && ares_set_servers_ports_csv(m_channel, server.constData()) == ARES_SUCCESS;
        if (!isReady) {
            finish(ARES_EBADSTR, nullptr);
            return;
        }
        const ares_addrinfo_hints hints {
            .ai_flags = ARES_AI_NOSORT, .ai_family = AF_INET, .ai_socktype = 0, .ai_protocol = 0};
        ares_getaddrinfo(m_channel, name.constData(), nullptr, &hints, &Question::take, this);
        setTimer();
    }

private:
    static void watchSocket(void* self, ares_socket_t socket, int readable, int writable)
    {
        auto& question = *static_cast<Question*>(self);
        question.m_notifiers.erase(socket);
        if (question.m_isOver || (!readable && !writable))
            return;
        auto& notifier = question.m_notifiers[socket];
        const auto type = readable ? QSocketNotifier::Read : QSocketNotifier::Write;
        notifier.reset(new QSocketNotifier(socket, type));
        connect(notifier.get(), &QSocketNotifier::activated, &question, [&question, socket, type] {
            const bool isRead = type == QSocketNotifier::Read;
            question.process(isRead ? socket : ARES_SOCKET_BAD, isRead ? ARES_SOCKET_BAD : socket);
        });
    }

    static void take(void* self, int status, int, ares_addrinfo* found)
    {
        static_cast<Question*>(self)->finish(status, found);
    }

    void process(ares_socket_t readable, ares_socket_t writable)
    {
        ares_process_fd(m_channel, readable, writable);
        setTimer();
    }

    void setTimer()
    {
        timeval left {};
        if (m_isOver || !ares_timeout(m_channel, nullptr, &left))
            return;
        const std::chrono::milliseconds wait(left.tv_sec * 1000 + left.tv_usec / 1000 + 1);
        m_timer = m_clock.after(wait, [this] { process(ARES_SOCKET_BAD, ARES_SOCKET_BAD); });
    }

    /// On the next turn: c-ares, and its owner, may be in the middle of something.
    void finish(int status, ares_addrinfo* found)
    {
        const std::unique_ptr<ares_addrinfo, FreeAddresses> held(found);
        if (std::exchange(m_isOver, true))
            return;
        const std::chrono::duration<double, std::milli> time = m_clock.monotonicNow() - m_startedAt;
        NameAnswer answer {.kind = kindOf(status), .milliseconds = time.count()};
        if (found)
            answer.addresses = textOf(*found);
        if (answer.kind == NameAnswer::Kind::Addresses && answer.addresses.isEmpty())
            answer.kind = NameAnswer::Kind::NoAddresses;
        const auto tell = [this, answer] {
            deleteLater();
            m_deliver(answer);
        };
        QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
    }

    /// A notifier may be replaced while it notifies.
    struct DeleteLater {
        void operator()(QSocketNotifier* notifier) const
        {
            notifier->setEnabled(false);
            notifier->deleteLater();
        }
    };

    base::Clock& m_clock;
    const std::shared_ptr<int> m_running;
    const std::function<void(const NameAnswer&)> m_deliver;
    const std::chrono::steady_clock::time_point m_startedAt;
    ares_channel m_channel = nullptr;
    std::map<ares_socket_t, std::unique_ptr<QSocketNotifier, DeleteLater>> m_notifiers;
    std::unique_ptr<base::Timer> m_timer;
    bool m_isOver = false;
};

} // namespace

void CaresNameServers::ask(const QString& server, const QString& name, QObject* owner,
    std::function<void(const NameAnswer&)> deliver)
{
    if (*m_running >= kMostQuestions) {
        QMetaObject::invokeMethod(
            owner, [deliver = std::move(deliver)] { deliver({}); }, Qt::QueuedConnection);
        return;
    }
    const QByteArray address
        = server.contains(u':') ? '[' + server.toLatin1() + ']' : server.toLatin1();
    (new Question(owner, m_clock, m_running, std::move(deliver)))->send(address, name.toLatin1());
}

} // namespace netvane::net
