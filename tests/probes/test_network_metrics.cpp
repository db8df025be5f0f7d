#include "probes/network_metrics.h"
#include "support/test_main.h"

#include <QTest>

#include <cmath>

using namespace netvane::probes;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double kAbsent = -1;

std::optional<double> optionalOf(double value)
{
    return value == kAbsent ? std::nullopt : std::optional(value);
}

} // namespace

class TestNetworkMetrics : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void score()
    {
        struct Row {
            double ping;
            double jitter;
            double loss;
            double score;
            QString quality;
        };
        const Row rows[] = {{20, kAbsent, kAbsent, 4.3994, u"Excellent"_s},
            {20, 5, 10, 3.46309, u"Poor"_s}, {20, 100, kAbsent, 4.12184, u"Good"_s},
            {20, kAbsent, 8, 3.72094, u"Fair"_s}, {0, kAbsent, kAbsent, 4.40929, u"Excellent"_s},
            {10, kAbsent, 100, 1.0, u"Bad"_s}, {4000, kAbsent, kAbsent, 1.0, u"Bad"_s},
            {-1000, kAbsent, kAbsent, 4.5, u"Excellent"_s},
            {std::nan(""), kAbsent, kAbsent, 4.5, u"Excellent"_s},
            {kAbsent, 5, 10, kAbsent, u"Unknown"_s}};
        for (const auto& [ping, jitter, loss, score, quality] : rows) {
            const NetworkMetrics metrics {.ping = optionalOf(ping),
                .jitter = optionalOf(jitter),
                .packetLoss = optionalOf(loss)};
            QVERIFY(std::abs(metrics.mosScore().value_or(kAbsent) - score) < 0.0001);
            QCOMPARE(metrics.mosQuality(), quality);
        }
    }

    void labelsBeginAtTheirBounds()
    {
        const std::pair<double, QString> bounds[] = {{5, u"Excellent"_s}, {4.3, u"Good"_s},
            {4.0, u"Fair"_s}, {3.6, u"Poor"_s}, {3.1, u"Bad"_s}};
        QString above = u"Excellent"_s;
        for (const auto& [bound, below] : bounds) {
            QCOMPARE(mosQuality(bound), above);
            QCOMPARE(mosQuality(std::nextafter(bound, 0)), below);
            above = below;
        }
    }

    void idIsTimeAndTarget()
    {
        const NetworkMetrics metrics {
            .timestamp = std::chrono::system_clock::time_point(1700000000500ms),
            .target = u"router"_s};
        QCOMPARE(metrics.id(), u"1700000000.5-router"_s);
    }
};

NETVANE_TEST(TestNetworkMetrics)
#include "test_network_metrics.moc"
