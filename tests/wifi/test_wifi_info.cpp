#include "support/test_main.h"
#include "wifi/wifi_info.h"

#include <QTest>

using namespace netvane::wifi;
using namespace Qt::Literals::StringLiterals;

class TestWiFiInfo : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void signalClasses()
    {
        const std::pair<int, QString> classes[]
            = {{12, u"excellent"_s}, {-59, u"excellent"_s}, {-60, u"good"_s}, {-69, u"good"_s},
                {-70, u"fair"_s}, {-79, u"fair"_s}, {-80, u"poor"_s}};
        for (const auto& [dbm, name] : classes)
            QCOMPARE(caseName(WiFiInfo {.signalStrength = dbm}.signalQuality()), name);
        QCOMPARE(caseName(WiFiInfo {}.signalQuality()), u"unknown"_s);
    }

    /// A rate index says more than the band.
    void standards()
    {
        struct Row {
            std::optional<int> mcs;
            WiFiFrequency band;
            QString standard;
        };
        const Row rows[] = {{{}, WiFiFrequency::twoPointFourGHz, u"802.11n (WiFi 4)"_s},
            {{}, WiFiFrequency::fiveGHz, u"802.11ac (WiFi 5) or 802.11ax (WiFi 6)"_s},
            {{}, WiFiFrequency::sixGHz, u"802.11ax (WiFi 6E)"_s},
            {{}, WiFiFrequency::unknown, u"Unknown"_s},
            {-1, WiFiFrequency::sixGHz, u"802.11n (WiFi 4)"_s},
            {7, WiFiFrequency::fiveGHz, u"802.11n (WiFi 4)"_s},
            {9, WiFiFrequency::sixGHz, u"802.11ac (WiFi 5)"_s},
            {11, WiFiFrequency::sixGHz, u"802.11ax (WiFi 6E)"_s},
            {10, WiFiFrequency::fiveGHz, u"802.11ax (WiFi 6)"_s}};
        for (const auto& [mcs, band, standard] : rows)
            QCOMPARE((WiFiInfo {.frequency = band, .mcsIndex = mcs}.phyMode()), standard);
    }

    void identityIsTheShortestText()
    {
        const std::chrono::system_clock::time_point time(
            std::chrono::microseconds(1'700'000'000'500'001));
        QCOMPARE(WiFiInfo {.timestamp = time}.id(), u"1700000000.500001"_s);
        QCOMPARE(WiFiInfo {}.id(), u"0"_s);
    }
};

NETVANE_TEST(TestWiFiInfo)
#include "test_wifi_info.moc"
