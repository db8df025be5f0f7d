#include "diagnostics/speed_test_json.h"
#include "support/test_main.h"

#include <QTest>

#include <limits>

using namespace netvane::diagnostics;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Ping = std::optional<double>;

constexpr size_t kMaxCount = 20;
constexpr auto kTime = std::chrono::system_clock::time_point(1'700'000'000'123'457us);
const QUuid kId = QUuid::fromString(u"e621e1f8-c36c-495a-93fc-0c247a3e6e5f"_s);
const QString kMinimal
    = u"{\"id\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\",\"isRunning\":false,\"timestamp\":0}"_s;

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
        const auto text = encodeSpeedTests({full, empty}).value();
        QCOMPARE(text,
            u"[{\"downloadSpeed\":93.25,\"id\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\","
            "\"isRunning\":false,\"pingAfter\":3.1,\"pingBefore\":0.5,\"pingDuring\":1e-07,"
            "\"timestamp\":721692800.123457,\"uploadSpeed\":10},"
            "{\"id\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\",\"isRunning\":false,"
            "\"timestamp\":721692800.123457}]"_s);
        QCOMPARE(decodeSpeedTests(text, kMaxCount).value(), (std::vector {full, empty}));
    }

    void everyMicrosecondSurvives()
    {
        std::vector<SpeedTestResult> results;
        for (int i = 0; i < 1000; ++i)
            results.push_back({.id = kId, .timestamp = kTime + i * 1us});
        QCOMPARE(decodeSpeedTests(encodeSpeedTests(results).value(), 1000).value(), results);
    }

    void reads_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("count"); // -1: fails
        const auto row = [](const char* name, const QString& text, int count = -1) {
            QTest::newRow(name) << text << count;
        };
        const auto edited = [](const char* before, const char* after) {
            return u"["_s
                + QString(kMinimal).replace(QLatin1StringView(before), QLatin1StringView(after))
                + u']';
        };
        row("spaces", u" [ \n ] "_s, 0);
        row("lower-case", edited("E621E1F8", "e621e1f8"), 1);
        row("null", edited("\"timestamp\"", "\"pingAfter\":null,\"timestamp\""), 1);
        row("an unknown name", edited("\"timestamp\"", "\"x\":[{}],\"timestamp\""), 1);
        row("a number in the array", u"[1]"_s);
        row("no id", edited("\"id\"", "\"ie\""));
        row("time as text", edited(":0", ":\"0\""));
        row("a number too large", edited(":0", ":1e999"));
        row("isRunning as number", edited("false", "0"));
        row("speed as text", edited("\"timestamp\"", "\"uploadSpeed\":\"1\",\"timestamp\""));
        row("10,000", u"["_s + (kMinimal + u',').repeated(10'000).chopped(1) + u']', kMaxCount);
        row("far too long", u"["_s + (kMinimal + u',').repeated(60'000).chopped(1) + u']');
        row("deep", u"["_s.repeated(100'000));
    }
    void reads()
    {
        QFETCH(QString, text);
        QFETCH(int, count);
        const auto results = decodeSpeedTests(text, kMaxCount);
        QCOMPARE(results ? int(results.value().size()) : -1, count);
        QVERIFY(results || !results.failure().text.isEmpty());
    }

    void lagUnderLoad_data()
    {
        QTest::addColumn<Ping>("before");
        QTest::addColumn<Ping>("during");
        QTest::addColumn<QString>("figures"); // empty: no message
        QTest::newRow("example") << Ping(10) << Ping(35) << u"10ms to 35ms (3.5x)"_s;
        QTest::newRow("twice") << Ping(12) << Ping(24) << u""_s;
        QTest::newRow("halves") << Ping(2.5) << Ping(13.5) << u"2ms to 14ms (5.4x)"_s;
        QTest::newRow("from 0") << Ping(0) << Ping(4) << u"0ms to 4ms (infx)"_s;
        QTest::newRow("0 and 0") << Ping(0) << Ping(0) << u""_s;
        QTest::newRow("none during") << Ping(10) << Ping() << u""_s;
        constexpr double most = std::numeric_limits<double>::max();
        const QString digits = QString::number(most, 'f', 0);
        QTest::newRow("most") << Ping(1) << Ping(most) << u"1ms to %1ms (%1.0x)"_s.arg(digits);
    }
    void lagUnderLoad()
    {
        QFETCH(Ping, before);
        QFETCH(Ping, during);
        QFETCH(QString, figures);
        const SpeedTestResult result {.pingBefore = before, .pingDuring = during};
        const QString message = u"Lag under load: router ping spiked from %1 while maxing out your "
                                "connection. This causes lag for everyone else on the network "
                                "during heavy usage."_s;
        QCOMPARE(result.lagUnderLoadMessage().value_or(QString()),
            figures.isEmpty() ? QString() : message.arg(figures));
    }
};

NETVANE_TEST(TestSpeedTestJson)
#include "test_speed_test_json.moc"
