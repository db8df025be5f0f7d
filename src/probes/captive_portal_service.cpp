#include "probes/captive_portal_service.h"

#include "base/publish.h"

namespace netvane::probes {

CaptivePortalService::CaptivePortalService(
    platform::HttpClient& http, platform::UrlOpener* opener, base::Clock& clock, QUrl captiveURL)
    : m_http(http)
    , m_opener(opener)
    , m_clock(clock)
    , m_captiveURL(std::move(captiveURL))
{
}

void CaptivePortalService::start()
{
    checkForCaptivePortal();
    m_checkTimer = m_clock.repeat(checkInterval, [this] { checkForCaptivePortal(); });
}

void CaptivePortalService::checkForCaptivePortal()
{
    m_http.send({.url = m_captiveURL, .silenceLimit = silenceLimit, .timeLimit = timeLimit}, this,
        [this](const platform::HttpAnswer& answer) {
            publish(judgePortal(answer));
            Q_EMIT checked(answer);
        });
}

void CaptivePortalService::openLoginPage()
{
    if (m_opener)
        m_opener->openUrl(m_loginURL.value_or(m_captiveURL));
}

void CaptivePortalService::publish(const PortalVerdict& verdict)
{
    base::publish(*this, m_isCaptive, verdict.isCaptive, &CaptivePortalService::isCaptiveChanged);
    base::publish(*this, m_loginURL, verdict.redirectAddress.value_or(m_captiveURL),
        &CaptivePortalService::loginURLChanged);
}

} // namespace netvane::probes
