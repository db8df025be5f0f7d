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

/// The length that the request has by its head.
qsizetype announcedSize(const QByteArray& received)
{
    const auto headEnd = received.indexOf("\r\n\r\n") + 4;
    const auto head = received.first(headEnd).toLower(); // Qt 6.8 writes names in small letters
    const QByteArray name = "\r\ncontent-length: ";
    const auto at = head.indexOf(name);
    return headEnd + (at < 0 ? 0 : head.mid(at + name.size()).split('\r').first().toLongLong());
}

} // namespace

ScriptedHttpServer::ScriptedHttpServer()
{
    if (!listen(QHostAddress::LocalHost))
        qFatal("no port on the loopback interface");
}

QString ScriptedHttpServer::authorityFile()
{
    return QFINDTESTDATA("../data/loopback.pem");
}

QUrl ScriptedHttpServer::url(const QByteArray& path) const
{
    return QUrl(
        u"https://127.0.0.1:%1%2"_s.arg(QString::number(serverPort()), QString::fromLatin1(path)));
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
    auto configuration = QSslConfiguration::defaultConfiguration();
    QFile pem(authorityFile());
    if (!pem.open(QIODevice::ReadOnly))
        qFatal("tests/data/loopback.pem is not there");
    const QByteArray bytes = pem.readAll();
    configuration.setLocalCertificate(QSslCertificate(bytes));
    configuration.setPrivateKey(QSslKey(bytes, QSsl::Ec));
    socket->setSslConfiguration(configuration);
    socket->startServerEncryption();
}

void ScriptedHttpServer::answer(QSslSocket& socket, QByteArray& received)
{
    received += socket.readAll();
    const auto headEnd = received.indexOf("\r\n\r\n");
    if (headEnd < 0 || received.size() < announcedSize(received))
        return;
    m_requests.append(received.first(headEnd + 4));
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
