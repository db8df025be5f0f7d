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

/// Fetches a known page every 30 seconds and publishes whether a captive portal replaced it and
/// where the user can log in. Without it the user sees only that nothing loads. Main thread.
class CaptivePortalService : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds checkInterval {30000};
    static constexpr std::chrono::milliseconds silenceLimit {5000}; ///< without any progress
    static constexpr std::chrono::milliseconds timeLimit {15000}; ///< a loaded link is no portal

    /// All outlive this. `opener` is null in a program that opens no page. `captiveURL` is the page
    /// to fetch; `start` begins to fetch it.
    CaptivePortalService(platform::HttpClient& http, platform::UrlOpener* opener,
        base::Clock& clock, QUrl captiveURL);

    void start();
    /// The result of a running check is still published.
    void stop() { m_checkTimer.reset(); }

    bool isCaptive() const { return m_isCaptive; }
    /// Absent until the first check has ended. Then the address to which the portal redirected or,
    /// without one, the page that was fetched. When `isCaptive`, it comes from the network and is
    /// not trusted.
    const std::optional<QUrl>& loginURL() const { return m_loginURL; }
    const QUrl& captiveURL() const { return m_captiveURL; }

    void checkForCaptivePortal();
    /// Opens `loginURL`, or `captiveURL` while that is absent, in the user's browser.
    void openLoginPage();

Q_SIGNALS:
    void isCaptiveChanged();
    void loginURLChanged();
    /// A check came to its end, whatever it found.
    void checked(const netvane::platform::HttpAnswer& answer);

private:
    void publish(const PortalVerdict& verdict);

    platform::HttpClient& m_http;
    platform::UrlOpener* m_opener;
    base::Clock& m_clock;
    const QUrl m_captiveURL;
    bool m_isCaptive = false;
    std::optional<QUrl> m_loginURL;
    std::unique_ptr<base::Timer> m_checkTimer;
};

} // namespace netvane::probes
