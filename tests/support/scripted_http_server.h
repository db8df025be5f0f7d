#pragma once

#include <QHash>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QUrl>

class QSslSocket;

namespace netvane::test {

/// What the server sends once it has seen a request, its body included, and how.
struct Script {
    enum class Then {
        Close,
        StayOpen, ///< says no more
        Endless, ///< repeats the last byte as fast as it is taken
        Drip, ///< repeats the last byte once a millisecond
    };
    QByteArray bytes;
    Then then = Then::Close;
};

/// A server on the loopback interface that does what the tests tell it over TLS with the
/// certificate of tests/data/loopback.pem. Runs on the test's own thread.
class ScriptedHttpServer : public QTcpServer {
public:
    ScriptedHttpServer();

    /// A PEM file with the server's certificate.
    static QString authorityFile();

    void script(const QByteArray& path, const Script& script) { m_scripts.insert(path, script); }
    QUrl url(const QByteArray& path) const;

    /// The heads of the requests whose bodies have come, too.
    const QByteArrayList& requests() const { return m_requests; }
    /// What was sent of the answers that do not end, beyond their scripts.
    qint64 endlessBytes() const { return m_endlessBytes; }
    int connectionCount() const { return m_connectionCount; }
    int openConnections() const { return m_openConnections; }

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void answer(QSslSocket& socket, QByteArray& received);
    void keepSending(QSslSocket& socket, const QByteArray& bytes);

    QHash<QByteArray, Script> m_scripts;
    QByteArrayList m_requests;
    qint64 m_endlessBytes = 0;
    int m_connectionCount = 0;
    int m_openConnections = 0;
};

/// A whole response with its length.
QByteArray httpResponse(
    const QByteArray& statusLine, const QByteArray& headers, const QByteArray& body);

} // namespace netvane::test
