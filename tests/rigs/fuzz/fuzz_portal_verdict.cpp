// What anyone on the way may answer to the probe for captive portals.
#include "fuzz_target.h"
#include "probes/portal_verdict.h"

using namespace netvane;

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    constexpr size_t kLongestAddress = 4096;
    constexpr size_t kLongestError = 64;
    platform::HttpAnswer answer;
    if (input.ConsumeBool())
        answer.status = input.ConsumeIntegral<uint16_t>();
    if (input.ConsumeBool())
        answer.errorText = QString::fromUtf8(fuzz::takeBytes(input, kLongestError));
    answer.truncated = input.ConsumeBool();
    answer.finalUrl = QUrl(QString::fromUtf8(fuzz::takeBytes(input, kLongestAddress)));
    if (input.ConsumeBool())
        answer.body = fuzz::takeRest(input);
    const auto verdict = probes::judgePortal(answer);
    fuzz::require(verdict.isCaptive || !verdict.redirectAddress, "no way to a portal that is not");
    if (verdict.redirectAddress) {
        const QUrl& url = *verdict.redirectAddress;
        fuzz::require(probes::isSafeAddress(url), "what is opened is safe");
        fuzz::require(url.isValid() && !url.host().isEmpty(), "it leads somewhere");
        fuzz::require(url.scheme() == u"http" || url.scheme() == u"https", "it is a page");
    }
    fuzz::require(probes::judgePortal(answer) == verdict, "it does not change its mind");
}
