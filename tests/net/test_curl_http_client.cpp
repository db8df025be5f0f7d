#include "net/curl_http_client.h"
#include "simulated/manual_clock.h"
#include "support/scripted_http_server.h"
#include "support/test_main.h"

#include <QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;
using platform::HttpAnswer;
using platform::TransferOutcome;
using test::httpResponse;
using test::Script;
using test::ScriptedHttpServer;

namespace {

constexpr qint64 kBodyLimit = 64 * 1024;
constexpr qint64 kAnswerLimit = 4'000'000;

} // namespace

Q_DECLARE_METATYPE(Script)

class TestCurlHttpClient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_client
            = std::make_unique<net::CurlHttpClient>(m_clock, ScriptedHttpServer::authorityFile());
        m_owner = std::make_unique<QObject>();
        m_answers.clear();
        m_server = std::make_unique<ScriptedHttpServer>();
        m_outcomes.clear();
    }
    void cleanup() { m_transfer.reset(); }

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
        const QByteArray head = "HTTP/1.1 200 OK\r\n", line = "X: y\r\n";
        const QByteArray longest(kBodyLimit, 'x');
        row("without an end", {head + "\r\nx", Script::Then::Endless}, 200, longest);
        row("60 KiB of headers", {head + line.repeated(10'000) + "\r\nhello"}, 200, "hello");
        row("too many headers", {head + line.repeated(12'000) + "\r\nhello"}, 0, "");
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

    /// Of a server that says nothing and of one that goes on for ever.
    void endsAtTheTimeLimit()
    {
        for (const auto then : {Script::Then::StayOpen, Script::Then::Drip}) {
            init();
            m_server->script("/", {"HTTP/1.1 200 OK\r\n\r\nx", then});
            get(m_server->url("/"));
            QTRY_COMPARE(m_server->requests().size(), 1);
            m_clock.advance(4999ms);
            if (then == Script::Then::Drip)
                QTRY_VERIFY(m_server->endlessBytes() > 20);
            QVERIFY(m_answers.empty());
            m_clock.advance(1ms);
            QTRY_COMPARE(m_answers.size(), size_t(1));
            QVERIFY(m_answers.front().errorText && !m_answers.front().body);
            QTRY_COMPARE(m_server->openConnections(), 0);
        }
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
        QTest::newRow("cut") << whole.chopped(1) << kAnswerLimit - 1 << u"closed"_s;
    }
    void downloads()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        m_server->script("/", {bytes});
        start({.url = m_server->url("/")});
        QTRY_COMPARE(m_outcomes.size(), size_t(1));
        const TransferOutcome& outcome = m_outcomes.front();
        QTEST(outcome.receivedBytes, "received");
        QCOMPARE(outcome.errorText.has_value(), !error.isEmpty());
        const QString errorText = outcome.errorText.value_or(QString());
        QVERIFY2(errorText.contains(error), qPrintable(errorText));
        QCOMPARE(outcome.endedAt, m_clock.monotonicNow());
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    void endsAfterAMinuteOfSilence()
    {
        m_server->script("/", {"", Script::Then::StayOpen});
        start({.url = m_server->url("/")});
        QTRY_COMPARE(m_server->requests().size(), 1);
        m_clock.advance(59'999ms);
        QVERIFY(m_outcomes.empty());
        m_clock.advance(1ms);
        QTRY_COMPARE(m_outcomes.size(), size_t(1));
        QVERIFY(m_outcomes.front().errorText);
        QTRY_COMPARE(m_server->openConnections(), 0);
        QCOMPARE(m_clock.timerCount(), 0);
    }

    void waitsWhileSomethingComes()
    {
        m_server->script("/", {"HTTP/1.1 200 OK\r\n\r\nx", Script::Then::Drip});
        start({.url = m_server->url("/")});
        for (int halfMinutes = 0; halfMinutes < 3; ++halfMinutes) {
            const auto before = m_server->endlessBytes();
            QTRY_VERIFY(m_server->endlessBytes() > before + 20);
            m_clock.advance(30s);
            QVERIFY(m_outcomes.empty());
        }
        m_transfer.reset();
        QTRY_COMPARE(m_server->openConnections(), 0);
        QVERIFY(m_outcomes.empty());
        QCOMPARE(m_clock.timerCount(), 0);
    }

    void uploads()
    {
        m_server->script("/", {httpResponse("500 No", "", "no")});
        start({.url = m_server->url("/"), .uploadSize = 3'000'000});
        QTRY_COMPARE(m_outcomes.size(), size_t(1));
        QVERIFY(!m_outcomes.front().errorText);
        QVERIFY(m_server->requests().front().contains("\r\nContent-Length: 3000000\r\n"));
    }

private:
    void get(const QUrl& url)
    {
        m_client->get({.url = url, .bodyLimit = kBodyLimit}, m_owner.get(),
            [this](const HttpAnswer& answer) { m_answers.push_back(answer); });
    }

    std::function<void(const TransferOutcome&)> keepOutcome()
    {
        return [this](const TransferOutcome& outcome) {
            m_outcomes.push_back(outcome);
            m_transfer.reset(); // as owners do
        };
    }
    void start(platform::TransferRequest request)
    {
        request.answerLimit = kAnswerLimit;
        m_transfer = m_client->start(request, keepOutcome());
    }

    simulated::ManualClock m_clock;
    std::unique_ptr<net::CurlHttpClient> m_client;
    std::unique_ptr<ScriptedHttpServer> m_server;
    std::unique_ptr<platform::HttpTransfer> m_transfer;
    std::vector<TransferOutcome> m_outcomes;
    std::unique_ptr<QObject> m_owner; // goes before the client
    std::vector<HttpAnswer> m_answers;
};

NETVANE_TEST(TestCurlHttpClient)
#include "test_curl_http_client.moc"
