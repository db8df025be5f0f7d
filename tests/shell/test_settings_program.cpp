#include "shell/settings_program.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

class TestSettingsProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void choice()
    {
        const QString gnome = u"gnome-control-center"_s;
        const QString kde = u"systemsettings"_s;
        const QString editor = u"nm-connection-editor"_s;
        for (const auto& [desktops, installed, chosen] :
            {std::tuple(u"KDE"_s, QStringList {gnome, kde}, kde + u" kcm_networkmanagement"_s),
                {u"ubuntu:GNOME"_s, {gnome, kde}, gnome + u" wifi"_s}, {u"KDE"_s, {editor}, editor},
                {u""_s, {gnome}, gnome + u" wifi"_s}, {u"GNOME"_s, {}, u""_s}}) {
            const auto program = shell::settingsProgram(desktops,
                [&](const QString& name) { return installed.contains(name) ? name : QString(); });
            const auto words
                = program ? QStringList {program->executable} + program->arguments : QStringList();
            QCOMPARE(words.join(u' '), chosen);
        }
    }
};

NETVANE_TEST(TestSettingsProgram)
#include "test_settings_program.moc"
