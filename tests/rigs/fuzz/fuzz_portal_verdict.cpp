// What anyone on the way may answer to the probe for captive portals.
#include "fuzz_target.h"
#include "probes/portal_verdict.h"
#include "verdict/answers.h"

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    platform::HttpAnswer answer;
    if (input.ConsumeBool())
        answer.status = input.ConsumeIntegral<uint16_t>();
    if (input.ConsumeBool())
        answer.errorText = QString::fromUtf8(takeBytes(input, 64));
    answer.truncated = input.ConsumeBool();
    answer.finalUrl = QUrl(QString::fromUtf8(takeBytes(input, 4096)));
    if (input.ConsumeBool())
        answer.body = takeRest(input);
    const auto verdict = probes::judgePortal(answer);
    require(verdict.isCaptive || !verdict.redirectAddress, "no way to a portal that is not");
    if (verdict.redirectAddress) {
        const QUrl& url = *verdict.redirectAddress;
        require(probes::isSafeAddress(url), "what is opened is safe");
        require(url.isValid() && !url.host().isEmpty(), "it leads somewhere");
        require(url.scheme() == u"http" || url.scheme() == u"https", "it is a page");
    }
    require(probes::judgePortal(answer) == verdict, "it does not change its mind");
    const bool isExpected
        = verdict::webAnswer(answer, answer.finalUrl.host()) == verdict::WebAnswer::Expected;
    require(!isExpected || (!verdict.isCaptive && answer.status == 200), "a portal is no page");
}
