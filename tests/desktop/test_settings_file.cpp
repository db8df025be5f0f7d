#include "desktop/settings_file.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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

} // namespace

class TestSettingsFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"deep/settings.json"_s);
        QDir().mkpath(m_folder->filePath(u"deep"_s));
    }

    void valuesSurviveARestart()
    {
        QDir(m_folder->filePath(u"deep"_s)).removeRecursively();
        {
            SettingsFile file(m_path, m_queue);
            QVERIFY(!file.boolean(u"switch"_s));
            file.setBoolean(u"switch"_s, true);
            file.setText(u"name"_s, u"café \"1\"\n"_s);
            file.setBoolean(u"gone"_s, true);
            file.remove(u"gone"_s);
            QCOMPARE(file.boolean(u"switch"_s), std::optional(true));
        }
        const SettingsFile again(m_path, m_queue);
        QCOMPARE(again.boolean(u"switch"_s), std::optional(true));
        QCOMPARE(again.text(u"name"_s), std::optional(u"café \"1\"\n"_s));
        QVERIFY(!again.boolean(u"gone"_s));
        QVERIFY(!again.boolean(u"name"_s));
        QVERIFY(!(QFile::permissions(m_path) & (QFile::ReadGroup | QFile::ReadOther)));
    }

    void everyTurnIsStored()
    {
        SettingsFile file(m_path, m_queue);
        QSignalSpy stored(&file, &SettingsFile::stored);
        for (const bool value : {true, false, true}) {
            file.setBoolean(u"switch"_s, value);
            QVERIFY(stored.wait());
            QCOMPARE(content(m_path).contains("true"), value);
        }
        // A value that is there already costs no write.
        file.setBoolean(u"switch"_s, true);
        QVERIFY(!stored.wait(20));
    }

    void othersKeysAreKept()
    {
        write(m_path, R"({"alien": [1, {"deep": null}], "switch": "not a boolean"})");
        {
            SettingsFile file(m_path, m_queue);
            QVERIFY(!file.boolean(u"switch"_s));
            file.setBoolean(u"mine"_s, false);
        }
        for (const char* part : {"\"deep\": null", "\"not a boolean\"", "\"mine\": false"})
            QVERIFY2(content(m_path).contains(part), part);
    }

    /// Values that are set while a slow disk writes earlier ones.
    void theLastValueIsTheLastOneStored()
    {
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
    }

    void aBrokenFileIsSetAside_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("cut off") << QByteArray(R"({"switch": tr)");
        QTest::newRow("array") << QByteArray("[1]");
        QTest::newRow("binary") << QByteArray("\0\xff\xfe\x80", 4);
        QTest::newRow("deep") << QByteArray(100'000, '[');
    }
    void aBrokenFileIsSetAside()
    {
        QFETCH(QByteArray, bytes);
        write(m_path, bytes);
        test::CapturedLog log;
        {
            SettingsFile file(m_path, m_queue);
            QVERIFY(!file.boolean(u"switch"_s));
            // Reading alone changes nothing.
            QCOMPARE(QDir(m_folder->filePath(u"deep"_s)).entryList(QDir::Files).size(), 1);
            file.setBoolean(u"switch"_s, true);
        }
        QCOMPARE(log.take().size(), 1);
        QCOMPARE(SettingsFile(m_path, m_queue).boolean(u"switch"_s), std::optional(true));
        const auto aside = QDir(m_folder->filePath(u"deep"_s)).entryList({u"*.broken-*"_s});
        QCOMPARE(aside.size(), 1);
        QCOMPARE(content(m_folder->filePath(u"deep/"_s + aside.first())), bytes);
    }

    void whatCannotBeReadIsLeftAlone_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"folder", "pipe", "large", "dangling"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void whatCannotBeReadIsLeftAlone()
    {
        QFETCH(QString, kind);
        if (kind == u"folder"_s)
            QVERIFY(QDir().mkpath(m_path));
        else if (kind == u"pipe"_s)
            QCOMPARE(::mkfifo(m_path.toLocal8Bit().constData(), 0600), 0);
        else if (kind == u"dangling"_s)
            QVERIFY(QFile::link(m_path, m_path));
        else
            write(m_path, "{\"a\": \"" + QByteArray(2 * 1024 * 1024, 'x') + "\"}");
        const auto before = content(m_path);
        test::CapturedLog log;
        {
            SettingsFile file(m_path, m_queue);
            file.setBoolean(u"switch"_s, true);
            QCOMPARE(file.boolean(u"switch"_s), std::optional(true));
        }
        QCOMPARE(log.take().size(), 1);
        QCOMPARE(content(m_path), before);
        const auto all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
        QCOMPARE(QDir(m_folder->filePath(u"deep"_s)).entryList(all).size(), 1);
    }

    void aFolderThatTakesNothingIsToldOnce()
    {
        // A file in the place of the folder; permissions would not stop root.
        write(m_folder->filePath(u"file"_s), "");
        test::CapturedLog log;
        SettingsFile file(m_folder->filePath(u"file/settings.json"_s), m_queue);
        QSignalSpy stored(&file, &SettingsFile::stored);
        for (const bool value : {true, false}) {
            file.setBoolean(u"switch"_s, value);
            QVERIFY(stored.wait());
        }
        QCOMPARE(log.take().size(), 1);
    }

private:
    base::WorkQueue m_queue;
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

NETVANE_TEST(TestSettingsFile)
#include "test_settings_file.moc"
