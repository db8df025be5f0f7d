#include "timeline/recorded_source.h"

#include "history/recorder.h"
#include "timeline/facts.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::timeline {
namespace {

PathFigures figuresOf(const history::PathMinute& path)
{
    return {path.medianMs, path.farMs, path.lossPercent};
}

std::vector<Minute> minutesOf(const std::vector<history::Minute>& kept)
{
    std::vector<Minute> minutes;
    minutes.reserve(kept.size());
    QString lastName;
    std::optional<verdict::Cause> lastCause;
    for (const auto& minute : kept) {
        const QString name = minute.cause.value_or(QString());
        if (name != lastName) {
            lastName = name;
            lastCause = verdict::causeOf(name);
        }
        minutes.push_back({.at = Milliseconds(minute.at),
            .router = figuresOf(minute.router),
            .line = figuresOf(minute.line),
            .internet = figuresOf(minute.internet),
            .signalDbm = minute.signalDbm,
            .rateMbps = minute.sendMbps,
            .cause = lastCause,
            .severity = verdict::Severity(minute.severity)});
    }
    return minutes;
}

struct EventWords {
    QString kind;
    Mark::Kind mark;
    QString words; ///< before the event's own text
};
const EventWords* wordsOf(const QString& kind)
{
    static const std::vector<EventWords> kWords
        = {{u"connected"_s, Mark::Kind::Link, u"Connected"_s},
            {u"left"_s, Mark::Kind::Link, u"Connection ended"_s},
            {u"roamed"_s, Mark::Kind::Roam, u"Changed to the access point"_s},
            {u"sign-in-refused"_s, Mark::Kind::Link, u"Sign-in refused"_s},
            {u"scan"_s, Mark::Kind::Scan, u"Scan for networks"_s},
            {u"radio-off"_s, Mark::Kind::System, u"Wi-Fi switched off"_s},
            {u"radio-on"_s, Mark::Kind::System, u"Wi-Fi switched on"_s},
            {u"adapter-in"_s, Mark::Kind::System, u"Wi-Fi adapter plugged in"_s},
            {u"adapter-out"_s, Mark::Kind::System, u"Wi-Fi adapter removed"_s},
            {u"resumed"_s, Mark::Kind::System, u"Awake again after"_s},
            {u"clock-changed"_s, Mark::Kind::System, u"The clock was set"_s},
            {u"gateway"_s, Mark::Kind::Network, u"Another router"_s},
            {u"portal"_s, Mark::Kind::Network, u"The network wants a log-in"_s},
            {u"vpn-on"_s, Mark::Kind::Network, u"VPN on"_s},
            {u"vpn-off"_s, Mark::Kind::Network, u"VPN off"_s},
            {u"speed-test"_s, Mark::Kind::System, u"Speed test"_s}};
    const auto found = std::ranges::find(kWords, kind, &EventWords::kind);
    return found == kWords.end() ? nullptr : &*found;
}

std::vector<Mark> marksOf(const std::vector<history::Event>& events)
{
    std::vector<Mark> marks;
    for (const auto& event : events) {
        const auto* words = wordsOf(event.kind);
        if (!words)
            continue;
        QStringList text {words->words};
        if (words->mark == Mark::Kind::Roam)
            text.append(event.before.isEmpty() ? event.accessPoint
                                               : event.accessPoint + u" from "_s + event.before);
        else if (!event.text.isEmpty())
            text = {words->words + u": "_s + event.text};
        marks.push_back({Milliseconds(event.at), words->mark, text.join(u' ')});
    }
    return marks;
}

std::vector<RadioPause> pausesOf(const std::vector<history::Event>& events)
{
    std::vector<RadioPause> pauses;
    for (const auto& event : events) {
        const auto at = Milliseconds(event.at);
        if (event.kind == u"scan"_s)
            pauses.push_back({at, at + std::clamp(event.code.value_or(0), 0, 60'000)});
        else if (event.kind == u"roamed"_s)
            pauses.push_back({at, at, Mark::Kind::Roam});
    }
    return pauses;
}

std::vector<RoundTrip> tripsOf(const std::vector<history::Sample>& samples)
{
    std::vector<RoundTrip> trips;
    for (const auto& sample : samples) {
        if (sample.path == history::Path::Internet && sample.milliseconds)
            trips.push_back({Milliseconds(sample.at), *sample.milliseconds});
    }
    return trips;
}

class RecordedSource final : public Source {
public:
    explicit RecordedSource(history::Recorder& recorder)
        : m_recorder(recorder)
        , m_store(recorder.store())
    {
    }

    Remembered remembered(const ChartRange& range) const override
    {
        return m_store ? rememberedOf(*m_store, range.from, range.to) : Remembered();
    }
    ProviderFacts facts(Milliseconds from, Milliseconds to) const override
    {
        return m_store ? factsOf(*m_store, from, to) : ProviderFacts {.from = from, .to = to};
    }
    bool canRecord() const override { return m_store != nullptr; }
    bool isRecording() const override { return m_store && m_recorder.isRecording(); }
    void setRecording(bool isRecording) override { m_recorder.setRecording(isRecording); }
    std::optional<QString> network() const override
    {
        const QString& name = m_recorder.network();
        return name.isEmpty() ? std::nullopt : std::optional(name);
    }
    void forgetNetwork() override { m_recorder.forgetNetwork(); }
    void forgetEverything() override { m_recorder.forgetEverything(); }

private:
    history::Recorder& m_recorder;
    const std::shared_ptr<history::HistoryStore> m_store;
};

} // namespace

std::shared_ptr<Source> recordedSource(history::Recorder& recorder)
{
    return std::make_shared<RecordedSource>(recorder);
}

Remembered rememberedOf(history::HistoryStore& store, Milliseconds from, Milliseconds to)
{
    const auto batch
        = store.read(std::int64_t(from), std::int64_t(to), {.details = false, .outages = false});
    return {minutesOf(batch.minutes), marksOf(batch.events), tripsOf(batch.samples),
        pausesOf(batch.events)};
}

ProviderFacts factsOf(history::HistoryStore& store, Milliseconds from, Milliseconds to)
{
    const auto batch = store.read(std::int64_t(from), std::int64_t(to),
        {.details = false, .events = false, .samples = false});
    std::vector<Outage> outages;
    for (const auto& outage : batch.outages)
        outages.push_back({Milliseconds(outage.from), Milliseconds(outage.to),
            verdict::causeOf(outage.cause).value_or(verdict::Cause::Unsure)});
    return factsOf(minutesOf(batch.minutes), std::move(outages), from, to);
}

} // namespace netvane::timeline
