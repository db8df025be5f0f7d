#include "diagnostics/speed_test_result.h"
#include "support/test_main.h"

#include <QTest>

#include <limits>

using namespace netvane::diagnostics;
using namespace Qt::Literals::StringLiterals;

class TestSpeedTestResult : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lagUnderLoad_data()
    {
        QTest::addColumn<std::optional<double>>("before");
        QTest::addColumn<std::optional<double>>("during");
        QTest::addColumn<QString>("figures"); // empty: no message
        using Ping = std::optional<double>;
        QTest::newRow("example") << Ping(10) << Ping(35) << u"10ms to 35ms (3.5x)"_s;
        QTest::newRow("twice") << Ping(12) << Ping(24) << u""_s;
        QTest::newRow("more") << Ping(12) << Ping(25) << u"12ms to 25ms (2.1x)"_s;
        QTest::newRow("halves") << Ping(2.5) << Ping(13.5) << u"2ms to 14ms (5.4x)"_s;
        QTest::newRow("less") << Ping(30) << Ping(5) << u""_s;
        QTest::newRow("from 0") << Ping(0) << Ping(4) << u"0ms to 4ms (infx)"_s;
        QTest::newRow("0 and 0") << Ping(0) << Ping(0) << u""_s;
        QTest::newRow("none before") << Ping() << Ping(35) << u""_s;
        QTest::newRow("none during") << Ping(10) << Ping() << u""_s;
        const double most = std::numeric_limits<double>::max();
        const QString digits = QString::number(most, 'f', 0);
        QTest::newRow("most") << Ping(1) << Ping(most) << u"1ms to %1ms (%1.0x)"_s.arg(digits);
    }
    void lagUnderLoad()
    {
        QFETCH(std::optional<double>, before);
        QFETCH(std::optional<double>, during);
        QFETCH(QString, figures);
        const SpeedTestResult result {.pingBefore = before, .pingDuring = during};
        const auto message = result.lagUnderLoadMessage();
        QCOMPARE(message.has_value(), !figures.isEmpty());
        if (message)
            QCOMPARE(*message,
                u"Lag under load: router ping spiked from "_s + figures
                    + u" while maxing out your connection. This causes lag for everyone else on "
                      "the network during heavy usage."_s);
    }
};

NETVANE_TEST(TestSpeedTestResult)
#include "test_speed_test_result.moc"
