#include "diagnostics/speed_test_json.h"
#include "support/test_main.h"

#include <QTest>

#include <limits>

using namespace netvane::diagnostics;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr size_t kMaxCount = 20;
constexpr auto kTime = std::chrono::system_clock::time_point(1'700'000'000'123'457us);
const QUuid kId = QUuid::fromString(u"e621e1f8-c36c-495a-93fc-0c247a3e6e5f"_s);
const QString kMinimal
    = u"{\"id\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\",\"isRunning\":false,\"timestamp\":0}"_s;

QString arrayOf(const QString& entry)
{
    return u"["_s + entry + u"]"_s;
}

QString minimalWith(const QString& name, const QString& value)
{
    return kMinimal.chopped(1) + u",\"%1\":%2}"_s.arg(name, value);
}

} // namespace

class TestSpeedTestJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writtenForm()
    {
        const SpeedTestResult full {.id = kId,
            .timestamp = kTime,
            .downloadSpeed = 93.25,
            .uploadSpeed = 10,
            .pingBefore = 0.5,
            .pingDuring = 1e-7,
            .pingAfter = 3.1};
        const SpeedTestResult empty {.id = kId, .timestamp = kTime};
        const auto text = encodeSpeedTests({full, empty});
        QVERIFY(text);
        QCOMPARE(text.value(),
            u"[{\"downloadSpeed\":93.25,\"id\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\","
            "\"isRunning\":false,\"pingAfter\":3.1,\"pingBefore\":0.5,\"pingDuring\":1e-07,"
            "\"timestamp\":721692800.123457,\"uploadSpeed\":10},"
            "{\"id\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\",\"isRunning\":false,"
            "\"timestamp\":721692800.123457}]"_s);
        const auto back = decodeSpeedTests(text.value(), kMaxCount);
        QVERIFY(back);
        QCOMPARE(back.value(), (std::vector {full, empty}));
        QCOMPARE(encodeSpeedTests({}).value(), u"[]"_s);
    }

    void everyMicrosecondSurvives()
    {
        std::vector<SpeedTestResult> results;
        for (int i = 0; i < 1000; ++i)
            results.push_back({.id = kId, .timestamp = kTime + i * 1us});
        const auto back = decodeSpeedTests(encodeSpeedTests(results).value(), results.size());
        QVERIFY(back);
        QCOMPARE(back.value(), results);
    }

    void neverWritesWhatIsNoNumber()
    {
        for (const double value :
            {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
            QVERIFY(!encodeSpeedTests({{.id = kId, .timestamp = kTime, .pingAfter = value}}));
    }

    void reads_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("count"); // -1: fails
        const auto row = [](const char* name, const QString& text, int count = -1) {
            QTest::newRow(name) << text << count;
        };
        const auto edited = [](const QString& before, const QString& after) {
            return arrayOf(QString(kMinimal).replace(before, after));
        };
        row("none", u"[]"_s, 0);
        row("spaces", u" [ \n ] "_s, 0);
        row("minimal", arrayOf(kMinimal), 1);
        row("lower-case", edited(u"E621E1F8"_s, u"e621e1f8"_s), 1);
        row("null", arrayOf(minimalWith(u"pingAfter"_s, u"null"_s)), 1);
        row("a name of tomorrow", arrayOf(minimalWith(u"x"_s, u"[{}]"_s)), 1);
        row("nothing", u""_s);
        row("not JSON", u"bplist00"_s);
        row("an object", kMinimal);
        row("a number in the array", u"[1]"_s);
        row("cut", arrayOf(kMinimal).chopped(1));
        row("no id", edited(u"\"id\""_s, u"\"ie\""_s));
        row("braces",
            edited(u"E621E1F8-C36C-495A-93FC-0C247A3E6E5F"_s,
                u"{E621E1F8-C36C-495A-93FC-0C247A3E6E5F}"_s));
        row("short id", edited(u"E621E1F8"_s, u"E621E1F"_s));
        row("no time", edited(u"timestamp"_s, u"time"_s));
        row("time as text", edited(u":0"_s, u":\"0\""_s));
        row("a time too far", edited(u":0"_s, u":9e9"_s));
        row("a time before all", edited(u":0"_s, u":-9e9"_s));
        row("a number too large", edited(u":0"_s, u":1e999"_s));
        row("isRunning as number", edited(u"false"_s, u"0"_s));
        row("speed as text", arrayOf(minimalWith(u"downloadSpeed"_s, u"\"1\""_s)));
        row("ping too large", arrayOf(minimalWith(u"pingAfter"_s, u"1e999"_s)));
        row("10,000", arrayOf((kMinimal + u',').repeated(10'000).chopped(1)), kMaxCount);
        row("far too long", arrayOf((kMinimal + u',').repeated(60'000).chopped(1)));
        row("deep", u"["_s.repeated(100'000));
        row("deep and closed", u"["_s.repeated(1000) + u"]"_s.repeated(1000));
    }
    void reads()
    {
        QFETCH(QString, text);
        QFETCH(int, count);
        const auto results = decodeSpeedTests(text, kMaxCount);
        QCOMPARE(results ? int(results.value().size()) : -1, count);
        if (!results)
            QVERIFY(!results.failure().text.isEmpty());
        else if (count > 0)
            QCOMPARE(results.value().back().id, kId);
    }
};

NETVANE_TEST(TestSpeedTestJson)
#include "test_speed_test_json.moc"
