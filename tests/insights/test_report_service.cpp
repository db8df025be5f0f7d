#include "insights/report_service.h"
#include "simulated/desktop.h"
#include "simulated/manual_clock.h"
#include "support/captured_log.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString kReport = u"# Netvane Diagnostic Report\n- SSID: Café 🛜"_s;

} // namespace

class TestReportService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void currentReport()
    {
        QVERIFY(!m_service.currentReport());
        m_readings = insights::ReportInputs {.dnsServer = u"192.0.2.53"_s};
        const auto report = m_service.currentReport();
        QVERIFY(report && report->contains(u"- DNS Server: 192.0.2.53\n"_s));
    }

    /// All of a date is in one language, and in that of dates.
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

    void proposedName()
    {
        for (const auto& [time, text] :
            {std::pair {0ms, u"1700000000.0"_s}, {500ms, u"1700000000.5"_s}}) {
            m_clock.setWall(std::chrono::system_clock::time_point(1'700'000'000s + time));
            m_service.saveReport(kReport);
            QCOMPARE(m_savePanel.title, u"Save Diagnostic Report"_s);
            QCOMPARE(m_savePanel.fileName, u"Netvane-Report-%1.txt"_s.arg(text));
            m_savePanel.chosen({}); // without a handler
        }
    }

    void saving_data()
    {
        QTest::addColumn<QString>("name"); // empty: cancelled
        QTest::addColumn<bool>("isWritten");
        QTest::addColumn<QString>("line");
        QTest::newRow("chosen") << u"report.txt"_s << true << QString();
        QTest::newRow("cancelled") << QString() << false << QString();
        QTest::newRow("no such folder")
            << u"none/report.txt"_s << false << u"ReportService: Failed to save file: "_s;
    }
    void saving()
    {
        QFETCH(QString, name);
        QFETCH(bool, isWritten);
        QFETCH(QString, line);
        const QTemporaryDir folder;
        const QString path = folder.filePath(name);
        QList<bool> completions;
        m_service.saveReport(kReport, [&](bool written) { completions.append(written); });
        QVERIFY(completions.isEmpty());
        m_savePanel.chosen(name.isEmpty() ? std::nullopt : std::optional(path));
        test::settle(m_queue);
        QCOMPARE(completions, QList<bool> {isWritten});
        QFile file(path);
        QCOMPARE(!name.isEmpty() && file.open(QIODevice::ReadOnly), isWritten);
        if (isWritten)
            QCOMPARE(file.readAll(), kReport.toUtf8());
        const QString lines = m_log.take().join(u'|');
        QCOMPARE(lines.isEmpty(), line.isEmpty());
        QVERIFY(lines.startsWith(line));
    }

private:
    test::CapturedLog m_log;
    simulated::ManualClock m_clock;
    simulated::Clipboard m_clipboard;
    simulated::SavePanel m_savePanel;
    simulated::SharePicker m_sharePicker;
    base::WorkQueue m_queue;
    std::optional<insights::ReportInputs> m_readings;
    insights::ReportService m_service {
        [this] { return m_readings; }, m_clock, m_queue, {m_clipboard, m_savePanel, m_sharePicker}};
};

NETVANE_TEST(TestReportService)
#include "test_report_service.moc"
