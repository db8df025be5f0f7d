#include "ui/state/performance_section_state.h"

#include "base/decimal_text.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

Accent grade(double value, double greenBelow, double orangeBelow)
{
    if (value < greenBelow)
        return Accent::Green;
    return value < orangeBelow ? Accent::Orange : Accent::Red;
}

/// How one of the figures is shown.
struct Figure {
    std::optional<double> probes::NetworkMetrics::*value;
    int decimals;
    QString unit;
    double greenBelow;
    double orangeBelow;
    QString icon;
    QString label;
    QString helpText;
};

MetricCardContent makeCard(
    const Figure& figure, const probes::NetworkMetrics& metrics, const QList<double>& series)
{
    MetricCardContent card {
        .icon = figure.icon, .label = figure.label, .series = series, .helpText = figure.helpText};
    if (const auto& value = metrics.*figure.value) {
        card.value = base::fixedDecimal(*value, figure.decimals) + figure.unit;
        card.accent = grade(*value, figure.greenBelow, figure.orangeBelow);
    }
    return card;
}

} // namespace

MosCardContent makeMosCard(double score, const QString& quality)
{
    Accent accent = Accent::Red;
    if (score >= 4.0)
        accent = Accent::Green;
    else if (score >= 3.5)
        accent = Accent::Orange;
    return {.score = base::fixedDecimal(score, 1), .quality = quality, .accent = accent};
}

PerformanceSectionState::PerformanceSectionState(
    Heading heading, const std::vector<probes::NetworkMetrics>& history)
    : m_heading(std::move(heading))
    , m_history(history)
    , m_content(makeContent({}))
{
}

void PerformanceSectionState::show(
    const std::optional<probes::NetworkMetrics>& metrics, bool isOnScreen)
{
    const bool wasOnScreen = std::exchange(m_isOnScreen, metrics && isOnScreen);
    if (m_isOnScreen && (!wasOnScreen || m_history.size() != m_historyCount))
        updateHistories();
    auto content = makeContent(metrics);
    if (m_content == content)
        return;
    m_content = std::move(content);
    Q_EMIT contentChanged();
}

/// A record that lacks a value leaves no point in the series of that value.
void PerformanceSectionState::updateHistories()
{
    m_historyCount = m_history.size();
    m_pingHistory.clear();
    m_jitterHistory.clear();
    m_lossHistory.clear();
    const auto taken = std::min(m_history.size(), maxPoints);
    std::for_each(m_history.end() - std::ptrdiff_t(taken), m_history.end(), [&](const auto& entry) {
        if (entry.ping)
            m_pingHistory.append(*entry.ping);
        if (entry.jitter)
            m_jitterHistory.append(*entry.jitter);
        if (entry.packetLoss)
            m_lossHistory.append(*entry.packetLoss);
    });
}

PerformanceSectionState::Content PerformanceSectionState::makeContent(
    const std::optional<probes::NetworkMetrics>& metrics) const
{
    using probes::NetworkMetrics;
    static const Figure ping {&NetworkMetrics::ping, 0, u" ms"_s, 20, 50, u"network"_s, u"Ping"_s,
        u"Round-trip time to the server. Lower is better for responsiveness."_s};
    static const Figure jitter {&NetworkMetrics::jitter, 1, u" ms"_s, 10, 30, u"waveform.path"_s,
        u"Jitter"_s, u"Variation in delay between packets. Lower is better for voice and video."_s};
    static const Figure loss {&NetworkMetrics::packetLoss, 0, u"%"_s, 1, 5,
        u"exclamationmark.triangle"_s, u"Packet Loss"_s,
        u"Percentage of packets that didn't arrive. 0% is ideal."_s};

    const NetworkMetrics reading = metrics.value_or(NetworkMetrics());
    Content content {.isPresent = metrics.has_value(),
        .cards = {makeCard(ping, reading, m_pingHistory),
            makeCard(jitter, reading, m_jitterHistory), makeCard(loss, reading, m_lossHistory)},
        .mosCard = {}};
    // Nobody telephones with a router.
    if (const auto score = reading.mosScore(); score && m_heading.title == u"Internet")
        content.mosCard = makeMosCard(*score, reading.mosQuality());
    return content;
}

} // namespace netvane::ui
