#include "net/curl_http_client.h"
#include "support/manual_clock.h"
#include "support/scripted_http_server.h"
#include "support/test_main.h"

#include <QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;
using platform::TransferOutcome;
using test::httpResponse;
using test::Script;
using test::ScriptedHttpServer;

namespace {

constexpr qint64 kAnswerLimit = 4'000'000;

} // namespace

Q_DECLARE_METATYPE(Script)

class TestCurlHttpTransfers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<ScriptedHttpServer>(ScriptedHttpServer::Transport::Tls);
        m_outcomes.clear();
    }
    void cleanup() { m_transfer.reset(); }

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
        const QByteArray packed = "Content-Encoding: gzip\r\n";
        const QByteArray login = "WWW-Authenticate: Basic realm=\"x\"\r\n";
        row("whole", {httpResponse("200 OK", "", body)}, 1'000'000);
        row("empty", {httpResponse("204 No Content", "", "")}, 0);
        row("packed, left so", {httpResponse("200 OK", packed, "\x1f\x8b")}, 2);
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
        row("bad request", {httpResponse("400 Bad Request", "", body)}, 1'000'000);
        row("log in", {httpResponse("401 Unauthorized", login, body)}, 1'000'000);
        row("not found", {httpResponse("404 Not Found", "", body)}, 1'000'000);
        row("too many", {httpResponse("429 Too Many Requests", "", body)}, 1'000'000);
        row("unavailable", {httpResponse("503 Service Unavailable", "", body)}, 1'000'000);
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

    void strangersAreNotBelieved()
    {
        net::CurlHttpClient withSystemsAuthorities(m_clock);
        const auto transfer = withSystemsAuthorities.start(
            {.url = m_server->url("/"), .answerLimit = kAnswerLimit}, keep());
        QTRY_COMPARE(m_outcomes.size(), size_t(1));
        QVERIFY(m_outcomes.front().errorText);
        QVERIFY(m_server->requests().isEmpty());
    }

    void readsNoFiles()
    {
        start({.url = QUrl::fromLocalFile(QCoreApplication::applicationFilePath())});
        QVERIFY(m_outcomes.empty());
        QTRY_COMPARE(m_outcomes.size(), size_t(1));
        QVERIFY(m_outcomes.front().errorText);
        QCOMPARE(m_outcomes.front().receivedBytes, 0);
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
            const auto transfer = shortLived.start(request, keep());
        }
        QCoreApplication::processEvents();
        QVERIFY(m_outcomes.empty());
        QCOMPARE(m_clock.timerCount(), 0);
    }

private:
    std::function<void(const TransferOutcome&)> keep()
    {
        return [this](const TransferOutcome& outcome) {
            m_outcomes.push_back(outcome);
            m_transfer.reset(); // as owners do
        };
    }
    void start(platform::TransferRequest request)
    {
        request.answerLimit = kAnswerLimit;
        m_transfer = m_transfers.start(request, keep());
    }

    test::ManualClock m_clock;
    net::CurlHttpClient m_transfers {m_clock, ScriptedHttpServer::authorityFile()};
    std::unique_ptr<ScriptedHttpServer> m_server;
    std::unique_ptr<platform::HttpTransfer> m_transfer;
    std::vector<TransferOutcome> m_outcomes;
};

NETVANE_TEST(TestCurlHttpTransfers)
#include "test_curl_http_transfers.moc"
