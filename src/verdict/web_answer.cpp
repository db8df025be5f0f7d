#include "verdict/web_answer.h"

#include "probes/portal_verdict.h"

namespace netvane::verdict {

WebAnswer webAnswer(const platform::HttpAnswer& answer, const QString& asked)
{
    using platform::HttpFailure;
    constexpr int kNetworkAuthenticationRequired = 511; // RFC 6585
    // A portal sends to its own server, which may not even be found.
    if (!answer.finalUrl.isEmpty() && answer.finalUrl.host() != asked)
        return WebAnswer::Redirect;
    if (answer.status) {
        if (*answer.status == kNetworkAuthenticationRequired)
            return WebAnswer::OtherPage;
        if (*answer.status >= 400)
            return WebAnswer::Refused;
        if (!probes::judgePortal(answer).isCaptive)
            return *answer.status == 200 ? WebAnswer::Expected : WebAnswer::OtherPage;
        return *answer.status >= 300 ? WebAnswer::Redirect : WebAnswer::OtherPage;
    }
    switch (answer.failure.value_or(HttpFailure::Other)) {
    case HttpFailure::NotResolved:
        return WebAnswer::NotResolved;
    case HttpFailure::NotTrusted:
        return WebAnswer::NotTrusted;
    case HttpFailure::Silent:
        return WebAnswer::Silent;
    case HttpFailure::NotConnected:
    case HttpFailure::Other:
        break;
    }
    return WebAnswer::NotConnected;
}

} // namespace netvane::verdict
