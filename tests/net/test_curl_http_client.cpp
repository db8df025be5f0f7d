#include "net/curl_http_client.h"
#include "support/manual_clock.h"
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

Script::Then stop(const char* name)
{
    return qstrcmp(name, "drips") == 0 ? Script::Then::Drip : Script::Then::StayOpen;
}

} // namespace

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
    }

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
        ScriptedHttpServer server(ScriptedHttpServer::Transport::Tls);
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
        ScriptedHttpServer server(ScriptedHttpServer::Transport::Tls);
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
        ScriptedHttpServer server(ScriptedHttpServer::Transport::Tls);
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
        ScriptedHttpServer server(ScriptedHttpServer::Transport::Tls);
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
        ScriptedHttpServer server(ScriptedHttpServer::Transport::Tls);
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
        ScriptedHttpServer server(ScriptedHttpServer::Transport::Tls);
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

private:
    std::function<void(const HttpAnswer&)> keep()
    {
        return [this](const HttpAnswer& answer) { m_answers.push_back(answer); };
    }
    void get(const QUrl& url)
    {
        m_client->get({.url = url, .bodyLimit = kBodyLimit}, m_owner.get(), keep());
    }

    test::ManualClock m_clock;
    std::unique_ptr<net::CurlHttpClient> m_client;
    std::unique_ptr<QObject> m_owner; // goes before the client
    std::vector<HttpAnswer> m_answers;
};

NETVANE_TEST(TestCurlHttpClient)
#include "test_curl_http_client.moc"
