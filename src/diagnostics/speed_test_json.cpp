#include "diagnostics/speed_test_json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;
using std::chrono::system_clock;

namespace netvane::diagnostics {
namespace {

using Field = std::optional<double> SpeedTestResult::*;

struct NamedField {
    QLatin1StringView name;
    Field field;
};
constexpr NamedField kFields[] = {
    {"downloadSpeed"_L1, &SpeedTestResult::downloadSpeed},
    {"uploadSpeed"_L1, &SpeedTestResult::uploadSpeed},
    {"pingBefore"_L1, &SpeedTestResult::pingBefore},
    {"pingDuring"_L1, &SpeedTestResult::pingDuring},
    {"pingAfter"_L1, &SpeedTestResult::pingAfter},
};

constexpr auto kReferenceDate = std::chrono::sys_days(std::chrono::January / 1 / 2001);
constexpr double kFarthestSeconds = 8e9; // what system_clock holds on either side of the date
// Mbps and ms. A file can hold numbers of three hundred digits, and two of them make such a ratio.
constexpr double kGreatest = 1e6;
constexpr double kLeast = 1e-6;
constexpr qsizetype kLongestText
    = qsizetype(4) * 1024 * 1024; // twenty results are some 5,000 characters

/// In whole microseconds: finer than that, a double this far from the date only makes things up.
double toSeconds(system_clock::time_point time)
{
    const auto since = std::chrono::floor<std::chrono::microseconds>(time - kReferenceDate);
    return double(since.count()) / 1e6;
}

system_clock::time_point fromSeconds(double seconds)
{
    return kReferenceDate + std::chrono::microseconds(std::llround(seconds * 1e6));
}

std::optional<QUuid> uuidOf(const QJsonValue& value)
{
    const QString text = value.toString();
    const auto uuid = QUuid::fromString(text);
    // Qt reads more forms than the canonical one, and answers with a null one to the others.
    if (uuid.toString(QUuid::WithoutBraces).compare(text, Qt::CaseInsensitive) != 0)
        return {};
    return uuid;
}

bool isPossible(double value)
{
    return value == 0 || (value >= kLeast && value <= kGreatest);
}

/// False when there is something of another type.
bool readOptional(const QJsonValue& value, std::optional<double>& into)
{
    if (isPossible(value.toDouble(-1)))
        into = value.toDouble();
    return value.isDouble() || value.isUndefined() || value.isNull();
}

std::optional<SpeedTestResult> decode(const QJsonObject& object)
{
    const auto id = uuidOf(object["id"_L1]);
    const auto timestamp = object["timestamp"_L1];
    const auto isRunning = object["isRunning"_L1];
    if (!id || !timestamp.isDouble() || !isRunning.isBool()
        || !(std::abs(timestamp.toDouble()) < kFarthestSeconds))
        return {};
    SpeedTestResult result {
        .id = *id, .timestamp = fromSeconds(timestamp.toDouble()), .isRunning = isRunning.toBool()};
    const bool areRead = std::ranges::all_of(kFields, [&](const NamedField& named) {
        return readOptional(object[named.name], result.*named.field);
    });
    return areRead ? std::optional(result) : std::nullopt;
}

/// Absent when one of its numbers is infinite or none at all.
std::optional<QJsonObject> encode(const SpeedTestResult& result)
{
    QJsonObject object {
        {u"id"_s, result.id.toString(QUuid::WithoutBraces).toUpper()},
        {u"timestamp"_s, toSeconds(result.timestamp)},
        {u"isRunning"_s, result.isRunning},
    };
    for (const auto& [name, field] : kFields) {
        const auto& value = result.*field;
        if (!value)
            continue;
        if (!std::isfinite(*value))
            return {};
        object.insert(name, *value);
    }
    return object;
}

base::Failure failure(const QString& text)
{
    return {.kind = base::FailureKind::Other, .text = text};
}

} // namespace

base::Result<QString> encodeSpeedTests(const std::vector<SpeedTestResult>& results)
{
    QJsonArray array;
    for (const auto& result : results) {
        const auto object = encode(result);
        if (!object)
            return failure(u"A number is infinite or not a number"_s);
        array.append(*object);
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

base::Result<std::vector<SpeedTestResult>> decodeSpeedTests(const QString& text, size_t maxCount)
{
    if (text.size() > kLongestText)
        return failure(u"The text is too long"_s);
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (!document.isArray())
        return failure(
            error.error == QJsonParseError::NoError ? u"Not an array"_s : error.errorString());
    const auto array = document.array();
    std::vector<SpeedTestResult> results;
    for (qsizetype i = 0; i < std::min(array.size(), qsizetype(maxCount)); ++i) {
        const auto result = decode(array[i].toObject());
        if (!result)
            return failure(u"Entry %1 is not the result of a speed test"_s.arg(i));
        results.push_back(*result);
    }
    return results;
}

QString withSpeedTest(
    const SpeedTestResult& newest, const std::optional<QString>& stored, size_t maxCount)
{
    std::vector<SpeedTestResult> results {newest};
    if (const auto earlier = decodeSpeedTests(stored.value_or(u"[]"_s), maxCount - 1))
        results.insert(results.end(), earlier.value().begin(), earlier.value().end());
    const auto text = encodeSpeedTests(results);
    return text ? text.value() : stored.value_or(u"[]"_s);
}

} // namespace netvane::diagnostics
