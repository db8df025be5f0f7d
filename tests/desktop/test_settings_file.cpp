#include "desktop/settings_file.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSemaphore>
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

    /// A broken file is kept under another name; what cannot be read is left alone.
    void unusable()
    {
        const auto large = "{\"a\": \"" + QByteArray(2 * 1024 * 1024, 'x') + "\"}";
        for (const auto& [bytes, isBroken] :
            {std::pair(R"({"switch": tr)"_ba, true), {large, false}, {"pipe"_ba, false}}) {
            init();
            const bool isPipe = bytes == "pipe";
            if (isPipe)
                QCOMPARE(::mkfifo(m_path.toLocal8Bit().constData(), 0600), 0);
            else
                write(m_path, bytes);
            test::CapturedLog log;
            {
                SettingsFile file(m_path, m_queue);
                QVERIFY(!file.boolean(u"switch"_s));
                QCOMPARE(entries().size(), 1); // reading alone changes nothing
                file.setBoolean(u"switch"_s, true);
                QCOMPARE(file.boolean(u"switch"_s), std::optional(true));
            }
            QCOMPARE(log.take().size(), 1);
            const auto after = entries();
            QCOMPARE(after.size(), isBroken ? 2 : 1);
            // The copy, when there is one.
            QCOMPARE(content(m_folder->filePath(after.last())), isPipe ? ""_ba : bytes);
        }
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
