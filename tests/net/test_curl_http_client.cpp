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
        m_server = std::make_unique<ScriptedHttpServer>(ScriptedHttpServer::Transport::Tls);
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
        const QByteArray asking = "WWW-Authenticate: Basic realm=\"x\"\r\n";
        const QByteArray packed = httpResponse("200 OK", "Content-Encoding: gzip\r\n", "\x1f\x8b");
        const QByteArray longest(kBodyLimit, 'x');
        row("packed, left so", {packed}, 200, "\x1f\x8b");
        row("up to the limit", {httpResponse("200 OK", "", longest)}, 200, longest);
        row("without an end", {head + "\r\nx", Script::Then::Endless}, 200, longest);
        row("60 KiB of headers", {head + line.repeated(10'000) + "\r\nhello"}, 200, "hello");
        row("too many headers", {head + line.repeated(12'000) + "\r\nhello"}, 0, "");
        row("endless header", {head + "X: y", Script::Then::Endless}, 0, "");
        row("password", {httpResponse("401 No", asking, "no")}, 401, "");
        row("ten redirects", movedTo("/9"), 200, "end", "/end");
        row("eleven", movedTo("/10"), 302, "", "/1");
        row("to nobody", movedTo("https://127.0.0.1:1/"), 0, "", "");
        row("out of TLS", movedTo("http://127.0.0.1:1/"), 302, "");
        row("to a file", movedTo("file:///etc/hostname"), 302, "");
        row("broken off", {packed.chopped(1)}, 200, "");
        row("not HTTP", {"SSH-2.0-OpenSSH\r\n\r\n"}, 0, "");
    }
    void tellsWhatCameBack()
    {
        QFETCH(Script, script);
        QFETCH(QByteArray, finalPath);
        m_server->script("/", script);
        m_server->script("/end", {httpResponse("200 OK", "", "end")});
        for (int left = 1; left <= 10; ++left) {
            const QByteArray next = left == 1 ? "end" : QByteArray::number(left - 1);
            m_server->script("/" + QByteArray::number(left),
                {httpResponse("302 Found", "Location: /" + next + "\r\n", "")});
        }
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

    void endsAtTheTimeLimit_data()
    {
        QTest::addColumn<Script>("script");
        const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 9999999\r\n";
        QTest::newRow("is silent") << Script {"", Script::Then::StayOpen};
        QTest::newRow("stops in the head") << Script {head, Script::Then::StayOpen};
        QTest::newRow("stops in the body") << Script {head + "\r\nx", Script::Then::StayOpen};
        QTest::newRow("drips") << Script {head + "\r\nx", Script::Then::Drip};
    }
    void endsAtTheTimeLimit()
    {
        QFETCH(Script, script);
        m_server->script("/", script);
        get(m_server->url("/"));
        QTRY_COMPARE(m_server->requests().size(), 1);
        m_clock.advance(4999ms);
        if (script.then == Script::Then::Drip)
            QTRY_VERIFY(m_server->endlessBytes() > 20);
        QVERIFY(m_answers.empty());
        m_clock.advance(1ms);
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QVERIFY(m_answers.front().errorText);
        QVERIFY(!m_answers.front().body);
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    void waitsNoLongerForTheHandshakeEither()
    {
        ScriptedHttpServer server(ScriptedHttpServer::Transport::Clear); // never speaks TLS
        server.script("", {"", Script::Then::StayOpen});
        QUrl url = server.url("/");
        url.setScheme(u"https"_s);
        get(url);
        QTRY_COMPARE(server.connectionCount(), 1);
        m_clock.advance(5s);
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QVERIFY(!m_answers.front().status);
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
        const auto threads = [] { return QDir(u"/proc/self/task"_s).count(); };
        const auto threadsBefore = threads();
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
        // A thread of an earlier test may have been ending at the start.
        QTRY_VERIFY(threads() <= threadsBefore);
    }

    void readsNoFiles()
    {
        get(QUrl::fromLocalFile(QCoreApplication::applicationFilePath()));
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QVERIFY(!m_answers.front().body);
    }

    void downloads_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<qint64>("received");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* name, const Script& script, qint64 received,
                             const QString& error = {}) {
            QTest::newRow(name) << script << received << error;
        };
        const QByteArray body(1'000'000, 'x');
        row("whole", {httpResponse("200 OK", "", body)}, 1'000'000);
        row("up to the limit", {httpResponse("200 OK", "", body + body + body + body)},
            kAnswerLimit);
        row("one more", {httpResponse("200 OK", "", body + body + body + body + "x")},
            kAnswerLimit + 1, u"far more"_s);
        row("cut", {httpResponse("200 OK", "", body).chopped(1)}, 999'999, u"closed"_s);
        row("nothing", {}, 0, u" "_s);
        row("not found", {httpResponse("404 Not Found", "", body)}, 1'000'000);
    }
    void downloads()
    {
        QFETCH(Script, script);
        QFETCH(QString, error);
        m_server->script("/", script);
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

    void uploads_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("arrives");
        QTest::newRow("nothing to say") << httpResponse("200 OK", "", "") << true;
        QTest::newRow("refused") << httpResponse("500 No", "", "no") << true;
        QTest::newRow("no answer") << ""_ba << false;
    }
    void uploads()
    {
        QFETCH(QByteArray, answer);
        m_server->script("/", {answer});
        start({.url = m_server->url("/"), .uploadSize = 3'000'000});
        QTRY_COMPARE(m_outcomes.size(), size_t(1));
        QTEST(!m_outcomes.front().errorText.has_value(), "arrives");
        QVERIFY(m_server->uploadedBytes() >= 3'000'000);
        const QByteArray head = m_server->requests().front();
        QVERIFY(head.startsWith("POST / HTTP/1.1\r\n"));
        QVERIFY(head.contains("\r\nContent-Length: 3000000\r\n"));
        QVERIFY(head.contains("\r\nContent-Type: application/octet-stream\r\n"));
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
        for (int halfMinutes = 0; halfMinutes < 4; ++halfMinutes) {
            const auto before = m_server->endlessBytes();
            QTRY_VERIFY(m_server->endlessBytes() > before + 50);
            m_clock.advance(30s);
            QVERIFY(m_outcomes.empty());
        }
        m_transfer.reset();
        QTRY_COMPARE(m_server->openConnections(), 0);
        QVERIFY(m_outcomes.empty());
        QCOMPARE(m_clock.timerCount(), 0);
    }

    void mayEndBeforeItBegan()
    {
        {
            net::CurlHttpClient shortLived(m_clock, ScriptedHttpServer::authorityFile());
            const auto transfer = shortLived.start({.url = m_server->url("/")}, keepOutcome());
        }
        QCoreApplication::processEvents();
        QVERIFY(m_outcomes.empty());
        QCOMPARE(m_clock.timerCount(), 0);
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
