#include "base/visible_text.h"
#include "insights/report_text.h"
#include "support/test_main.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <QTest>
#include <QTimeZone>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

using insights::ReportInputs;

namespace {

const QDateTime kMoment(QDate(2026, 11, 16), QTime(15, 44, 22));

ReportInputs everything()
{
    return {
        .wifi = wifi::WiFiInfo {.ssid = u"HomeNet"_s,
            .frequency = wifi::WiFiFrequency::fiveGHz,
            .linkRate = 866,
            .signalStrength = -58,
            .noise = -92,
            .mcsIndex = 9,
            .channelWidth = 80},
        // 12.25 lies exactly in the middle.
        .router = probes::NetworkMetrics {.ping = 12.345, .jitter = 12.25, .packetLoss = 0.0},
        .internet = probes::NetworkMetrics {.ping = 20.0, .jitter = 1.0, .packetLoss = 10.0 / 3},
        .dnsLookupTime = 1234.56,
        .dnsServer = u"192.0.2.53"_s,
        .speedTest = diagnostics::SpeedTestResult {.downloadSpeed = 93.44,
            .uploadSpeed = 11.0,
            .pingBefore = 20.0,
            .pingDuring = 42.0,
            .pingAfter = 99.0},
    };
}

ReportInputs hostile()
{
    ReportInputs inputs;
    inputs.wifi
        = wifi::WiFiInfo {.ssid = base::ssidText("<b>&amp;\"x\"](http://e)\n## \xe2\x80\xae\xff")};
    inputs.router = probes::NetworkMetrics {.ping = 12.345};
    inputs.internet = probes::NetworkMetrics {};
    inputs.dnsServer = u"\x1b[2J\n## Speed Test"_s;
    inputs.speedTest = diagnostics::SpeedTestResult {.pingDuring = 41.0};
    return inputs;
}

} // namespace

class TestReportText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wholeText_data()
    {
        QTest::addColumn<ReportInputs>("inputs");
        QTest::newRow("nothing") << ReportInputs {};
        QTest::newRow("everything") << everything();
        QTest::newRow("hostile") << hostile();
    }

    void wholeText()
    {
        QFETCH(ReportInputs, inputs);
        QFile file(QFINDTESTDATA(
            u"../data/report_%1.md"_s.arg(QString::fromLatin1(QTest::currentDataTag()))));
        QVERIFY(file.open(QIODevice::ReadOnly));
        // Other languages write other decimal points.
        const QLocale before;
        QLocale::setDefault(QLocale(u"de_DE"_s));
        const QString text = reportText(inputs, kMoment, QLocale(u"en_US"_s));
        QLocale::setDefault(before);
        QCOMPARE(text.split(u'\n'), QString::fromUtf8(file.readAll()).split(u'\n'));
    }

    void lagUnderLoad()
    {
        struct Row {
            std::optional<double> before;
            std::optional<double> during;
            QString ratio;
        };
        for (const auto& [before, during, ratio] : {Row {20.0, 40.0, {}}, {20.0, 50.0, u"2.5x"_s},
                 {{}, 41.0, {}}, {20.0, {}, {}}, {0.0, 0.0, {}}}) {
            const ReportInputs inputs {.speedTest
                = diagnostics::SpeedTestResult {.pingBefore = before, .pingDuring = during}};
            const QString text = reportText(inputs, kMoment, QLocale::c());
            QCOMPARE(text.contains(u"Lag Under Load"_s), !ratio.isEmpty());
            QVERIFY(text.contains(ratio));
        }
    }

    void dates()
    {
        const std::pair<const char*, QString> texts[] = {
            {"en_US", u"November 16, 2026 at 3:44:22 PM"_s},
            {"en_GB", u"16 November 2026 at 15:44:22"_s}, {"C", u"16 November 2026 at 15:44:22"_s},
            {"de_DE", u"16. November 2026 15:44:22"_s}, {"zh_CN", u"2026年11月16日 15:44:22"_s},
            {"bg_BG", u"16 ноември 2026 г. 15:44:22 ч."_s}};
        for (const auto& [locale, expected] : texts)
            QCOMPARE(insights::longDateMediumTime(kMoment, QLocale(QLatin1StringView(locale))),
                expected);
    }

    /// Whatever the language: no day of the week, no time zone, nothing left over of either.
    void datesOfAllLanguages()
    {
        const auto all = QLocale::matchingLocales(
            QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
        QVERIFY(all.size() > 100);
        const QDateTime elsewhere(kMoment.date(), kMoment.time(), QTimeZone("Asia/Tokyo"));
        for (const QLocale& locale : all) {
            const QString text = insights::longDateMediumTime(kMoment, locale);
            QCOMPARE(insights::longDateMediumTime(elsewhere, locale), text);
            QVERIFY2(!text.contains(locale.dayName(1)), qPrintable(locale.name() + text));
            QVERIFY2(text.front() != u',' && !text.front().isSpace() && !text.back().isSpace(),
                qPrintable(locale.name() + text));
            QVERIFY2(text.contains(locale.toString(44)), qPrintable(locale.name() + text));
        }
    }
};

NETVANE_TEST(TestReportText)
#include "test_report_text.moc"
