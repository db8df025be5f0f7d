#include "history/minute_maker.h"

#include <algorithm>
#include <cmath>

namespace netvane::history {
namespace {

template <typename Value>
std::optional<Value> quantile(std::vector<Value> values, double share)
{
    if (values.empty())
        return {};
    const auto place = std::min(values.size() - 1, size_t(double(values.size()) * share));
    const auto at = values.begin() + std::ptrdiff_t(place);
    std::ranges::nth_element(values, at);
    return *at;
}

} // namespace

void MinuteMaker::addProbe(Path path, const verdict::Outcome& outcome)
{
    auto& times = m_paths.at(size_t(path));
    const int sentAgain = outcome.retransmissions.value_or(0);
    times.packets += 1 + sentAgain;
    times.lost += sentAgain + (outcome.milliseconds ? 0 : 1);
    if (outcome.milliseconds && sentAgain == 0)
        times.milliseconds.push_back(*outcome.milliseconds);
}

void MinuteMaker::addLookup(const verdict::Outcome& outcome)
{
    if (outcome.milliseconds)
        m_lookups.push_back(*outcome.milliseconds);
    else
        ++m_failedLookups;
}

void MinuteMaker::addLink(const platform::LinkReading& link)
{
    m_hasLink = link.ssid.has_value();
    if (link.signalDbm && m_hasLink)
        m_signals.push_back(*link.signalDbm);
    if (m_link && m_link->bssid == link.bssid) {
        m_retries += platform::grown(m_link->counters.retries, link.counters.retries);
        m_failed += platform::grown(m_link->counters.failed, link.counters.failed);
    }
    m_link = link;
}

void MinuteMaker::addVerdict(const verdict::Verdict& verdict)
{
    if (verdict.cause == verdict::Cause::Unsure || (m_severity && *m_severity >= verdict.severity))
        return;
    m_severity = verdict.severity;
    m_cause = identifier(verdict.cause);
}

PathMinute MinuteMaker::pathOf(const Times& times) const
{
    PathMinute path {
        .medianMs = quantile(times.milliseconds, 0.5), .farMs = quantile(times.milliseconds, 0.95)};
    double differences = 0;
    for (size_t i = 1; i < times.milliseconds.size(); ++i)
        differences += std::abs(times.milliseconds[i] - times.milliseconds[i - 1]);
    if (times.milliseconds.size() > 1)
        path.jitterMs = differences / double(times.milliseconds.size() - 1);
    if (times.packets > 0)
        path.lossPercent = 100.0 * times.lost / times.packets;
    return path;
}

std::optional<Minute> MinuteMaker::finish(Milliseconds at, const QString& network)
{
    Minute minute {.at = at,
        .network = network,
        .router = pathOf(m_paths[size_t(Path::Router)]),
        .line = pathOf(m_paths[size_t(Path::Line)]),
        .internet = pathOf(m_paths[size_t(Path::Internet)]),
        .signalDbm = quantile(m_signals, 0.5),
        .leastSignalDbm = quantile(m_signals, 0),
        .lookupMs = quantile(m_lookups, 0.5)};
    if (!m_lookups.empty() || m_failedLookups > 0)
        minute.failedLookups = m_failedLookups;
    if (m_hasLink && m_link) {
        minute.noiseDbm = m_link->noiseDbm;
        minute.sendMbps = m_link->transmitRateMbps;
        minute.receiveMbps = m_link->receiveRateMbps;
        minute.retries = int(std::min(m_retries, 1e9));
        minute.failed = int(std::min(m_failed, 1e9));
    }
    if (m_severity) {
        minute.cause = m_cause;
        minute.severity = int(*m_severity);
    }
    const bool isEmpty
        = !m_severity && !m_hasLink && !minute.internet.lossPercent && !minute.router.lossPercent;
    const auto link = std::exchange(m_link, {});
    *this = {};
    m_link = link;
    return isEmpty ? std::nullopt : std::optional(minute);
}

} // namespace netvane::history
