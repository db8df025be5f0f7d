#include "shell/settings_program.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;
using shell::SettingsProgram;

class TestSettingsProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void choice_data()
    {
        QTest::addColumn<QString>("desktops");
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QString>("chosen");
        const QString gnome = u"gnome-control-center"_s;
        const QString kde = u"systemsettings"_s;
        const QString editor = u"nm-connection-editor"_s;
        QTest::newRow("own page") << u"KDE"_s << QStringList {gnome, kde}
                                  << kde + u" kcm_networkmanagement"_s;
        QTest::newRow("derived desktop")
            << u"ubuntu:GNOME"_s << QStringList {gnome, kde} << gnome + u" wifi"_s;
        QTest::newRow("own page missing") << u"KDE"_s << QStringList {editor} << editor;
        QTest::newRow("unknown desktop") << u"sway"_s << QStringList {editor} << editor;
        QTest::newRow("no desktop told") << QString() << QStringList {gnome} << gnome + u" wifi"_s;
        QTest::newRow("nothing") << u"GNOME"_s << QStringList() << QString();
    }
    void choice()
    {
        QFETCH(QString, desktops);
        QFETCH(QStringList, installed);
        QFETCH(QString, chosen);
        const auto program = shell::settingsProgram(desktops,
            [&](const QString& name) { return installed.contains(name) ? name : QString(); });
        QCOMPARE(program ? (QStringList {program->executable} + program->arguments).join(u' ')
                         : QString(),
            chosen);
    }
};

NETVANE_TEST(TestSettingsProgram)
#include "test_settings_program.moc"
