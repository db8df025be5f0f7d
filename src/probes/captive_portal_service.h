#pragma once

#include "base/clock.h"
#include "platform/http_client.h"
#include "platform/url_opener.h"
#include "probes/portal_verdict.h"

#include <QObject>
#include <QUrl>

#include <memory>
#include <optional>

namespace netvane::probes {

/// Fetches a known page every 30 seconds and publishes whether a captive portal stands in its place
/// and where the user can log in. Main thread.
class CaptivePortalService : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds checkInterval {30000};
    static constexpr std::chrono::milliseconds silenceLimit {5000}; ///< without any progress
    static constexpr std::chrono::milliseconds timeLimit {15000}; ///< a loaded link is no portal

    /// All outlive this. `captiveURL` is the page to fetch; nothing is fetched before `start`.
    CaptivePortalService(platform::HttpClient& http, platform::UrlOpener& opener,
        base::Clock& clock, QUrl captiveURL);

    void start();
    /// A check that is under way still counts.
    void stop() { m_checkTimer.reset(); }

    bool isCaptive() const { return m_isCaptive; }
    /// Absent until the first check is through; from then on the address that the portal led to or,
    /// when it led nowhere, the page that was fetched. Written by a stranger when `isCaptive`.
    const std::optional<QUrl>& loginURL() const { return m_loginURL; }
    const QUrl& captiveURL() const { return m_captiveURL; }

    void checkForCaptivePortal();
    /// Opens `loginURL`, or `captiveURL` while that is absent, in the user's browser.
    void openLoginPage();

Q_SIGNALS:
    void isCaptiveChanged();
    void loginURLChanged();

private:
    void publish(const PortalVerdict& verdict);

    platform::HttpClient& m_http;
    platform::UrlOpener& m_opener;
    base::Clock& m_clock;
    const QUrl m_captiveURL;
    bool m_isCaptive = false;
    std::optional<QUrl> m_loginURL;
    std::unique_ptr<base::Timer> m_checkTimer;
};

} // namespace netvane::probes
