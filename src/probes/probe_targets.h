#pragma once

#include <QString>
#include <QUrl>

namespace netvane::probes {

// Whom Netvane asks, all in one place. Each is asked every few seconds while it runs, so they are
// large public services that answer from almost everywhere.

/// The public resolver towards which latency is measured; answers on TCP port 80.
inline const QString kInternetTarget = QStringLiteral("1.1.1.1");

/// The name whose resolution is timed.
inline const QString kDnsTestHost = QStringLiteral("google.com");

/// Answers with status 200 and a small page that holds the word "Success".
inline const QUrl kCaptivePortalProbe
    = QUrl(QStringLiteral("https://captive.apple.com/hotspot-detect.html"));

/// Where the router is looked for when the system names none.
inline const QString kFallbackGateway = QStringLiteral("192.168.1.1");

} // namespace netvane::probes
