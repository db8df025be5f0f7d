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

Script::Then stop(const char* name)
{
    return qstrcmp(name, "drips") == 0 ? Script::Then::Drip : Script::Then::StayOpen;
}

} // namespace

Q_DECLARE_METATYPE(Script)
Q_DECLARE_METATYPE(Script::Then)

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
        QTest::addColumn<QByteArray>("response");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("finalPath");
        const auto movedTo = [](const char* where) {
            return httpResponse("302 Found", QByteArray("Location: ") + where + "\r\n", "moved");
        };
        const QByteArray asking = "WWW-Authenticate: Basic realm=\"x\"\r\n";
        const QByteArray packed = httpResponse("200 OK", "Content-Encoding: gzip\r\n", "\x1f\x8b");
        QTest::newRow("packed, left so") << packed << 200 << "\x1f\x8b"_ba
                                         << "/"_ba;
        QTest::newRow("password") << httpResponse("401 No", asking, "no") << 401 << ""_ba
                                  << "/"_ba;
        QTest::newRow("ten redirects") << movedTo("/9") << 200 << "end"_ba
                                       << "/end"_ba;
        QTest::newRow("eleven") << movedTo("/10") << 302 << ""_ba
                                << "/1"_ba;
        QTest::newRow("to nobody") << movedTo("https://127.0.0.1:1/") << 0 << ""_ba
                                   << ""_ba;
        QTest::newRow("broken off") << packed.chopped(1) << 200 << ""_ba
                                    << "/"_ba;
        QTest::newRow("not HTTP") << "SSH-2.0-OpenSSH\r\n\r\n"_ba << 0 << ""_ba
                                  << "/"_ba;
    }
    void tellsWhatCameBack()
    {
        QFETCH(QByteArray, response);
        QFETCH(QByteArray, finalPath);
        ScriptedHttpServer& server = *m_server;
        server.script("/", {response});
        server.script("/end", {httpResponse("200 OK", "", "end")});
        for (int left = 1; left <= 10; ++left) {
            const QByteArray next = left == 1 ? "end" : QByteArray::number(left - 1);
            server.script("/" + QByteArray::number(left),
                {httpResponse("302 Found", "Location: /" + next + "\r\n", "")});
        }
        get(server.url("/"));
        QVERIFY(m_answers.empty());
        QTRY_COMPARE(m_answers.size(), size_t(1));
        const HttpAnswer& answer = m_answers.front();
        QTEST(answer.status.value_or(0), "status");
        QTEST(answer.body.value_or(QByteArray()), "body");
        QCOMPARE(answer.errorText.has_value(), !answer.body.has_value());
        QCOMPARE(answer.finalUrl,
            finalPath.isEmpty() ? QUrl(u"https://127.0.0.1:1/"_s) : server.url(finalPath));
    }

    void takesNoMoreThanTheLimit()
    {
        ScriptedHttpServer& server = *m_server;
        server.script("/", {"HTTP/1.1 200 OK\r\n\r\nx", Script::Then::Endless});
        get(server.url("/"));
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QVERIFY(m_answers.front().truncated);
        QCOMPARE(m_answers.front().body, QByteArray(kBodyLimit, 'x'));
        QVERIFY(!m_answers.front().errorText);
        QTRY_COMPARE(server.openConnections(), 0);

        server.script("/", {httpResponse("200 OK", "", QByteArray(kBodyLimit, 'x'))});
        get(server.url("/"));
        QTRY_COMPARE(m_answers.size(), size_t(2));
        QVERIFY(!m_answers.back().truncated);
        QCOMPARE(m_answers.back().body, m_answers.front().body);
    }

    void responseHeadersAreBounded_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<Script::Then>("then");
        QTest::addColumn<bool>("isAccepted");
        QTest::newRow("up to 60 KiB")
            << "X: y\r\n"_ba.repeated(10'000) << Script::Then::Close << true;
        QTest::newRow("many lines")
            << "X: y\r\n"_ba.repeated(12'000) << Script::Then::Close << false;
        QTest::newRow("endless line") << "X: y"_ba << Script::Then::Endless << false;
    }
    void responseHeadersAreBounded()
    {
        QFETCH(QByteArray, line);
        QFETCH(Script::Then, then);
        ScriptedHttpServer& server = *m_server;
        const QByteArray head = "HTTP/1.1 200 OK\r\n" + line;
        server.script("/", {then == Script::Then::Close ? head + "\r\nhello" : head, then});
        get(server.url("/"));
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QTEST(m_answers.front().body.has_value(), "isAccepted");
        QCOMPARE(m_answers.front().errorText.has_value(), !m_answers.front().body);
        QVERIFY(server.endlessBytes() < 4 * 1024 * 1024);
        QTRY_COMPARE(server.openConnections(), 0);
    }

    void endsAtTheTimeLimit_data()
    {
        QTest::addColumn<QByteArray>("response");
        QTest::newRow("is silent") << ""_ba;
        QTest::newRow("stops in the head") << "HTTP/1.1 200 OK\r\nX: y"_ba;
        QTest::newRow("stops in the body")
            << "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\nSuccess"_ba;
        QTest::newRow("drips") << "HTTP/1.1 200 OK\r\nContent-Length: 9999999\r\n\r\nx"_ba;
    }
    void endsAtTheTimeLimit()
    {
        QFETCH(QByteArray, response);
        ScriptedHttpServer& server = *m_server;
        server.script("/", {response, stop(QTest::currentDataTag())});
        get(server.url("/"));
        QTRY_COMPARE(server.requests().size(), 1);
        m_clock.advance(4999ms);
        if (stop(QTest::currentDataTag()) == Script::Then::Drip)
            QTRY_VERIFY(server.endlessBytes() > 20);
        QVERIFY(m_answers.empty());
        m_clock.advance(1ms);
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QVERIFY(m_answers.front().errorText);
        QVERIFY(!m_answers.front().body);
        QTRY_COMPARE(server.openConnections(), 0);
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
        ScriptedHttpServer& server = *m_server;
        server.script("/", {"HTTP/1.1 200 OK\r\n\r\nx", Script::Then::Drip});
        get(server.url("/"));
        QTRY_VERIFY(server.endlessBytes() > 0);
        m_owner.reset();
        QTRY_COMPARE(server.openConnections(), 0);
        QVERIFY(m_answers.empty());
        QCOMPARE(m_clock.timerCount(), 0);
    }

    void comesAsAStrangerEachTime()
    {
        const auto threads = [] { return QDir(u"/proc/self/task"_s).count(); };
        const auto threadsBefore = threads();
        ScriptedHttpServer& server = *m_server;
        const QByteArray marks
            = "Set-Cookie: who=you\r\nETag: \"1\"\r\nCache-Control: max-age=9\r\n";
        server.script("/", {httpResponse("302 Found", marks + "Location: /two\r\n", "")});
        server.script("/two", {httpResponse("200 OK", marks, "hello"), Script::Then::StayOpen});
        for (size_t count = 1; count <= 2; ++count) {
            get(server.url("/"));
            QTRY_COMPARE(m_answers.size(), count);
        }
        QCOMPARE(server.requests().size(), 4);
        QVERIFY(server.connectionCount() >= 4);
        QCOMPARE(server.requests()[2], server.requests()[0]);
        QCOMPARE(server.requests()[3], server.requests()[1]);
        QVERIFY(server.requests()[0].contains("\r\nAccept-Encoding: identity\r\n"));
        QVERIFY(!server.requests()[1].contains("Cookie"));
        // Each transfer had one of its own. One of an earlier test may have been ending at the
        // start.
        QTRY_VERIFY(threads() <= threadsBefore);
    }

    void readsNoFiles()
    {
        get(QUrl::fromLocalFile(QCoreApplication::applicationFilePath()));
        QTRY_COMPARE(m_answers.size(), size_t(1));
        QVERIFY(!m_answers.front().body);
        QVERIFY(m_answers.front().errorText);
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
        const QByteArray login = "WWW-Authenticate: Basic realm=\"x\"\r\n";
        row("whole", {httpResponse("200 OK", "", body)}, 1'000'000);
        row("up to the limit", {httpResponse("200 OK", "", body + body + body + body)},
            kAnswerLimit);
        row("one more", {httpResponse("200 OK", "", body + body + body + body + "x")},
            kAnswerLimit + 1, u"far more"_s);
        row("without an end", {"HTTP/1.1 200 OK\r\n\r\nx", Script::Then::Endless}, -1,
            u"far more"_s);
        row("cut", {httpResponse("200 OK", "", body).chopped(1)}, -1, u"closed"_s);
        row("not found, and cut", {httpResponse("404 No", "", body).chopped(1)}, -1, u"closed"_s);
        row("nothing", {}, 0, u" "_s);
        row("not HTTP", {"SSH-2.0-OpenSSH\r\n\r\n"}, -1, u" "_s);
        row("log in", {httpResponse("401 Unauthorized", login, body)}, 1'000'000);
        row("not found", {httpResponse("404 Not Found", "", body)}, 1'000'000);
        row("elsewhere", {httpResponse("302 Found", "Location: /end\r\n", "moved")}, 3);
        row("out of TLS", {httpResponse("302 Found", "Location: http://127.0.0.1:1/\r\n", "moved")},
            -1, u" "_s);
        row("to a file", {httpResponse("302 Found", "Location: file:///etc/hostname\r\n", "moved")},
            -1, u" "_s);
    }
    void downloads()
    {
        QFETCH(Script, script);
        QFETCH(qint64, received);
        QFETCH(QString, error);
        m_server->script("/", script);
        m_server->script("/end", {httpResponse("200 OK", "", "end")});
        start({.url = m_server->url("/")});
        QTRY_COMPARE(m_outcomes.size(), size_t(1));
        const TransferOutcome& outcome = m_outcomes.front();
        if (received >= 0)
            QCOMPARE(outcome.receivedBytes, received);
        QCOMPARE(outcome.errorText.has_value(), !error.isEmpty());
        const QString errorText = outcome.errorText.value_or(QString());
        QVERIFY2(errorText.contains(error), qPrintable(errorText));
        QVERIFY(outcome.receivedBytes < 2 * kAnswerLimit);
        QCOMPARE(outcome.endedAt, m_clock.monotonicNow());
        QTRY_COMPARE(m_server->openConnections(), 0);
        QVERIFY(m_server->requests().first().contains("\r\nAccept-Encoding: identity\r\n"));
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
            const platform::TransferRequest request {
                .url = m_server->url("/"), .uploadSize = 5'000'000, .answerLimit = kAnswerLimit};
            const auto transfer = shortLived.start(request, keepOutcome());
        }
        QCoreApplication::processEvents();
        QVERIFY(m_outcomes.empty());
        QCOMPARE(m_clock.timerCount(), 0);
    }

private:
    std::function<void(const HttpAnswer&)> keep()
    {
        return [this](const HttpAnswer& answer) { m_answers.push_back(answer); };
    }
    void get(const QUrl& url)
    {
        m_client->get({.url = url, .bodyLimit = kBodyLimit}, m_owner.get(), keep());
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
