#include "told_lines.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace netvane::soak {
namespace {

constexpr qsizetype kMostKept = 40;

/// The ones that come most often first.
const std::vector<QRegularExpression>& expectedKinds()
{
    static const auto s_kinds = [] {
        std::vector<QRegularExpression> kinds;
        for (const auto& pattern :
            {
                u"PingService: Timeout waiting for connection to [0-9.]+"_s,
                uR"(DNSService: DNS lookup failed for [a-z.]+: Temporary failure in name resolution \(status: -3\))"_s,
                u"PopoverView: updateState #[0-9]+ took [0-9.]+ms, changes: [a-z, ]+"_s,
                // What the platform without a screen has to say.
                u"This plugin does not support (raise|propagateSizeHints)\\(\\)"_s,
                u".*No such signal QPlatformNativeInterface::systemTrayWindowChanged.*"_s,
                u"Memory: [0-9]+\\.[0-9] MB"_s,
                u"PingService\\[(router|internet)\\]: Ping #[0-9]+, metrics count: ([1-9]|10)"_s,
                u"WiFiService: Update #[0-9]+"_s,
                u"DNSService: Lookup #[0-9]+, history count: ([0-9]|10)"_s,
                u"Demonstration: (?!notification|would open).*"_s,
                u"Demonstration: would open https://login\\.cafe-meridian\\.example/welcome"_s,
                u"Netvane: Awake after a sleep, reading everything anew"_s,
                u"Netvane: App became active - checking location permission"_s,
                u"ChannelAnalysisService: Scan failed: the driver is busy"_s,
                u"LocationPermissionService: Authorization status (changed|updated externally) - .*"_s,
                u"(AppDelegate|StatusBarManager): .*"_s,
                u"Netvane: (Application|Activation|App activated|Location permission status: [03]|Status bar|Global keyboard|Default gateway|All services).*"_s,
                u"PingService\\[(router|internet)\\]: Starting with interval 3\\.0s"_s,
            })
            kinds.emplace_back(QRegularExpression::anchoredPattern(pattern));
        return kinds;
    }();
    return s_kinds;
}

} // namespace

void ToldLines::take(const QStringList& lines)
{
    const auto& kinds = expectedKinds();
    for (const QString& line : lines) {
        ++m_count;
        const auto kind = std::ranges::find_if(
            kinds, [&line](const auto& each) { return each.match(line).hasMatch(); });
        if (kind != kinds.end())
            ++m_kinds[kind->pattern()];
        else if (m_unexpected.size() < kMostKept)
            m_unexpected.append(line);
    }
}

void ToldLines::print() const
{
    for (auto kind = m_kinds.cbegin(); kind != m_kinds.cend(); ++kind)
        std::printf("%10lld lines like %s\n", kind.value(), qPrintable(kind.key().left(90)));
    for (const auto& line : m_unexpected)
        std::printf("UNEXPECTED: %s\n", qPrintable(line));
}

} // namespace netvane::soak
