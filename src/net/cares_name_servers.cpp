#include "net/cares_name_servers.h"

#include "net/host_addresses.h"

#include <QPointer>
#include <QSocketNotifier>

#include <arpa/inet.h>
#include <arpa/nameser.h>

#include <ares.h>

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace netvane::net {
namespace {

using platform::NameAnswer;

constexpr int kTries = 2;
constexpr int kMostAddresses = 8;
/// Each response is taken as it is, without another server or another form of the question.
constexpr int kFlags
    = ARES_FLAG_NOCHECKRESP | ARES_FLAG_NOSEARCH | ARES_FLAG_NOALIASES | ARES_FLAG_IGNTC;

NameAnswer::Kind kindOf(int status)
{
    switch (status) {
    case ARES_SUCCESS:
        return NameAnswer::Kind::Addresses;
    case ARES_ENOTFOUND:
        return NameAnswer::Kind::NoSuchName;
    case ARES_ENODATA:
        return NameAnswer::Kind::NoAddresses;
    case ARES_EFORMERR:
    case ARES_ESERVFAIL:
    case ARES_ENOTIMP:
    case ARES_EREFUSED:
    case ARES_EBADRESP:
        return NameAnswer::Kind::Failed;
    default:
        return NameAnswer::Kind::Nothing;
    }
}

/// The response is checked by c-ares; `addresses` gets those in it.
int readAddresses(const unsigned char* response, int length, QStringList& addresses)
{
    std::array<ares_addrttl, kMostAddresses> found {};
    int count = kMostAddresses;
    const int status = ares_parse_a_reply(response, length, nullptr, found.data(), &count);
    for (int i = 0; status == ARES_SUCCESS && i < count; ++i) {
        std::array<char, INET_ADDRSTRLEN> text {};
        ::inet_ntop(AF_INET, &found.at(size_t(i)).ipaddr, text.data(), text.size());
        addresses.append(QString::fromLatin1(text.data()));
    }
    return status;
}

/// One question. It has a channel of its own: newer versions of c-ares give a channel a cache, and
/// a memory of how fast its server is.
class Question : public QObject {
public:
    using Deliver = std::function<void(const NameAnswer&)>;

    Question(base::Clock& clock, QObject* owner, Deliver deliver, QObject* parent)
        : QObject(parent)
        , m_clock(clock)
        , m_owner(owner)
        , m_deliver(std::move(deliver))
        , m_startedAt(clock.monotonicNow())
    {
    }
    ~Question() override
    {
        m_isOver = true;
        if (m_channel)
            ares_destroy(m_channel);
    }

    void begin(const QByteArray& server, const QByteArray& name)
    {
        if (!open(server)) {
            end(ARES_ENOTINITIALIZED, nullptr, 0);
            return;
        }
        const auto take = [](void* self, int status, int, unsigned char* response, int length) {
            static_cast<Question*>(self)->end(status, response, length);
        };
        ares_query(m_channel, name.constData(), ns_c_in, ns_t_a, take, this);
        windTimer();
    }
    /// Delivers, on a later turn, that there is nothing.
    void refuse() { end(ARES_ECANCELLED, nullptr, 0); }

private:
    /// With all of these options it reads no file of the system, 1.18 at least.
    bool open(const QByteArray& server)
    {
        std::array<char, 2> noFile {"b"}; // as in "look up by DNS alone"
        ares_options options {};
        options.flags = kFlags;
        options.timeout = int(CaresNameServers::kTryLimit.count());
        options.tries = kTries;
        options.ndots = 1;
        options.lookups = noFile.data();
        options.sock_state_cb = [](void* self, ares_socket_t socket, int isRead, int) {
            static_cast<Question*>(self)->watch(socket, isRead != 0);
        };
        options.sock_state_cb_data = this;
        const int given = ARES_OPT_FLAGS | ARES_OPT_TIMEOUTMS | ARES_OPT_TRIES | ARES_OPT_NDOTS
            | ARES_OPT_SERVERS | ARES_OPT_DOMAINS | ARES_OPT_LOOKUPS | ARES_OPT_SORTLIST
            | ARES_OPT_SOCK_STATE_CB;
        if (ares_init_options(&m_channel, &options, given) != ARES_SUCCESS) {
            m_channel = nullptr;
            return false;
        }
        if (ares_set_servers_csv(m_channel, server.constData()) == ARES_SUCCESS)
            return true;
        // Before 1.20 it knows no scope ("fe80::1%wlan0").
        const auto scope = server.indexOf('%');
        if (scope < 0)
            return false;
        ares_set_local_dev(m_channel, server.constData() + scope + 1);
        return ares_set_servers_csv(m_channel, server.first(scope).constData()) == ARES_SUCCESS;
    }

    /// c-ares opened a socket, or is about to close it.
    void watch(ares_socket_t socket, bool isOpen)
    {
        if (const auto known = m_notifiers.extract(socket)) {
            known.mapped()->setEnabled(false); // it may be what calls this
            known.mapped()->deleteLater();
        }
        if (!isOpen)
            return;
        auto* notifier = new QSocketNotifier(socket, QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this,
            [this, socket] { ares_process_fd(m_channel, socket, ARES_SOCKET_BAD); });
        m_notifiers.emplace(socket, notifier);
    }

    /// c-ares doubles the time of the second try, so the end is not left to it.
    void windTimer()
    {
        if (m_isOver)
            return;
        const auto end = m_startedAt + kTries * CaresNameServers::kTryLimit;
        const auto left
            = std::chrono::ceil<std::chrono::milliseconds>(end - m_clock.monotonicNow());
        if (left <= left.zero()) {
            ares_cancel(m_channel);
            return;
        }
        timeval due {};
        auto pause = left;
        if (ares_timeout(m_channel, nullptr, &due))
            pause = std::min(pause,
                std::chrono::ceil<std::chrono::milliseconds>(
                    std::chrono::seconds(due.tv_sec) + std::chrono::microseconds(due.tv_usec)));
        m_timer = m_clock.after(pause, [this] {
            ares_process_fd(m_channel, ARES_SOCKET_BAD, ARES_SOCKET_BAD);
            windTimer();
        });
    }

    /// Called by c-ares, which still works on the channel.
    void end(int status, const unsigned char* response, int length)
    {
        if (std::exchange(m_isOver, true))
            return;
        const std::chrono::duration<double, std::milli> time = m_clock.monotonicNow() - m_startedAt;
        NameAnswer answer {.milliseconds = time.count()};
        if (status == ARES_SUCCESS)
            status = readAddresses(response, length, answer.addresses);
        answer.kind = kindOf(status);
        const auto hand = [this, answer] {
            m_timer.reset();
            deleteLater();
            if (m_owner)
                m_deliver(answer);
        };
        QMetaObject::invokeMethod(this, hand, Qt::QueuedConnection);
    }

    base::Clock& m_clock;
    const QPointer<QObject> m_owner;
    const Deliver m_deliver;
    const std::chrono::steady_clock::time_point m_startedAt;
    ares_channel m_channel = nullptr;
    std::map<ares_socket_t, QSocketNotifier*> m_notifiers;
    std::unique_ptr<base::Timer> m_timer;
    bool m_isOver = false;
};

} // namespace

CaresNameServers::CaresNameServers(base::Clock& clock)
    : m_clock(clock)
{
    ares_library_init(ARES_LIB_INIT_ALL);
}

CaresNameServers::~CaresNameServers()
{
    qDeleteAll(m_questions.children());
    ares_library_cleanup();
}

void CaresNameServers::ask(const QString& server, const QString& name, QObject* owner,
    std::function<void(const NameAnswer&)> deliver)
{
    const bool isFull = m_questions.children().size() >= kMostQuestions;
    auto* question = new Question(m_clock, owner, std::move(deliver), &m_questions);
    if (isFull || addressesOfLiteral(server.toStdString(), 0).empty())
        question->refuse();
    else
        question->begin(server.toLatin1(), name.toLatin1());
}

} // namespace netvane::net
