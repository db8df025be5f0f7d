#pragma once

#include <QHash>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QUrl>

class QSslSocket;

namespace netvane::test {

/// What the server sends after a whole request, and what it does then.
struct Script {
    enum class Then {
        Close,
        StayOpen, ///< sends nothing more
        Endless, ///< repeats the last byte as fast as it is taken
        Drip, ///< repeats the last byte once a millisecond
    };
    QByteArray bytes;
    Then then = Then::Close;
};

/// A TLS server on the loopback interface with the certificate of tests/data/loopback.pem. It sends
/// scripted answers. Runs on the test's thread.
class ScriptedHttpServer : public QTcpServer {
public:
    ScriptedHttpServer();

    /// A PEM file with the server's certificate.
    static QString authorityFile();

    void script(const QByteArray& path, const Script& script) { m_scripts.insert(path, script); }
    QUrl url(const QByteArray& path) const;

    /// The headers of the complete requests.
    const QByteArrayList& requests() const { return m_requests; }
    /// The bytes of endless answers that were sent after their scripts.
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
