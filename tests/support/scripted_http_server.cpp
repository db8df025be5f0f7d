#include "scripted_http_server.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QtTest>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace netvane::test {
namespace {

constexpr qsizetype kChunk = 16 * 1024;

QByteArray pem()
{
    QFile file(ScriptedHttpServer::authorityFile());
    if (!file.open(QIODevice::ReadOnly))
        qFatal("tests/data/loopback.pem is not there");
    return file.readAll();
}

qsizetype announcedBody(const QByteArray& head)
{
    const QByteArray name = "\r\ncontent-length: "; // Qt 6.8 writes names in small letters
    const auto at = head.toLower().indexOf(name);
    return at < 0 ? 0 : head.mid(at + name.size()).split('\r').first().toLongLong();
}

} // namespace

ScriptedHttpServer::ScriptedHttpServer(Transport transport, const QHostAddress& address)
    : m_transport(transport)
{
    if (!listen(address))
        qFatal("no port on the loopback interface");
}

QString ScriptedHttpServer::authorityFile()
{
    return QFINDTESTDATA("../data/loopback.pem");
}

QUrl ScriptedHttpServer::url(const QByteArray& path) const
{
    const QString scheme = m_transport == Transport::Tls ? u"https"_s : u"http"_s;
    return QUrl(u"%1://%2:%3%4"_s.arg(scheme, serverAddress().toString(),
        QString::number(serverPort()), QString::fromLatin1(path)));
}

void ScriptedHttpServer::incomingConnection(qintptr descriptor)
{
    ++m_connectionCount;
    ++m_openConnections;
    auto* socket = new QSslSocket(this);
    socket->setSocketDescriptor(descriptor);
    connect(socket, &QTcpSocket::disconnected, this, [this] { --m_openConnections; });
    const auto received = std::make_shared<QByteArray>();
    connect(socket, &QTcpSocket::readyRead, this,
        [this, socket, received] { answer(*socket, *received); });
    if (m_transport == Transport::Clear)
        return;
    auto configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(pem()));
    configuration.setPrivateKey(QSslKey(pem(), QSsl::Ec));
    socket->setSslConfiguration(configuration);
    socket->startServerEncryption();
}

void ScriptedHttpServer::answer(QSslSocket& socket, QByteArray& received)
{
    received += socket.readAll();
    const auto headEnd = received.indexOf("\r\n\r\n") + 4;
    const QByteArray head = received.first(std::max<qsizetype>(headEnd, 4) - 4);
    const auto body = announcedBody(head);
    if (headEnd < 4 || received.size() < headEnd + body)
        return;
    m_uploadedBytes += body;
    m_requests.append(received.first(headEnd));
    received.clear();
    const Script script = m_scripts.value(m_requests.last().split(' ').value(1));
    socket.write(script.bytes);
    switch (script.then) {
    case Script::Then::Close:
        socket.disconnectFromHost();
        break;
    case Script::Then::StayOpen:
        break;
    case Script::Then::Endless:
        keepSending(socket, QByteArray(kChunk, script.bytes.back()));
        break;
    case Script::Then::Drip:
        keepSending(socket, script.bytes.last(1));
    }
}

void ScriptedHttpServer::keepSending(QSslSocket& socket, const QByteArray& bytes)
{
    auto* timer = new QTimer(&socket);
    connect(timer, &QTimer::timeout, this, [this, &socket, bytes] {
        const bool isFull = socket.bytesToWrite() + socket.encryptedBytesToWrite() > kChunk;
        if (isFull || socket.state() != QTcpSocket::ConnectedState)
            return;
        m_endlessBytes += bytes.size();
        socket.write(bytes);
    });
    timer->start(1);
}

QByteArray httpResponse(
    const QByteArray& statusLine, const QByteArray& headers, const QByteArray& body)
{
    return "HTTP/1.1 " + statusLine + "\r\nContent-Length: " + QByteArray::number(body.size())
        + "\r\n" + headers + "\r\n" + body;
}

} // namespace netvane::test
