#include "desktop/settings_file.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;
using desktop::SettingsFile;

namespace {

QByteArray content(const QString& path)
{
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                      : QByteArray();
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

/// To two texts, of which one is of this process alone.
void addOne(SettingsFile& file, const QString& own)
{
    for (const QString& key : {u"all"_s, own})
        file.editText(key, [](const auto& stored) { return stored.value_or(QString()) + u'x'; });
}

} // namespace

class TestSettingsFile : public QObject {
    Q_OBJECT

public:
    /// The other program.
    static std::optional<int> runAs(const QStringList& arguments)
    {
        if (arguments.value(0) != u"--store")
            return {};
        while (std::getchar() != EOF) {
            base::WorkQueue queue;
            addOne(*std::make_unique<SettingsFile>(arguments.value(1), queue), u"there"_s);
            std::puts("stored");
            std::fflush(stdout);
        }
        return 0;
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"settings.json"_s);
    }

    void valuesSurviveARestart()
    {
        write(m_path, R"({"alien": [1, {"deep": null}], "other": "not a boolean"})");
        {
            SettingsFile file(m_path, m_queue);
            file.setBoolean(u"switch"_s, true);
            file.setText(u"name"_s, u"café \"1\"\n"_s);
            file.setBoolean(u"gone"_s, true);
            file.remove(u"gone"_s);
            QCOMPARE(file.boolean(u"switch"_s), std::optional(true));
        }
        const SettingsFile again(m_path, m_queue);
        QCOMPARE(again.boolean(u"switch"_s), std::optional(true));
        QCOMPARE(again.text(u"name"_s), std::optional(u"café \"1\"\n"_s));
        QVERIFY(!again.boolean(u"gone"_s) && !again.boolean(u"other"_s));
        QVERIFY(content(m_path).contains("\"deep\": null"));
        QVERIFY(content(m_path).contains("\"not a boolean\""));
    }

    /// Values that are set while a slow disk writes earlier ones.
    void theLastValueIsTheLastOneStored()
    {
        m_path = m_folder->filePath(u"new/folder/settings.json"_s);
        QSemaphore disk;
        {
            SettingsFile file(m_path, m_queue);
            for (const QString& value : {u"a"_s, u"b"_s, u"c"_s}) {
                m_queue.post([&disk] { disk.acquire(); });
                file.setText(u"name"_s, value);
                QCoreApplication::processEvents(); // the write waits behind the disk
            }
            disk.release(3);
        }
        QCOMPARE(SettingsFile(m_path, m_queue).text(u"name"_s), std::optional(u"c"_s));
        QVERIFY(!(QFile::permissions(m_path) & (QFile::ReadGroup | QFile::ReadOther)));
    }

    /// What is in the way is kept under another name, unless it is not ours to move.
    void unusable()
    {
        const auto pipe = [this](const QString& name) {
            QCOMPARE(::mkfifo(m_folder->filePath(name).toLocal8Bit().constData(), 0600), 0);
        };
        const std::pair<std::function<void()>, bool> rows[] = {
            {[&] { write(m_path, R"({"switch": tr)"); }, true},
            {[&] { write(m_path, "{\"a\": \"" + QByteArray(2 * 1024 * 1024, 'x') + "\"}"); }, true},
            {[&] { pipe(u"settings.json"_s); }, true},
            {[&] { QVERIFY(QDir().mkpath(m_path + u"/inside"_s)); }, true},
            {[&] {
                 pipe(u"a pipe"_s);
                 QVERIFY(QFile::link(u"a pipe"_s, m_path));
             },
                false},
        };
        for (const auto& [obstruct, isKept] : rows) {
            init();
            obstruct();
            const auto before = entries();
            const auto bytes = content(m_path);
            test::CapturedLog log;
            {
                SettingsFile file(m_path, m_queue);
                QVERIFY(!file.boolean(u"switch"_s));
                QCOMPARE(entries(), before); // reading alone changes nothing
                file.setBoolean(u"switch"_s, true);
                QCOMPARE(file.boolean(u"switch"_s), std::optional(true));
            }
            QCOMPARE(log.take().size(), 2);
            const auto after = entries();
            QCOMPARE(after.size(), 3); // one of them the lock
            QCOMPARE(content(m_folder->filePath(after.at(1))), isKept ? bytes : ""_ba);
            QCOMPARE(SettingsFile(m_path, m_queue).boolean(u"switch"_s).has_value(), isKept);
        }
    }

    /// What the other program has stored since the start of this one, or stores at this moment.
    void twoProcesses()
    {
        SettingsFile file(m_path, m_queue);
        QSignalSpy stored(&file, &SettingsFile::stored);
        QProcess other;
        other.start(
            QCoreApplication::applicationFilePath(), {u"settings_file"_s, u"--store"_s, m_path});
        const int rounds = 25;
        for (int i = 0; i < rounds; ++i) {
            other.write("\n");
            QVERIFY(other.waitForBytesWritten());
            addOne(file, u"here"_s);
            QVERIFY(stored.wait());
            QVERIFY(other.canReadLine() || other.waitForReadyRead());
            other.readLine();
        }
        other.closeWriteChannel();
        QVERIFY(other.waitForFinished());
        const SettingsFile result(m_path, m_queue);
        for (const auto& [key, count] :
            {std::pair(u"all"_s, 2 * rounds), {u"here"_s, rounds}, {u"there"_s, rounds}})
            QCOMPARE(result.text(key).value_or(QString()).size(), count);
    }

    void leftOversOfKilledSavesGo()
    {
        const QStringList names {u"aBcDeF"_s, u"backup"_s, u"Backup"_s, u"BACKUP"_s, u"aBcDeF1"_s};
        for (const QString& name : names) {
            QFile file(m_path + u'.' + name);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.setFileTime(
                QDateTime::currentDateTime().addDays(-2), QFileDevice::FileModificationTime);
        }
        write(m_path + u".nEwOne"_s, {});
        SettingsFile(m_path, m_queue).setBoolean(u"switch"_s, true);
        QCOMPARE(entries().size(), names.size() + 2);
        QVERIFY(!QFile::exists(m_path + u".aBcDeF"_s));
    }

private:
    QStringList entries() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    }

    base::WorkQueue m_queue;
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

NETVANE_TEST(TestSettingsFile)
#include "test_settings_file.moc"
