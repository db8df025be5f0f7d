#include "radio/radio_power.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class TestRadioPower : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isRadioOn_data()
    {
        QTest::addColumn<QByteArrayList>("contents"); // of kFiles; an empty file is not made
        QTest::addColumn<bool>("isOn");
        const auto row = [](const char* name, bool isOn, const QByteArrayList& contents) {
            QTest::newRow(name) << contents << isOn;
        };
        row("up", true, {"0x1003\n", "0\n", "0\n", ""});
        row("down", false, {"0x1002\n", "0\n", "0\n", ""});
        row("soft blocked", false, {"0x1003\n", "1\n", "0\n", ""});
        row("hard blocked", false, {"0x1003\n", "0\n", "1\n", ""});
        row("second switch", false, {"0x1003\n", "0\n", "0\n", "1\n"});
        row("nothing", true, {"", "", "", ""});
        row("garbage", true, {"up\n", "-1\n", "no\n", ""});
        row("endless flags", true, {QByteArray(100'000, '2'), "0\n", "0\n", ""});
    }

    void isRadioOn()
    {
        static const QStringList kFiles {u"class/net/wlan0/flags"_s,
            u"class/ieee80211/phy0/rfkill1/soft"_s, u"class/ieee80211/phy0/rfkill1/hard"_s,
            u"class/ieee80211/phy0/rfkill7/soft"_s};
        QFETCH(QByteArrayList, contents);
        const QTemporaryDir root;
        const QDir sysfs(root.path());
        // As in the real one: the interface has a link to its wiphy, which has the switches.
        QVERIFY(sysfs.mkpath(u"class/net/wlan0"_s) && sysfs.mkpath(u"class/ieee80211/phy0"_s));
        QVERIFY(
            QFile::link(u"../../ieee80211/phy0"_s, sysfs.filePath(u"class/net/wlan0/phy80211"_s)));
        for (qsizetype i = 0; i < kFiles.size(); ++i) {
            if (contents[i].isEmpty())
                continue;
            QVERIFY(sysfs.mkpath(kFiles[i].section(u'/', 0, -2)));
            QFile file(sysfs.filePath(kFiles[i]));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(contents[i]);
        }
        QTEST(netvane::radio::isRadioOn(root.path(), "wlan0"_ba), "isOn");
    }
};

NETVANE_TEST(TestRadioPower)
#include "test_radio_power.moc"
