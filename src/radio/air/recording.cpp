#include "radio/air/recording.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <linux/nl80211.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

platform::AirAdapter adapterOf(const QJsonObject& object)
{
    const auto text = [&object](const QString& name) {
        return object.contains(name) ? std::optional(object[name].toString()) : std::nullopt;
    };
    const auto state
        = std::clamp(object[u"state"_s].toInt(), 0, int(platform::AirAdapter::State::Off));
    return {.name = object[u"interface"_s].toString(),
        .state = platform::AirAdapter::State(state),
        .isUsed = object[u"used"_s].toBool(),
        .driver = text(u"driver"_s),
        .driverVersion = text(u"driverVersion"_s),
        .firmware = text(u"firmware"_s)};
}

QJsonObject objectOf(const platform::AirAdapter& adapter)
{
    QJsonObject object {{u"interface"_s, adapter.name}, {u"used"_s, adapter.isUsed},
        {u"state"_s, int(adapter.state)}};
    for (const auto& [name, text] : {std::pair(u"driver"_s, adapter.driver),
             {u"driverVersion"_s, adapter.driverVersion}, {u"firmware"_s, adapter.firmware}}) {
        if (text)
            object.insert(name, *text);
    }
    return object;
}

} // namespace

QByteArray recordingText(const AirRecording& recording)
{
    QJsonArray adapters;
    for (const auto& adapter : recording.adapters)
        adapters.append(objectOf(adapter));
    QJsonArray moments;
    for (const auto& moment : recording.moments) {
        QJsonArray messages;
        for (const auto& message : moment.messages)
            messages.append(QJsonObject {{u"command"_s, message.command},
                {u"attributes"_s, QString::fromLatin1(message.attributes.toHex())}});
        moments.append(
            QJsonObject {{u"atMs"_s, qint64(moment.at.count())}, {u"messages"_s, messages}});
    }
    return QJsonDocument(
        QJsonObject {{u"schema"_s, u"netvane.recording/1"_s}, {u"origin"_s, recording.origin},
            {u"adapters"_s, adapters}, {u"moments"_s, moments}})
        .toJson();
}

std::optional<AirRecording> recordingOf(const QByteArray& text)
{
    const auto whole = QJsonDocument::fromJson(text).object();
    if (whole[u"schema"_s].toString() != u"netvane.recording/1"_s)
        return {};
    AirRecording recording {.origin = whole[u"origin"_s].toString()};
    for (const auto& adapter : whole[u"adapters"_s].toArray())
        recording.adapters.push_back(adapterOf(adapter.toObject()));
    for (const auto& each : whole[u"moments"_s].toArray()) {
        const auto object = each.toObject();
        AirRecording::Moment moment {
            .at = std::chrono::milliseconds(qint64(object[u"atMs"_s].toDouble()))};
        for (const auto& one : object[u"messages"_s].toArray()) {
            const auto message = one.toObject();
            const int command = message[u"command"_s].toInt(-1);
            if (command >= 0 && command <= 255)
                moment.messages.push_back({std::uint8_t(command),
                    QByteArray::fromHex(message[u"attributes"_s].toString().toLatin1())});
        }
        recording.moments.push_back(std::move(moment));
    }
    return recording;
}

platform::AirReading readingAt(const AirRecording& recording, size_t moment)
{
    auto reading = airReading(recording.moments.at(moment).messages);
    reading.at = std::chrono::steady_clock::time_point(recording.moments.at(moment).at);
    reading.adapters = recording.adapters;
    return reading;
}

std::vector<size_t> passesOf(const AirRecording& recording)
{
    std::vector<size_t> passes;
    for (size_t i = 0; i < recording.moments.size(); ++i) {
        if (std::ranges::count(recording.moments[i].messages,
                std::uint8_t(NL80211_CMD_GET_INTERFACE), &AirMessage::command)
            > 0)
            passes.push_back(i);
    }
    return passes;
}

} // namespace netvane::radio
