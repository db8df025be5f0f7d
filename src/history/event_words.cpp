#include "history/event_words.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::history {

QString kindOf(platform::RadioEvent::Kind kind)
{
    using Kind = platform::RadioEvent::Kind;
    switch (kind) {
    case Kind::Connected:
        return u"connected"_s;
    case Kind::Disconnected:
        return u"left"_s;
    case Kind::Roamed:
        return u"roamed"_s;
    case Kind::SignInFailed:
        return u"sign-in-refused"_s;
    case Kind::ScanStarted:
        return u"scan"_s;
    case Kind::ScanEnded:
        return {};
    }
    return {};
}

QString reasonText(int reason)
{
    static const std::pair<int, QString> kReasons[] = {{1, u"for no reason that was given"_s},
        {2, u"the sign-in is no longer valid"_s}, {3, u"one side left the network"_s},
        {4, u"nothing was heard for too long"_s}, {5, u"the access point is full"_s},
        {6, u"the access point does not know this computer"_s},
        {7, u"the access point does not know this computer any more"_s},
        {8, u"this computer left the network"_s},
        {12, u"the access point sent it to another one"_s},
        {14, u"a packet was forged or damaged"_s}, {15, u"the keys were not agreed on in time"_s},
        {16, u"a group key was not renewed in time"_s}, {23, u"the sign-in by account failed"_s},
        {34, u"too many packets were lost"_s}};
    const auto* found = std::ranges::find(kReasons, reason, &std::pair<int, QString>::first);
    return found == std::end(kReasons) ? u"reason %1"_s.arg(reason) : found->second;
}

} // namespace netvane::history
