#include "support/captured_log.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace netvane::test {
namespace {

Q_LOGGING_CATEGORY(logOfProbes, "netvane.probes")
Q_LOGGING_CATEGORY(logOfWiFi, "netvane.wifi")

} // namespace

class TestLog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLoggingCategory::setFilterRules({}); }

    void rulesOfQtSwitchRoomsOff()
    {
        CapturedLog log;
        base::log(logOfProbes(), u"first"_s);
        QLoggingCategory::setFilterRules(u"netvane.probes=false"_s);
        base::log(logOfProbes(), u"second"_s);
        base::log(logOfWiFi(), u"third"_s);
        base::writeLogLine(u"fourth"_s);
        QCOMPARE(log.take(), QStringList({u"first"_s, u"third"_s, u"fourth"_s}));
    }

    void anEventIsOneVisibleLine()
    {
        CapturedLog log;
        base::log(logOfProbes(), QString(u"a\nb\u202ec"_s));
        QCOMPARE(log.take(), QStringList(uR"(a\x0ab\u{202e}c)"_s));
    }
};

} // namespace netvane::test

NETVANE_TEST(netvane::test::TestLog)

#include "test_log.moc"
