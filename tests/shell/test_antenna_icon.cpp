#include "shell/antenna_icon.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

class TestAntennaIcon : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasTheThemesNameAndItsOwnPixels()
    {
        const QTemporaryDir themes;
        const QString name = u"org.netvane.Netvane-symbolic"_s;
        const auto mast = [](bool isDark) {
            return shell::antennaIcon(isDark).pixmap(32, 32).toImage().pixelColor(16, 24);
        };
        QIcon::setThemeSearchPaths({themes.path()});
        QIcon::setThemeName(u"hicolor"_s);
        QVERIFY2(shell::antennaIcon(false).name().isEmpty(), "a name that no panel would find");

        QVERIFY(QDir(themes.path()).mkpath(u"installed/apps"_s));
        QFile index(themes.filePath(u"installed/index.theme"_s));
        QVERIFY(index.open(QIODevice::WriteOnly));
        index.write("[Icon Theme]\nName=installed\nDirectories=apps\n"
                    "[apps]\nSize=16\nMinSize=8\nMaxSize=512\nType=Scalable\n");
        index.close();
        QVERIFY(QFile::copy(QStringLiteral(NETVANE_PACKAGING) + u"/icons/"_s + name + u".svg"_s,
            themes.filePath(u"installed/apps/"_s + name + u".svg"_s)));
        QIcon::setThemeName(u"installed"_s);
        QCOMPARE(shell::antennaIcon(false).name(), name);
        QVERIFY(mast(true).lightness() > 200);
        QVERIFY(mast(false).lightness() < 80);
    }
};

NETVANE_TEST(TestAntennaIcon)
#include "test_antenna_icon.moc"
