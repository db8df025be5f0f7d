#include "probes/portal_verdict.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::probes {
namespace {

constexpr qsizetype kLongestAddress = 2048; // all browsers and desktops accept this length
constexpr qsizetype kLongestCharacter = 4; // bytes, in UTF-8

const QByteArray kMarkOfTheProbePage = QByteArrayLiteral("Success");

/// A truncated body may end inside a character.
bool isText(const QByteArray& body, bool truncated)
{
    const qsizetype spare = truncated ? std::min(kLongestCharacter, body.size()) : 1;
    for (qsizetype cut = 0; cut < spare; ++cut) {
        if (body.first(body.size() - cut).isValidUtf8())
            return true;
    }
    return false;
}

PortalVerdict captiveAt(const QUrl& url)
{
    return {.isCaptive = true,
        .redirectAddress = isSafeAddress(url) ? std::optional(url) : std::nullopt};
}

} // namespace

bool isSafeAddress(const QUrl& url)
{
    const bool isWeb = url.scheme() == u"https"_s || url.scheme() == u"http"_s;
    return isWeb && url.isValid() && !url.host().isEmpty()
        && url.toEncoded().size() <= kLongestAddress;
}

PortalVerdict judgePortal(const platform::HttpAnswer& answer)
{
    if (!answer.status)
        return {.isCaptive = answer.errorText.has_value()};
    if (*answer.status >= 300 && *answer.status < 400)
        return captiveAt(answer.finalUrl);
    // Data that is not text proves nothing. A portal's page is text without the mark. The search in
    // the bytes is exact, since no other characters of UTF-8 contain these bytes.
    if (*answer.status == 200 && answer.body && isText(*answer.body, answer.truncated)
        && !answer.body->contains(kMarkOfTheProbePage))
        return captiveAt(answer.finalUrl);
    return {};
}

} // namespace netvane::probes
