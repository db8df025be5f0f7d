#include "net/web/curl_http_client.h"
#include "simulated/manual_clock.h"
#include "support/scripted_http_server.h"
#include "support/test_main.h"

#include <QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;
using platform::HttpAnswer;
using test::httpResponse;
using test::Script;
using test::ScriptedHttpServer;

namespace {

constexpr qint64 kBodyLimit = 64 * 1024;
constexpr qint64 kAnswerLimit = 4'000'000;

/// Leads to any port of this machine, or refuses to.
class Proxy : public QTcpServer {
public:
    Proxy()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            auto* near = nextPendingConnection();
            auto* far = new QTcpSocket(near);
            connect(far, &QTcpSocket::readyRead, near, [=] { near->write(far->readAll()); });
            connect(near, &QTcpSocket::readyRead, far, [=, this] {
                const QByteArray bytes = near->readAll();
                if (far->isOpen()) {
                    far->write(bytes);
                    return;
                }
                const auto port = bytes.split(' ').value(1).split(':').value(1).toUShort();
                if (refusal.isEmpty())
                    far->connectToHost(QHostAddress::LocalHost, port);
                near->write(refusal.isEmpty() ? "HTTP/1.1 200 OK\r\nX: y\r\n\r\n" : refusal);
            });
        });
    }
    QByteArray address() const { return "127.0.0.1:" + QByteArray::number(serverPort()); }

    QByteArray refusal;
};

} // namespace

Q_DECLARE_METATYPE(Script)

class TestCurlHttpClient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        for (const char* name :
            {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"})
            qunsetenv(name);
        make();
        m_owner = std::make_unique<QObject>();
        m_answers.clear();
        m_server = std::make_unique<ScriptedHttpServer>();
    }

    void tellsWhatCameBack_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("finalPath");
        const auto row = [](const char* name, const Script& script, int status,
                             const QByteArray& body, const QByteArray& finalPath = "/") {
            QTest::newRow(name) << script << status << body << finalPath;
        };
        const auto movedTo = [](const QByteArray& where) {
            return Script {httpResponse("302 Found", "Location: " + where + "\r\n", "moved")};
        };
        const QByteArray head = "HTTP/1.1 200 OK\r\n", line = "X: " + QByteArray(55, 'y') + "\r\n";
        const QByteArray longest(kBodyLimit, 'x');
        row("without an end", {head + "\r\nx", Script::Then::Endless}, 200, longest);
        row("60 KiB of headers", {head + line.repeated(1'000) + "\r\nhello"}, 200, "hello");
        row("too many headers", {head + line.repeated(1'200) + "\r\nhello"}, 0, "");
        row("ends in its headers", {head + line}, 0, "");
        row("endless header", {head + "X: y", Script::Then::Endless}, 0, "");
        row("to another page", movedTo("/end"), 200, "end", "/end");
        row("in a circle", movedTo("/"), 302, "");
        row("to nobody", movedTo("https://127.0.0.1:1/"), 0, "", "");
        row("out of TLS", movedTo("http://127.0.0.1:1/"), 302, "");
        row("to a file", movedTo("file:///etc/hostname"), 302, "");
        row("broken off", {httpResponse("200 OK", "", "hello").chopped(1)}, 200, "");
        row("not HTTP", {"SSH-2.0-OpenSSH\r\n\r\n"}, 0, "");
    }
    void tellsWhatCameBack()
    {
        QFETCH(Script, script);
        QFETCH(QByteArray, finalPath);
        m_server->script("/", script);
        m_server->script("/end", {httpResponse("200 OK", "", "end")});
        get(m_server->url("/"));
        QVERIFY(m_answers.empty());
        QTRY_COMPARE(m_answers.size(), size_t(1));
        const HttpAnswer& answer = m_answers.front();
        QTEST(answer.status.value_or(0), "status");
        QTEST(answer.body.value_or(QByteArray()), "body");
        QCOMPARE(answer.errorText.has_value(), !answer.body.has_value());
        QCOMPARE(answer.truncated, answer.body && script.then == Script::Then::Endless);
        QCOMPARE(answer.finalUrl,
            finalPath.isEmpty() ? QUrl(u"https://127.0.0.1:1/"_s) : m_server->url(finalPath));
        QVERIFY(m_server->endlessBytes() < 4 * 1024 * 1024);
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    /// Of a server that accepts and says nothing in the handshake of TLS.
    void endsAfterSilence()
    {
        QTcpServer mute;
        QVERIFY(mute.listen(QHostAddress::LocalHost));
        const QUrl url(u"https://127.0.0.1:%1/"_s.arg(mute.serverPort()));
        for (const auto limit : {5000ms, 60'000ms}) {
            m_answers.clear();
            limit == 5000ms ? get(url) : start({.url = url});
            QTRY_VERIFY(mute.hasPendingConnections());
            auto* peer = mute.nextPendingConnection();
            QTRY_VERIFY(peer->bytesAvailable() > 0);
            m_clock.advance(limit - 1ms);
            QCOMPARE(m_clock.timerCount(), 1);
            m_clock.advance(1ms);
            QTRY_COMPARE(m_answers.size(), size_t(1));
            QVERIFY(m_answers.front().errorText && !m_answers.front().status);
            QCOMPARE(m_answers.front().failure, std::optional(platform::HttpFailure::Silent));
            QTRY_COMPARE(peer->state(), QTcpSocket::UnconnectedState);
            QCOMPARE(m_clock.timerCount(), 0);
        }
    }

    /// A transfer that goes on waits for ever, a page for fifteen seconds in all.
    void slowIsNotSilent()
    {
        m_server->script("/", {"HTTP/1.1 200 OK\r\n\r\nx", Script::Then::Drip});
        for (const auto step : {30s, 2s}) {
            m_owner = std::make_unique<QObject>();
            step == 30s ? start({.url = m_server->url("/")}) : get(m_server->url("/"));
            for (int steps = 0; steps < 7; ++steps) {
                const auto before = m_server->endlessBytes();
                QTRY_VERIFY(m_server->endlessBytes() > before + 20);
                m_clock.advance(step);
                QCOMPARE(m_clock.timerCount(), 1);
            }
        }
        m_clock.advance(999ms);
        QCOMPARE(m_clock.timerCount(), 1);
        m_clock.advance(1ms);
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QVERIFY(m_answers.front().errorText && !m_answers.front().body);
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    /// As that of a network's login page may be.
    void unknownCertificate()
    {
        m_client = std::make_unique<net::CurlHttpClient>(m_clock); // with the system's authorities
        get(m_server->url("/"));
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QVERIFY(m_answers.front().errorText && !m_answers.front().status);
    }

    void endsWithItsOwner()
    {
        m_server->script("/", {"HTTP/1.1 200 OK\r\n\r\nx", Script::Then::Drip});
        get(m_server->url("/"));
        QTRY_VERIFY(m_server->endlessBytes() > 0);
        m_owner.reset();
        QTRY_COMPARE(m_server->openConnections(), 0);
        QVERIFY(m_answers.empty());
        QCOMPARE(m_clock.timerCount(), 0);
    }

    void keepsNothingBetweenRequests()
    {
        const QByteArray marks
            = "Set-Cookie: who=you\r\nETag: \"1\"\r\nCache-Control: max-age=9\r\n";
        m_server->script("/", {httpResponse("302 Found", marks + "Location: /two\r\n", "")});
        m_server->script("/two", {httpResponse("200 OK", marks, "hello"), Script::Then::StayOpen});
        for (size_t count = 1; count <= 2; ++count) {
            get(m_server->url("/"));
            QTRY_COMPARE(m_answers.size(), count);
        }
        QCOMPARE(m_server->requests().size(), 4);
        QVERIFY(m_server->connectionCount() >= 4);
        QCOMPARE(m_server->requests()[2], m_server->requests()[0]);
        QCOMPARE(m_server->requests()[3], m_server->requests()[1]);
        QVERIFY(m_server->requests()[0].contains("\r\nAccept-Encoding: identity\r\n"));
        QVERIFY(!m_server->requests()[1].contains("Cookie"));
    }

    void downloads_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<qint64>("received");
        QTest::addColumn<QString>("error");
        const QByteArray body(kAnswerLimit, 'x');
        const auto whole = httpResponse("200 OK", "", body);
        QTest::newRow("whole") << whole << kAnswerLimit << QString();
        QTest::newRow("one more") << httpResponse("200 OK", "", body + "x") << kAnswerLimit + 1
                                  << u"far more"_s;
        QTest::newRow("cut") << whole.chopped(1) << kAnswerLimit - 1 << u"1 bytes"_s;
        QTest::newRow("refused") << httpResponse("429 No", "", "no") << qint64(2) << u"429"_s;
    }
    void downloads()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        m_server->script("/", {bytes});
        start({.url = m_server->url("/")});
        QTRY_COMPARE(m_answers.size(), size_t(1));
        const HttpAnswer& answer = m_answers.front();
        QTEST(answer.receivedBytes, "received");
        QCOMPARE(answer.errorText.has_value(), !error.isEmpty());
        const QString errorText = answer.errorText.value_or(QString());
        QVERIFY2(errorText.contains(error), qPrintable(errorText));
        QCOMPARE(answer.endedAt, m_clock.monotonicNow());
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    /// Also when it turns out to be closed.
    void uploadsOnTheConnectionThatIsThere()
    {
        for (const auto then : {Script::Then::StayOpen, Script::Then::Close}) {
            init();
            m_server->script("/", {httpResponse("200 OK", "", "x"), then});
            int notices = 0;
            start({.url = m_server->url("/"),
                .keepsConnection = true,
                .notice = [&] { ++notices; },
                .noticeBytes = 1});
            QTRY_COMPARE(m_answers.size(), size_t(1));
            QCOMPARE(notices, 1);
            start({.url = m_server->url("/"), .uploadSize = 3'000'000});
            QTRY_COMPARE(m_answers.size(), size_t(2));
            QVERIFY(!m_answers.back().errorText);
            QCOMPARE(m_server->connectionCount(), then == Script::Then::Close ? 2 : 1);
            QVERIFY(m_server->requests().back().contains("\r\nContent-Length: 3000000\r\n"));
            QTRY_COMPARE(m_server->openConnections(), 0);
        }
    }

    /// The desktop is asked for it, again when nobody answers and after five minutes.
    void proxy()
    {
        Proxy proxy;
        QByteArray address = "http://me:secret@" + proxy.address();
        int asked = 0;
        make([&](const QUrl&, QObject*, const auto& take) {
            ++asked;
            take(address);
        });
        m_server->script("/", {httpResponse("200 OK", "", "hello")});
        const auto fetch = [&](int status, int askedByThen) {
            m_answers.clear();
            get(m_server->url("/"));
            QTRY_COMPARE(m_answers.size(), size_t(1));
            QCOMPARE(m_answers.front().status.value_or(0), status);
            QCOMPARE(m_answers.front().body.has_value(), status == 200);
            QVERIFY(!m_answers.front().errorText.value_or(QString()).contains(u"secret"));
            QCOMPARE(asked, askedByThen);
        };
        fetch(200, 1);
        proxy.refusal = "HTTP/1.1 407 Who are you\r\nContent-Length: 0\r\n\r\n";
        fetch(407, 1);
        m_clock.advance(5min);
        address.replace("http:", "odd:");
        fetch(0, 2);
        address.clear();
        fetch(200, 3);
        qputenv("https_proxy", proxy.address());
        fetch(407, 3);
    }

private:
    void make(const net::ProxyLookup& lookUpProxy = {})
    {
        m_client = std::make_unique<net::CurlHttpClient>(
            m_clock, lookUpProxy, ScriptedHttpServer::authorityFile());
    }
    void get(const QUrl& url) { send({.url = url, .bodyLimit = kBodyLimit, .timeLimit = 15s}); }
    void start(platform::HttpRequest request)
    {
        request.bodyLimit = kAnswerLimit;
        request.keepsBody = false;
        request.silenceLimit = 60s;
        send(request);
    }
    void send(const platform::HttpRequest& request)
    {
        m_client->send(request, m_owner.get(),
            [this](const HttpAnswer& answer) { m_answers.push_back(answer); });
    }

    simulated::ManualClock m_clock;
    std::unique_ptr<net::CurlHttpClient> m_client;
    std::unique_ptr<ScriptedHttpServer> m_server;
    std::unique_ptr<QObject> m_owner; // goes before the client
    std::vector<HttpAnswer> m_answers;
};

NETVANE_TEST(TestCurlHttpClient)
#include "test_curl_http_client.moc"
