#include "diagnostics/speed_test_json.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane::diagnostics;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Ping = std::optional<double>;

constexpr size_t kMaxCount = 20;
constexpr auto kTime = std::chrono::system_clock::time_point(1'700'000'000'123'457us);
const QUuid kId = QUuid::fromString(u"e621e1f8-c36c-495a-93fc-0c247a3e6e5f"_s);

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
            .pingDuring = 1e-6,
            .pingAfter = 3.1};
        const SpeedTestResult empty {.id = kId, .timestamp = kTime};
        const auto text = encodeSpeedTests({full, empty}).value();
        QCOMPARE(text,
            u"[{\"downloadSpeed\":93.25,\"id\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\","
            "\"isRunning\":false,\"pingAfter\":3.1,\"pingBefore\":0.5,\"pingDuring\":1e-06,"
            "\"timestamp\":721692800.123457,\"uploadSpeed\":10},"
            "{\"id\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\",\"isRunning\":false,"
            "\"timestamp\":721692800.123457}]"_s);
        QCOMPARE(decodeSpeedTests(text, kMaxCount).value(), (std::vector {full, empty}));
        const auto impossible = QString(text).replace(u"93.25"_s, u"1e308"_s);
        QVERIFY(!decodeSpeedTests(impossible, kMaxCount).value().front().downloadSpeed);
    }

    void lagUnderLoad()
    {
        const std::tuple<Ping, Ping, QString> rows[]
            = {{10, 35, u"10ms to 35ms (3.5x)"_s}, {12, 24, {}}, {0, 4, u"0ms to 4ms (infx)"_s},
                {10, {}, {}}, {std::nullopt, 41, {}}, {0, 0, {}}};
        for (const auto& [before, during, figures] : rows) {
            const SpeedTestResult result {.pingBefore = before, .pingDuring = during};
            const QString message
                = u"Lag under load: router ping spiked from %1 while maxing out your connection. "
                  "This causes lag for everyone else on the network during heavy usage."_s;
            QCOMPARE(result.lagUnderLoadMessage().value_or(QString()),
                figures.isEmpty() ? QString() : message.arg(figures));
        }
    }
};

NETVANE_TEST(TestSpeedTestJson)
#include "test_speed_test_json.moc"
