#include "base/visible_text.h"
#include "insights/report_service.h"
#include "simulated/desktop.h"
#include "simulated/manual_clock.h"
#include "support/captured_log.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using insights::ReportInputs;

namespace {

const QString kReport = u"# Netvane Diagnostic Report\n- SSID: Café 🛜"_s;

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

class TestReportService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wholeText()
    {
        const std::pair<QString, ReportInputs> rows[]
            = {{u"nothing"_s, {}}, {u"everything"_s, everything()}, {u"hostile"_s, hostile()}};
        for (const auto& [name, inputs] : rows) {
            QFile file(QFINDTESTDATA(u"../data/report_%1.md"_s.arg(name)));
            QVERIFY(file.open(QIODevice::ReadOnly));
            // Other languages write other decimal points.
            const QLocale before;
            QLocale::setDefault(QLocale(u"de_DE"_s));
            const QString text = reportText(inputs, kMoment, QLocale(u"en_US"_s));
            QLocale::setDefault(before);
            const QString wanted = QString::fromUtf8(file.readAll())
                                       .replace(u"(support address)"_s, insights::supportAddress());
            QCOMPARE(text.split(u'\n'), wanted.split(u'\n'));
        }
    }

    /// As they are in the air, and not as a reader of Markdown would show them.
    void names()
    {
        const std::pair<QByteArray, QString> rows[] = {
            {"Tom's Caf\xc3\xa9_2.4 GHz, 1-a!", u"Tom's Café_2.4 GHz, 1-a!"_s},
            {"![x](http://e)", u"`![x](http://e)`"_s}, {"_x_", u"`_x_`"_s}, {"www.e", u"`www.e`"_s},
            {"a--b", u"`a--b`"_s}, {"a  b", u"`a \\x20b`"_s}, {"``a`", u"``` ``a` ```"_s},
            {"a\xe2\x80\x8b", u"`a\\u{200b}`"_s}, {"[network 1]", u"`[network 1]`"_s}};
        for (const auto& [name, shown] : rows) {
            const ReportInputs inputs {.wifi = wifi::WiFiInfo {.ssid = base::ssidText(name)}};
            const QString text = reportText(inputs, kMoment, QLocale::c());
            QVERIFY2(text.contains(u"\n- SSID: "_s + shown + u'\n'), qPrintable(text));
        }
    }

    /// In every language: no day of the week, no time zone, no rest of either.
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

    /// The whole date is in one language, that of LC_TIME.
    void dateInTheUsersLanguage()
    {
        qputenv("LC_ALL", "");
        qputenv("LANG", "en_US.UTF-8");
        qputenv("LC_TIME", "de_DE.UTF-8");
        m_clock.setWall(std::chrono::system_clock::time_point(1'700'000'000s));
        QVERIFY(m_service.generateReport({}).contains(u"November 2023 "_s));
        QVERIFY(!m_service.generateReport({}).contains(u" at "_s));
        qputenv("LC_TIME", "");
        QVERIFY(m_service.generateReport({}).contains(u" at "_s));
        qputenv("LC_ALL", "C.UTF-8");
    }

    void saving()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"report.txt"_s);
        QCOMPARE(isSaved({}), false);
        QVERIFY(m_savePanel.fileName.startsWith(u"Netvane-Report-"_s));
        QVERIFY(!QFile::exists(path));
        QCOMPARE(isSaved(path), true);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), kReport.toUtf8());
        QCOMPARE(m_log.take(), QStringList());
        QCOMPARE(isSaved(folder.filePath(u"none/report.txt"_s)), false);
        QVERIFY(m_log.take().join(u'|').startsWith(u"ReportService: Failed to save file: "_s));
    }

private:
    /// The completion's value after the user chose this; absent unless it was called once.
    std::optional<bool> isSaved(const std::optional<QString>& path)
    {
        QList<bool> completions;
        m_service.saveReport(kReport, [&](bool written, auto) { completions.append(written); });
        if (!completions.isEmpty())
            return {};
        m_savePanel.chosen(path);
        test::settle(m_queue);
        return completions.size() == 1 ? std::optional(completions.first()) : std::nullopt;
    }

    test::CapturedLog m_log;
    simulated::ManualClock m_clock;
    simulated::Clipboard m_clipboard;
    simulated::SavePanel m_savePanel;
    simulated::SharePicker m_sharePicker;
    base::WorkQueue m_queue;
    insights::ReportService m_service {
        [] { return std::nullopt; }, m_clock, m_queue, {m_clipboard, m_savePanel, m_sharePicker}};
};

NETVANE_TEST(TestReportService)
#include "test_report_service.moc"
