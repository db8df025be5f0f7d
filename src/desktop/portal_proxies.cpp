#include "desktop/portal_proxies.h"

#include "bus/bus_answer.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

constexpr int kLimitMs = 3000; // a set-up script that has to be fetched may take as long
constexpr qsizetype kLongestAddress = 2048;

} // namespace

void PortalProxies::lookUp(
    const QUrl& url, QObject* owner, const std::function<void(const QByteArray&)>& take) const
{
    if (m_bus.state() == bus::BusLink::State::Connecting) {
        QObject::connect(
            &m_bus, &bus::BusLink::stateChanged, owner,
            [proxies = *this, url, owner, take] { proxies.lookUp(url, owner, take); },
            Qt::SingleShotConnection);
        return;
    }
    if (m_bus.state() == bus::BusLink::State::Absent) {
        take({});
        return;
    }
    // May start the portal, as the question for the colour scheme does.
    auto call = QDBusMessage::createMethodCall(u"org.freedesktop.portal.Desktop"_s,
        u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.ProxyResolver"_s,
        u"Lookup"_s);
    call << url.toString(QUrl::FullyEncoded);
    bus::askBus(m_bus.connection(), call, kLimitMs, owner, [take](const QDBusMessage& answer) {
        const bool isAnswer = bus::isReply(answer, u"as"_s);
        take(isAnswer ? proxyAddress(answer.arguments().front().toStringList()) : QByteArray());
    });
}

QByteArray proxyAddress(const QStringList& proxies)
{
    if (proxies.isEmpty() || proxies.front().size() > kLongestAddress)
        return {};
    QUrl proxy(proxies.front());
    // Names are for the proxy to look up: behind one, the own resolver may know none.
    if (proxy.scheme() == u"socks"_s || proxy.scheme() == u"socks5"_s)
        proxy.setScheme(u"socks5h"_s);
    const bool isKnown
        = QStringList {u"http"_s, u"https"_s, u"socks4"_s, u"socks4a"_s, u"socks5h"_s}.contains(
            proxy.scheme());
    return isKnown && proxy.isValid() && !proxy.host().isEmpty() ? proxy.toEncoded() : QByteArray();
}

} // namespace netvane::desktop
