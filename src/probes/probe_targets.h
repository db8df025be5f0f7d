#pragma once

#include <QString>
#include <QUrl>

#include <array>

namespace netvane::probes {

// All hosts that Netvane contacts by itself. Each is contacted every few seconds while it runs, so
// they are large public services that answer from almost everywhere.

/// The public resolver to which latency is measured; accepts connections on TCP port 80.
inline const QString kInternetTarget = QStringLiteral("1.1.1.1");

/// The same resolver over IPv6, asked where there is a route.
inline const QString kInternetTarget6 = QStringLiteral("2606:4700:4700::1111");

/// Other public resolvers that accept connections on TCP port 443. They are asked only while the
/// first one does not answer: is it that one host, or the internet?
inline const std::array<QString, 2> kOtherTargets
    = {QStringLiteral("9.9.9.9"), QStringLiteral("8.8.8.8")};
inline const QString kOtherTarget6 = QStringLiteral("2620:fe::fe");

/// The name whose resolution is measured.
inline const QString kDnsTestHost = QStringLiteral("google.com");

/// Answers with status 200 and a small page that holds the word "Success".
inline const QUrl kCaptivePortalProbe
    = QUrl(QStringLiteral("https://captive.apple.com/hotspot-detect.html"));
/// The same page without TLS, for which a portal can answer; asked when the other one does not
/// come.
inline const QUrl kPlainPortalProbe
    = QUrl(QStringLiteral("http://captive.apple.com/hotspot-detect.html"));

/// The address that is probed as router if the system has no default route.
inline const QString kFallbackGateway = QStringLiteral("192.168.1.1");

} // namespace netvane::probes
