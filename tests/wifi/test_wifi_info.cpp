#include "support/test_main.h"
#include "wifi/wifi_info.h"

#include <QTest>

using namespace netvane::wifi;
using namespace Qt::Literals::StringLiterals;

class TestWiFiInfo : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void signalClasses_data()
    {
        QTest::addColumn<int>("dbm");
        QTest::addColumn<QString>("name");
        QTest::newRow("nonsense, but a number") << 12 << u"excellent"_s;
        QTest::newRow("-59") << -59 << u"excellent"_s;
        QTest::newRow("-60") << -60 << u"good"_s;
        QTest::newRow("-69") << -69 << u"good"_s;
        QTest::newRow("-70") << -70 << u"fair"_s;
        QTest::newRow("-79") << -79 << u"fair"_s;
        QTest::newRow("-80") << -80 << u"poor"_s;
    }

    void signalClasses()
    {
        QFETCH(int, dbm);
        QTEST(caseName(WiFiInfo {.signalStrength = dbm}.signalQuality()), "name");
        QCOMPARE(caseName(WiFiInfo {}.signalQuality()), u"unknown"_s);
    }

    void standards_data()
    {
        QTest::addColumn<int>("mcs"); // -100: absent
        QTest::addColumn<WiFiFrequency>("band");
        QTest::addColumn<QString>("standard");
        constexpr int kAbsent = -100;
        QTest::newRow("2.4 GHz") << kAbsent << WiFiFrequency::twoPointFourGHz
                                 << u"802.11n (WiFi 4)"_s;
        QTest::newRow("5 GHz") << kAbsent << WiFiFrequency::fiveGHz
                               << u"802.11ac (WiFi 5) or 802.11ax (WiFi 6)"_s;
        QTest::newRow("6 GHz") << kAbsent << WiFiFrequency::sixGHz << u"802.11ax (WiFi 6E)"_s;
        QTest::newRow("no channel") << kAbsent << WiFiFrequency::unknown << u"Unknown"_s;
        QTest::newRow("negative index") << -1 << WiFiFrequency::sixGHz << u"802.11n (WiFi 4)"_s;
        QTest::newRow("7") << 7 << WiFiFrequency::fiveGHz << u"802.11n (WiFi 4)"_s;
        QTest::newRow("index before band") << 9 << WiFiFrequency::sixGHz << u"802.11ac (WiFi 5)"_s;
        QTest::newRow("11 at 6 GHz") << 11 << WiFiFrequency::sixGHz << u"802.11ax (WiFi 6E)"_s;
        QTest::newRow("10 at 5 GHz") << 10 << WiFiFrequency::fiveGHz << u"802.11ax (WiFi 6)"_s;
    }

    void standards()
    {
        QFETCH(int, mcs);
        QFETCH(WiFiFrequency, band);
        WiFiInfo info {.frequency = band};
        if (mcs != -100)
            info.mcsIndex = mcs;
        QTEST(info.phyMode(), "standard");
    }

    void identityIsTheShortestText()
    {
        const std::chrono::system_clock::time_point time(
            std::chrono::milliseconds(1'700'000'000'500));
        QCOMPARE(WiFiInfo {.timestamp = time}.id(), u"1700000000.5"_s);
        QCOMPARE(WiFiInfo {}.id(), u"0"_s);
        const auto later = time + std::chrono::microseconds(1);
        QCOMPARE(WiFiInfo {.timestamp = later}.id(), u"1700000000.500001"_s);
    }
};

NETVANE_TEST(TestWiFiInfo)
#include "test_wifi_info.moc"
