#include "insights/report_service.h"
#include "support/captured_log.h"
#include "support/fake_report_exits.h"
#include "support/manual_clock.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QDir>
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
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

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

    void proposedName_data()
    {
        QTest::addColumn<int>("milliseconds");
        QTest::addColumn<QString>("name");
        QTest::newRow("whole") << 0 << u"Netvane-Report-1700000000.0.txt"_s;
        QTest::newRow("fraction") << 500 << u"Netvane-Report-1700000000.5.txt"_s;
    }

    void proposedName()
    {
        QFETCH(int, milliseconds);
        QFETCH(QString, name);
        m_clock.setWall(std::chrono::system_clock::time_point(
            1'700'000'000s + std::chrono::milliseconds(milliseconds)));
        m_service.saveReport(kReport);
        QCOMPARE(m_savePanel.title, u"Save Diagnostic Report"_s);
        QCOMPARE(m_savePanel.fileName, name);
        m_savePanel.chosen({}); // nobody wants to know
    }

    void saving()
    {
        save(path());
        QCOMPARE(m_completions, QList<bool> {true});
        QCOMPARE(content(), kReport.toUtf8());
        QCOMPARE(m_log.take(), QStringList());
    }

    void cancelling()
    {
        save({});
        QCOMPARE(m_completions, QList<bool> {false});
        QVERIFY(QDir(m_folder->path()).isEmpty());
        QCOMPARE(m_log.take(), QStringList());
    }

    void folderIsGone()
    {
        save(m_folder->filePath(u"none/report.txt"_s));
        QCOMPARE(m_completions, QList<bool> {false});
        verifyFailureLine();
    }

private:
    QString path() const { return m_folder->filePath(u"report.txt"_s); }

    QByteArray content() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void save(const std::optional<QString>& chosen)
    {
        m_completions.clear();
        m_service.saveReport(kReport, [this](bool written) { m_completions.append(written); });
        QVERIFY(m_completions.isEmpty());
        m_savePanel.chosen(chosen);
        test::settle(m_queue);
    }

    void verifyFailureLine()
    {
        const QStringList lines = m_log.take();
        const QString start = u"ReportService: Failed to save file: "_s;
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.first().startsWith(start) && lines.first().size() > start.size());
    }

    test::CapturedLog m_log;
    test::ManualClock m_clock;
    test::FakeClipboard m_clipboard;
    test::FakeSavePanel m_savePanel;
    test::FakeSharePicker m_sharePicker;
    base::WorkQueue m_queue;
    std::optional<insights::ReportInputs> m_readings;
    QList<bool> m_completions;
    std::unique_ptr<QTemporaryDir> m_folder;
    insights::ReportService m_service {
        [this] { return m_readings; }, m_clock, m_queue, {m_clipboard, m_savePanel, m_sharePicker}};
};

NETVANE_TEST(TestReportService)
#include "test_report_service.moc"
