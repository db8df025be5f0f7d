#include "report/history_text.h"

#include "report/verdict_object.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {
namespace {

using history::Batch;
using history::Minute;

using Row = QList<std::pair<QString, QJsonValue>>;

template <typename Value>
QJsonValue valueOf(const std::optional<Value>& value)
{
    if constexpr (std::is_floating_point_v<Value>)
        return value ? QJsonValue(rounded(*value)) : QJsonValue();
    else
        return value ? QJsonValue(*value) : QJsonValue();
}

QString timeOf(history::Milliseconds at)
{
    return timeText(std::chrono::system_clock::time_point(std::chrono::milliseconds(at)));
}

void addPath(Row& row, const QString& name, const history::PathMinute& path)
{
    row.append({name + u"Ms"_s, valueOf(path.medianMs)});
    row.append({name + u"P95Ms"_s, valueOf(path.farMs)});
    row.append({name + u"JitterMs"_s, valueOf(path.jitterMs)});
    row.append({name + u"LossPercent"_s, valueOf(path.lossPercent)});
}

/// All fields, in their order; null for what is absent.
Row rowOf(const Minute& minute, bool redact)
{
    constexpr std::array kSeverities = {"fine"_L1, "notice"_L1, "poor"_L1, "broken"_L1};
    Row row {{u"at"_s, timeOf(minute.at)}};
    if (!redact)
        row.append({u"network"_s, minute.network.isEmpty() ? QJsonValue() : minute.network});
    addPath(row, u"router"_s, minute.router);
    addPath(row, u"line"_s, minute.line);
    addPath(row, u"internet"_s, minute.internet);
    row.append({{u"signalDbm"_s, valueOf(minute.signalDbm)},
        {u"leastSignalDbm"_s, valueOf(minute.leastSignalDbm)},
        {u"noiseDbm"_s, valueOf(minute.noiseDbm)}, {u"sendMbps"_s, valueOf(minute.sendMbps)},
        {u"receiveMbps"_s, valueOf(minute.receiveMbps)}, {u"lookupMs"_s, valueOf(minute.lookupMs)},
        {u"failedLookups"_s, valueOf(minute.failedLookups)},
        {u"retries"_s, valueOf(minute.retries)}, {u"failed"_s, valueOf(minute.failed)},
        {u"cause"_s, valueOf(minute.cause)},
        {u"severity"_s,
            minute.cause ? QJsonValue(QString(kSeverities.at(size_t(minute.severity))))
                         : QJsonValue()}});
    return row;
}

QJsonObject objectOf(const Row& row)
{
    QJsonObject object;
    for (const auto& [name, value] : row) {
        if (!value.isNull())
            object.insert(name, value);
    }
    return object;
}

/// A text in quotes, so that a name with a comma stays one value; and none that a spreadsheet
/// would take for a formula.
QString cellOf(const QJsonValue& value)
{
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', 10);
    QString text = value.toString();
    if (!text.isEmpty() && u"=+-@\t\r"_s.contains(text.front()))
        text.prepend(u'\'');
    return text.isEmpty() ? QString() : u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

} // namespace

QByteArray historyJson(const Batch& batch, bool redact)
{
    QJsonArray minutes;
    for (const auto& minute : batch.minutes)
        minutes.append(objectOf(rowOf(minute, redact)));
    QJsonArray events;
    for (const auto& event : batch.events) {
        Row row {{u"at"_s, timeOf(event.at)}, {u"kind"_s, event.kind},
            {u"code"_s, valueOf(event.code)}, {u"signalDbm"_s, valueOf(event.signalDbm)}};
        const auto add = [&row](const QString& name, const QString& text) {
            row.append({name, text.isEmpty() ? QJsonValue() : text});
        };
        if (!redact || event.kind != u"gateway"_s)
            add(u"text"_s, event.text);
        if (!redact) {
            add(u"accessPoint"_s, event.accessPoint);
            add(u"before"_s, event.before);
        }
        events.append(objectOf(row));
    }
    QJsonArray outages;
    for (const auto& outage : batch.outages)
        outages.append(objectOf({{u"from"_s, timeOf(outage.from)}, {u"to"_s, timeOf(outage.to)},
            {u"cause"_s, outage.cause.isEmpty() ? QJsonValue() : outage.cause}}));
    return QJsonDocument({{u"schema"_s, u"netvane.history/1"_s}, {u"minutes"_s, minutes},
                             {u"events"_s, events}, {u"outages"_s, outages}})
        .toJson();
}

QByteArray historyCsv(const Batch& batch, bool redact)
{
    QString text;
    const auto addLine = [&text](const Row& row, bool isHead) {
        QStringList cells;
        for (const auto& [name, value] : row)
            cells.append(isHead ? name : cellOf(value));
        text += cells.join(u',') + u"\r\n"_s;
    };
    addLine(rowOf({}, redact), true);
    for (const auto& minute : batch.minutes)
        addLine(rowOf(minute, redact), false);
    return text.toUtf8();
}

} // namespace netvane::report
