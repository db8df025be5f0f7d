#include "insights/recommendations.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

using insights::RecommendationInputs;
using Frequency = wifi::WiFiFrequency;

namespace {

const QString kBand
    = u"Using an older Wi-Fi standard (Wi-Fi 4) - try moving to 5 GHz for better speeds."_s;
const QString kVeryLow
    = u"Signal strength is very low - move closer to the router or adjust antenna orientation."_s;
const QString kNotIdeal
    = u"Signal strength is functional but not ideal - consider moving closer to the router."_s;
const QString kJitter = u"High jitter detected - check your router and network congestion."_s;

RecommendationInputs inputs(Frequency frequency, std::optional<int> signal,
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
    void advice_data()
    {
        QTest::addColumn<RecommendationInputs>("inputs");
        QTest::addColumn<QStringList>("expected");
        const auto row
            = [](const char* name, const RecommendationInputs& given, const QStringList& expected) {
                  QTest::newRow(name) << given << expected;
              };
        const auto five = Frequency::fiveGHz;
        row("nothing known", {}, {});
        row("everything wrong", inputs(Frequency::twoPointFourGHz, -80, 45.0),
            {kBand, kVeryLow, kJitter});
        row("no signal", inputs(Frequency::twoPointFourGHz, {}), {kBand});
        row("6 GHz", inputs(Frequency::sixGHz, {}), {});
        row("unknown band", inputs(Frequency::unknown, {}), {});
        row("-76", inputs(five, -76), {kVeryLow});
        row("-75", inputs(five, -75), {kNotIdeal});
        row("-61", inputs(five, -61), {kNotIdeal});
        row("-60", inputs(five, -60), {});
        row("jitter of 30", inputs(five, {}, 30.0), {});
        row("jitter above", inputs(five, {}, 30.01), {kJitter});
        row("jitter of the internet", inputs(five, {}, 1.0, 500.0), {});
        auto withoutLink = inputs(five, -90, 31.0);
        withoutLink.wifiInfo.reset();
        row("no link", withoutLink, {kJitter});
    }

    void advice()
    {
        QFETCH(RecommendationInputs, inputs);
        QFETCH(QStringList, expected);
        QCOMPARE(recommendations(inputs), expected);
    }
};

NETVANE_TEST(TestRecommendations)
#include "test_recommendations.moc"
