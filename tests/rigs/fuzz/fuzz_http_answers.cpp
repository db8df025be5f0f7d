// What a server, or anyone in its place, may answer to a request: any bytes, over a real
// connection, because libcurl reads them first. All requests go to this process as to a proxy, so
// that no redirect leads elsewhere.
#include "base/system_clock.h"
#include "base/visible_text.h"
#include "fuzz_target.h"
#include "net/web/http_exchange.h"

#include <QCoreApplication>

#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <mutex>
#include <thread>
#include <vector>

namespace netvane::fuzz {
namespace {

/// Gives each connection the next answer, the last one again and again, and closes it.
class Server {
public:
    Server()
    {
        sockaddr_in name {.sin_family = AF_INET,
            .sin_port = 0,
            .sin_addr = {htonl(INADDR_LOOPBACK)},
            .sin_zero = {}};
        socklen_t length = sizeof name;
        auto* address = reinterpret_cast<sockaddr*>(&name);
        require(::bind(m_socket.get(), address, length) == 0 && ::listen(m_socket.get(), 64) == 0
                && ::getsockname(m_socket.get(), address, &length) == 0,
            "there is a server");
        proxy = "http://127.0.0.1:" + QByteArray::number(ntohs(name.sin_port));
        std::thread([this] { serve(); }).detach();
    }

    QByteArray proxy;
    void setAnswers(std::vector<QByteArray> answers)
    {
        const std::lock_guard lock(m_mutex);
        m_answers = std::move(answers);
        m_next = 0;
    }

private:
    QByteArray nextAnswer()
    {
        const std::lock_guard lock(m_mutex);
        return m_answers[std::min(m_next++, m_answers.size() - 1)];
    }
    void serve()
    {
        for (;;) {
            const base::FileDescriptor peer(::accept(m_socket.get(), nullptr, nullptr));
            std::array<char, 4096> request {};
            (void)::recv(peer.get(), request.data(), request.size(), 0);
            const QByteArray answer = nextAnswer();
            (void)::send(peer.get(), answer.constData(), size_t(answer.size()), MSG_NOSIGNAL);
            (void)::shutdown(peer.get(), SHUT_WR);
            while (::recv(peer.get(), request.data(), request.size(), 0) > 0) { }
        }
    }

    std::mutex m_mutex;
    std::vector<QByteArray> m_answers {{}};
    size_t m_next = 0;
    const base::FileDescriptor m_socket {::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

} // namespace

void tryInput(FuzzedDataProvider& input)
{
    static int count = 1;
    static char name[] = "fuzz_http_answers";
    static char* arguments[] = {name, nullptr};
    [[maybe_unused]] static auto* application = new QCoreApplication(count, arguments);
    static auto* clock = new base::SystemClock;
    static auto* server = new Server; // stays to the end, as do the others

    const auto exchange = std::make_shared<net::HttpExchange>();
    exchange->request.url = QUrl(QStringLiteral("http://netvane.example/"));
    if (input.ConsumeBool())
        exchange->request.url.setScheme(QStringLiteral("https"));
    exchange->request.bodyLimit = input.ConsumeIntegral<std::uint8_t>();
    exchange->request.keepsBody = input.ConsumeBool();
    exchange->proxy = server->proxy;
    std::vector<QByteArray> answers;
    do
        answers.push_back(takeBytes(input, 1024));
    while (input.remaining_bytes() > 0 && answers.size() < 12);
    server->setAnswers(std::move(answers));

    net::runExchange(*exchange, *clock);
    const auto& request = exchange->request;
    require(exchange->body.size() <= request.bodyLimit, "a body is bounded");
    require(!exchange->status || *exchange->status > 0, "a status is a number");
    require(exchange->status || exchange->errorText, "no answer has a reason");
    require(request.url.scheme() == QStringLiteral("http")
            || request.url.scheme() == QStringLiteral("https"),
        "it stays on the web");
    if (exchange->errorText)
        requireLine(base::withVisibleControls(*exchange->errorText));
}

} // namespace netvane::fuzz
