#pragma once

#include <QString>
#include <QUrl>

namespace netvane::probes {

// All hosts that Netvane contacts by itself. Each is contacted every few seconds while it runs, so
// they are large public services that answer from almost everywhere.

/// The public resolver to which latency is measured; accepts connections on TCP port 80.
inline const QString kInternetTarget = QStringLiteral("1.1.1.1");

/// The name whose resolution is measured.
inline const QString kDnsTestHost = QStringLiteral("google.com");

/// Answers with status 200 and a small page that holds the word "Success".
inline const QUrl kCaptivePortalProbe
    = QUrl(QStringLiteral("https://captive.apple.com/hotspot-detect.html"));

/// The address that is probed as router if the system has no default route.
inline const QString kFallbackGateway = QStringLiteral("192.168.1.1");

} // namespace netvane::probes
