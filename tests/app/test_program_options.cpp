#include "app/program_options.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

class TestProgramOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void status_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status"); // -1: the program starts
        QTest::newRow("none") << QStringList {} << -1;
        QTest::newRow("session restored") << QStringList {u"-session"_s, u"10f_1"_s} << -1;
        QTest::newRow("Qt's with two dashes") << QStringList {u"--platform=xcb"_s} << -1;
        QTest::newRow("help") << QStringList {u"--help"_s} << 0;
        QTest::newRow("version after Qt's") << QStringList {u"-reverse"_s, u"--version"_s} << 0;
        QTest::newRow("unknown") << QStringList {u"--background"_s} << 2;
        QTest::newRow("unknown letter") << QStringList {u"-x"_s} << 2;
        QTest::newRow("unknown beside help") << QStringList {u"--help"_s, u"--what"_s} << 2;
        QTest::newRow("value missing") << QStringList {u"-session"_s} << 2;
        QTest::newRow("value for a switch") << QStringList {u"--version=1"_s} << 2;
        QTest::newRow("file") << QStringList {u"report.md"_s} << 2;
    }
    void status()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        const auto answer = app::answerTo(QStringList {u"netvane"_s} + arguments);
        QCOMPARE(answer ? answer->status : -1, status);
        QVERIFY(!answer || answer->text.endsWith(u'\n'));
    }
};

NETVANE_TEST(TestProgramOptions)
#include "test_program_options.moc"
