#include "shell/antenna_icon.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

namespace {

const QString kName = u"org.netvane.Netvane-symbolic"_s;

QColor mast(const QIcon& icon)
{
    return icon.pixmap(32, 32).toImage().pixelColor(16, 24);
}

} // namespace

class TestAntennaIcon : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasTheThemesNameAndItsOwnPixels()
    {
        QIcon::setThemeSearchPaths({m_themes.path()});
        QIcon::setThemeName(u"hicolor"_s);
        QVERIFY2(shell::antennaIcon(false).name().isEmpty(), "a name that no panel would find");

        QVERIFY(QDir(m_themes.path()).mkpath(u"installed/apps"_s));
        QFile index(m_themes.filePath(u"installed/index.theme"_s));
        QVERIFY(index.open(QIODevice::WriteOnly));
        index.write("[Icon Theme]\nName=installed\nDirectories=apps\n"
                    "[apps]\nSize=16\nMinSize=8\nMaxSize=512\nType=Scalable\n");
        index.close();
        QVERIFY(QFile::copy(QStringLiteral(NETVANE_PACKAGING) + u"/icons/"_s + kName + u".svg"_s,
            m_themes.filePath(u"installed/apps/"_s + kName + u".svg"_s)));
        QIcon::setThemeName(u"installed"_s);
        QCOMPARE(shell::antennaIcon(false).name(), kName);
        QVERIFY(mast(shell::antennaIcon(true)).lightness() > 200);
        QVERIFY(mast(shell::antennaIcon(false)).lightness() < 80);
    }

private:
    QTemporaryDir m_themes;
};

NETVANE_TEST(TestAntennaIcon)
#include "test_antenna_icon.moc"
