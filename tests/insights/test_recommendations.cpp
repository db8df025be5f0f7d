#include "insights/recommendations.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

using insights::RecommendationInputs;

namespace {

const QString kBand
    = u"Using an older Wi-Fi standard (Wi-Fi 4) - try moving to 5 GHz for better speeds."_s;
const QString kVeryLow
    = u"Signal strength is very low - move closer to the router or adjust antenna orientation."_s;
const QString kNotIdeal
    = u"Signal strength is functional but not ideal - consider moving closer to the router."_s;
const QString kJitter = u"High jitter detected - check your router and network congestion."_s;

RecommendationInputs inputs(wifi::WiFiFrequency frequency, std::optional<int> signal,
    std::optional<double> routerJitter = {}, std::optional<double> internetJitter = {})
{
    return {wifi::WiFiInfo {.frequency = frequency, .signalStrength = signal},
        probes::NetworkMetrics {.jitter = routerJitter},
        probes::NetworkMetrics {.jitter = internetJitter}};
}

} // namespace

class TestRecommendations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void advice()
    {
        using enum wifi::WiFiFrequency;
        const std::pair<RecommendationInputs, QStringList> rows[] = {
            {inputs(twoPointFourGHz, -80, 45.0), {kBand, kVeryLow, kJitter}},
            {inputs(unknown, {}), {}}, {inputs(fiveGHz, -76), {kVeryLow}},
            {inputs(fiveGHz, -75), {kNotIdeal}}, {inputs(fiveGHz, -61), {kNotIdeal}},
            {inputs(fiveGHz, -60, 30.0), {}}, {inputs(fiveGHz, {}, 30.01), {kJitter}},
            {inputs(fiveGHz, {}, 1.0, 500.0), {}}, // the jitter of the internet
        };
        for (const auto& [given, expected] : rows)
            QCOMPARE(recommendations(given), expected);
    }
};

NETVANE_TEST(TestRecommendations)
#include "test_recommendations.moc"
