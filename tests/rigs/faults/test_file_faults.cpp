#include "base/process_memory.h"
#include "desktop/settings_file.h"
#include "fault_rows.h"
#include "insights/report_service.h"
#include "net/linux_network_configuration.h"
#include "simulated/desktop.h"
#include "simulated/manual_clock.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <cerrno>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using faults::addFault;
using faults::ArmedFault;
using faults::Fault;

namespace {

// Every file of a test is in a folder of this name; what replaces a file has no name of its own
// yet.
const QByteArray kFolder = "test_faults"_ba;
constexpr int kAll = 1000;
const QByteArray kEarlier = R"({"name": "earlier"})"_ba;

QByteArray content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// Files that cannot be opened, read, written or put in place.
class TestFileFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"settings.json"_s);
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(kEarlier) == kEarlier.size());
        file.close();
        m_descriptors = faults::openDescriptors();
    }

    void cleanup() { QTRY_COMPARE(faults::openDescriptors(), m_descriptors); }

    void settingsAreStored_data() { addWriting(); }
    void settingsAreStored()
    {
        QFETCH(Fault, fault);
        QFETCH(QString, published);
        desktop::SettingsFile settings(m_path, m_queue);
        QSignalSpy stored(&settings, &desktop::SettingsFile::stored);
        test::CapturedLog log;
        {
            const ArmedFault armed(fault);
            settings.setText(u"name"_s, u"later"_s);
            QVERIFY(stored.wait());
            QVERIFY(armed.hits() > 0);
        }
        QCOMPARE(log.take(), QStringList {u"Settings: could not be stored: "_s + published});
        QCOMPARE(settings.text(u"name"_s), std::optional(u"later"_s));
        QCOMPARE(content(m_path), kEarlier);
        QCOMPARE(files(), 1); // nothing half done lies about
        settings.setBoolean(u"switch"_s, true);
        QVERIFY(stored.wait());
        QCOMPARE(desktop::SettingsFile(m_path, m_queue).text(u"name"_s), std::optional(u"later"_s));
        QCOMPARE(log.take(), QStringList());
    }

    /// What could not be read is not taken for an empty file, and so not written over.
    void settingsAreRead_data()
    {
        faults::addFaultColumns();
        for (const Fault& fault : {Fault {"open", EMFILE}, {"open", EACCES}, {"read", EIO}})
            addFault({.call = fault.call, .error = fault.error, .subject = "settings.json"},
                qt_error_string(fault.error));
    }
    void settingsAreRead()
    {
        QFETCH(Fault, fault);
        QFETCH(QString, published);
        test::CapturedLog log;
        {
            const ArmedFault armed(fault);
            desktop::SettingsFile settings(m_path, m_queue);
            QVERIFY(armed.hits() > 0);
            settings.setText(u"name"_s, u"later"_s);
            QCOMPARE(settings.text(u"name"_s), std::optional(u"later"_s));
        }
        QCOMPARE(log.take(), QStringList {u"Settings: the file cannot be used: "_s + published});
        QCOMPARE(content(m_path), kEarlier);
        QCOMPARE(
            desktop::SettingsFile(m_path, m_queue).text(u"name"_s), std::optional(u"earlier"_s));
    }

    /// A broken file is not written over before there is a copy of it.
    void aBrokenFileIsSetAside_data()
    {
        faults::addFaultColumns();
        for (const Fault& fault :
            {Fault {"open", ENOSPC, kFolder, 0, kAll}, {"linkat", ENOSPC, kFolder, 0, kAll}})
            addFault(fault, {});
    }
    void aBrokenFileIsSetAside()
    {
        QFETCH(Fault, fault);
        {
            QFile file(m_path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("{cut o") > 0);
        }
        test::CapturedLog log;
        desktop::SettingsFile settings(m_path, m_queue);
        QCOMPARE(log.take().size(), 1);
        QSignalSpy stored(&settings, &desktop::SettingsFile::stored);
        {
            const ArmedFault armed(fault);
            settings.setBoolean(u"switch"_s, true);
            QVERIFY(stored.wait());
            QVERIFY(armed.hits() > 0);
        }
        QCOMPARE(log.take(),
            QStringList {u"Settings: could not be stored: the broken file cannot be set aside"_s});
        QCOMPARE(content(m_path), "{cut o");
        settings.setBoolean(u"other"_s, true);
        QVERIFY(stored.wait());
        QCOMPARE(files(), 2);
        QVERIFY(desktop::SettingsFile(m_path, m_queue).boolean(u"switch"_s).value_or(false));
    }

    void reportIsSaved_data() { addWriting(); }
    void reportIsSaved()
    {
        QFETCH(Fault, fault);
        QFETCH(QString, published);
        simulated::SavePanel panel;
        simulated::Clipboard clipboard;
        simulated::SharePicker picker;
        simulated::ManualClock clock;
        base::WorkQueue queue;
        insights::ReportService service(
            [] { return std::nullopt; }, clock, queue, {clipboard, panel, picker});
        test::CapturedLog log;
        std::vector<bool> written;
        const auto save = [&] {
            service.saveReport(
                u"# Report"_s, [&](bool isWritten) { written.push_back(isWritten); });
            panel.chosen(m_path);
        };
        {
            const ArmedFault armed(fault);
            save();
            QTRY_COMPARE(written, std::vector {false});
            QVERIFY(armed.hits() > 0);
        }
        QCOMPARE(log.take(), QStringList {u"ReportService: Failed to save file: "_s + published});
        QCOMPARE(content(m_path), kEarlier);
        QCOMPARE(files(), 1);
        save();
        QTRY_COMPARE(written.size(), 2u);
        QVERIFY(written[1]);
        QCOMPARE(content(m_path), "# Report");
    }

    void serversAreRead_data()
    {
        faults::addFaultColumns();
        addFault({"open", EMFILE, "resolv.conf"}, {});
        addFault({"open", EACCES, "resolv.conf"}, {});
        addFault({"read", EIO, "resolv.conf"}, {});
    }
    void serversAreRead()
    {
        QFETCH(Fault, fault);
        const QString path = m_folder->filePath(u"resolv.conf"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("nameserver 9.9.9.9\n") > 0);
        file.close();
        net::LinuxNetworkConfiguration configuration({.resolvConf = path});
        {
            const ArmedFault armed(fault);
            QCOMPARE(configuration.dnsServers(), QStringList());
            QVERIFY(armed.hits() > 0);
        }
        QCOMPARE(configuration.dnsServers(), QStringList {u"9.9.9.9"_s});
    }

    void memoryIsRead_data()
    {
        faults::addFaultColumns();
        addFault({"open", EMFILE, "statm"}, {});
        addFault({"read", EIO, "statm"}, {});
    }
    void memoryIsRead()
    {
        QFETCH(Fault, fault);
        {
            const ArmedFault armed(fault);
            QVERIFY(!base::residentBytes());
            QVERIFY(armed.hits() > 0);
        }
        QVERIFY(base::residentBytes() > 0u);
    }

private:
    static void addWriting()
    {
        faults::addFaultColumns();
        for (const Fault& fault : {Fault {"open", EMFILE}, {"open", EROFS}, {"write", ENOSPC},
                 {"fdatasync", EIO}, {"linkat", ENOSPC}, {"rename", EACCES}})
            addFault({.call = fault.call, .error = fault.error, .subject = kFolder, .count = kAll},
                qt_error_string(fault.error));
    }

    int files() const
    {
        return int(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).size());
    }

    base::WorkQueue m_queue;
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    int m_descriptors = 0;
};

NETVANE_TEST(TestFileFaults)
#include "test_file_faults.moc"
