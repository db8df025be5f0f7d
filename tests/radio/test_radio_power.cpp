#include "radio/radio_power.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace netvane::radio;
using namespace Qt::Literals::StringLiterals;

namespace {

using Files = QMap<QString, QByteArray>;

const QString kFlags = u"class/net/wlan0/flags"_s;
const QString kSoft = u"class/ieee80211/phy0/rfkill1/soft"_s;
const QString kHard = u"class/ieee80211/phy0/rfkill1/hard"_s;
const QString kOtherSoft = u"class/ieee80211/phy0/rfkill7/soft"_s;

const Files kUp {{kFlags, "0x1003\n"}, {kSoft, "0\n"}, {kHard, "0\n"}};

Files changed(Files files, const QString& path, const QByteArray& contents)
{
    files[path] = contents;
    return files;
}

Files without(Files files, const QString& path)
{
    files.remove(path);
    return files;
}

} // namespace

class TestRadioPower : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isRadioOn_data()
    {
        QTest::addColumn<Files>("files");
        QTest::addColumn<bool>("isOn");
        QTest::newRow("up") << kUp << true;
        QTest::newRow("down") << changed(kUp, kFlags, "0x1002\n") << false;
        QTest::newRow("soft blocked") << changed(kUp, kSoft, "1\n") << false;
        QTest::newRow("hard blocked") << changed(kUp, kHard, "1\n") << false;
        QTest::newRow("second switch") << changed(kUp, kOtherSoft, "1\n") << false;
        QTest::newRow("no switch") << Files {{kFlags, "0x1003\n"}} << true;
        QTest::newRow("no flags") << without(kUp, kFlags) << true;
        QTest::newRow("nothing") << Files() << true;
        QTest::newRow("garbage") << Files {{kFlags, "up\n"}, {kSoft, "-1\n"}, {kHard, "no\n"}}
                                 << true;
        QTest::newRow("endless flags") << changed(kUp, kFlags, QByteArray(100'000, '2')) << true;
    }

    void isRadioOn()
    {
        QFETCH(Files, files);
        const QTemporaryDir root;
        const QDir sysfs(root.path());
        // As in the real one: the interface has a link to its wiphy, which has the switches.
        QVERIFY(sysfs.mkpath(u"class/net/wlan0"_s) && sysfs.mkpath(u"class/ieee80211/phy0"_s));
        QVERIFY(
            QFile::link(u"../../ieee80211/phy0"_s, sysfs.filePath(u"class/net/wlan0/phy80211"_s)));
        for (auto [path, contents] : files.asKeyValueRange()) {
            QVERIFY(sysfs.mkpath(path.section(u'/', 0, -2)));
            QFile file(sysfs.filePath(path));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(contents);
        }
        QTEST(netvane::radio::isRadioOn(root.path(), "wlan0"_ba), "isOn");
    }
};

NETVANE_TEST(TestRadioPower)
#include "test_radio_power.moc"
