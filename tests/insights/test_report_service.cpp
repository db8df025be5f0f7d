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

    void saving()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"report.txt"_s);
        QCOMPARE(isSaved({}), false);
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
    /// What the completion says when this is chosen; absent unless it was called once.
    std::optional<bool> isSaved(const std::optional<QString>& path)
    {
        QList<bool> completions;
        m_service.saveReport(kReport, [&](bool written) { completions.append(written); });
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
    std::optional<insights::ReportInputs> m_readings;
    insights::ReportService m_service {
        [this] { return m_readings; }, m_clock, m_queue, {m_clipboard, m_savePanel, m_sharePicker}};
};

NETVANE_TEST(TestReportService)
#include "test_report_service.moc"
