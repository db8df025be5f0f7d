#include "history/recorder.h"

#include "base/background_work.h"
#include "base/log.h"
#include "history/event_words.h"
#include "platform/platform.h"
#include "verdict/verdict_service.h"

#include <algorithm>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::history {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.history")

const QString kRecordingKey = u"netvane.history.recording"_s;
constexpr auto kFlushInterval = 10min;
constexpr auto kAround = 5min; // samples before and after the begin of a fault
constexpr auto kAroundSpike = 1min;
constexpr size_t kRecentSamples = 400; // somewhat more than five minutes of three paths
constexpr int kSamplesADay = 15'000;
constexpr Milliseconds kClockJump = 2000; // of the clock against the monotonic one

struct Source {
    verdict::Outcomes verdict::Evidence::*outcomes;
    std::optional<Path> path; ///< absent: only tells whether the internet answers
};
const Source kSources[]
    = {{&verdict::Evidence::router, Path::Router}, {&verdict::Evidence::secondHop, Path::Line},
        {&verdict::Evidence::internet, Path::Internet}, {&verdict::Evidence::internet6, {}},
        {&verdict::Evidence::otherHosts, {}}, {&verdict::Evidence::lookups, {}}};

} // namespace

/// What was seen last, so that changes are told.
struct Recorder::State {
    Milliseconds minute = 0; ///< that is being measured
    Milliseconds clockOffset = 0; ///< wall clock less monotonic clock
    std::chrono::milliseconds asleep {};
    std::array<verdict::TimePoint, std::size(kSources)> taken {}; ///< the last outcome of each
    verdict::TimePoint link; ///< the last reading of it
    std::optional<bool> radioOn;
    std::optional<bool> hasAdapter;
    std::optional<QString> gateway;
    std::optional<bool> isThroughVpn;
    verdict::Cause cause = verdict::Cause::Unsure;
    verdict::Severity severity = verdict::Severity::Fine;
    std::optional<double> usualMs; ///< of the internet, slowly following
};

Recorder::Recorder(platform::Platform& platform, const verdict::VerdictService& verdicts)
    : m_platform(platform)
    , m_clock(*platform.clock)
    , m_verdicts(verdicts)
    , m_isRecording(platform.userDefaults->boolean(kRecordingKey).value_or(true))
    , m_flushedAt(m_clock.monotonicNow())
{
    if (platform.historyFile.isEmpty())
        return;
    m_store = std::make_shared<HistoryStore>(platform.historyFile);
    connect(&verdicts, &verdict::VerdictService::evidenceChanged, this, &Recorder::take);
    if (platform.radioMonitor)
        connect(platform.radioMonitor.get(), &platform::RadioMonitor::happened, this,
            &Recorder::takeRadio);
}

Recorder::~Recorder()
{
    if (!m_store || !m_isRecording)
        return;
    m_outages.interrupt();
    finishMinute(0);
    if (const auto problem = m_store->flush(); !problem.isEmpty() && problem != m_lastProblem)
        base::log(logCategory(), u"History: could not be stored: "_s + problem);
}

void Recorder::setRecording(bool isRecording)
{
    if (isRecording == m_isRecording)
        return;
    m_isRecording = isRecording;
    m_platform.userDefaults->setBoolean(kRecordingKey, isRecording);
    m_state.reset();
    m_minute = {};
    m_outages = {};
    m_batch = {};
    m_recent.clear();
    Q_EMIT isRecordingChanged();
}

void Recorder::forgetNetwork()
{
    if (!m_store)
        return;
    m_store->forgetNetwork(m_network);
    flush();
}

void Recorder::forgetEverything()
{
    if (!m_store)
        return;
    m_batch = {};
    m_recent.clear();
    m_store->forgetEverything();
    flush();
}

Milliseconds Recorder::wallAt(verdict::TimePoint at) const
{
    using std::chrono::duration_cast;
    const auto ago = duration_cast<std::chrono::milliseconds>(m_clock.monotonicNow() - at);
    const auto now = duration_cast<std::chrono::milliseconds>(m_clock.now().time_since_epoch());
    return (now - ago).count();
}

void Recorder::take()
{
    if (!m_isRecording)
        return;
    takeClock();
    takeOutcomes();
    takeChanges();
    const auto now = wallAt(m_clock.monotonicNow());
    if (now / kMinute != m_state->minute / kMinute)
        finishMinute(now);
}

/// Sleep stops the monotonic clock, and whoever sets the clock moves the other one.
void Recorder::takeClock()
{
    using std::chrono::duration_cast;
    const auto monotonic = m_clock.monotonicNow();
    const auto wall = wallAt(monotonic);
    const Milliseconds offset
        = wall - duration_cast<std::chrono::milliseconds>(monotonic.time_since_epoch()).count();
    const auto asleep = m_clock.timeAsleep();
    if (!m_state) {
        m_state = std::make_unique<State>();
        m_state->minute = wall;
    } else if (base::hasSlept(m_state->asleep, asleep)) {
        m_outages.interrupt();
        finishMinute(wall);
        const auto slept = duration_cast<std::chrono::seconds>(asleep - m_state->asleep);
        addEvent({.at = wall, .kind = u"resumed"_s, .text = u"%1 s"_s.arg(slept.count())});
    } else if (std::llabs(offset - m_state->clockOffset) > kClockJump) {
        m_outages.interrupt();
        finishMinute(wall);
        addEvent({.at = wall, .kind = u"clock-changed"_s});
    }
    m_state->clockOffset = offset;
    m_state->asleep = asleep;
}

void Recorder::takeOutcomes()
{
    const auto& evidence = m_verdicts.evidence();
    for (size_t i = 0; i < std::size(kSources); ++i) {
        const auto& source = kSources[i];
        for (const auto& outcome : evidence.*source.outcomes) {
            if (outcome.at <= m_state->taken[i])
                continue;
            m_state->taken[i] = outcome.at;
            if (source.outcomes == &verdict::Evidence::lookups)
                m_minute.addLookup(outcome);
            else if (source.path)
                takeSample(*source.path, outcome);
            else if (outcome.milliseconds)
                m_outages.takeInternet(wallAt(outcome.at), true);
        }
    }
    for (const auto& link : evidence.links) {
        if (link.at <= m_state->link)
            continue;
        m_state->link = link.at;
        m_minute.addLink(link.value);
        m_network = link.value.ssid.value_or(QString());
    }
    m_minute.addVerdict(m_verdicts.verdict());
}

void Recorder::takeSample(Path path, const verdict::Outcome& outcome)
{
    m_minute.addProbe(path, outcome);
    const Sample sample {wallAt(outcome.at), path, outcome.milliseconds};
    if (path == Path::Internet)
        m_outages.takeInternet(sample.at, outcome.milliseconds.has_value());
    else if (path == Path::Line)
        m_outages.takeLine(sample.at, outcome.milliseconds.has_value());
    keep(sample);
    if (path != Path::Internet || !outcome.milliseconds)
        return;
    auto& usual = m_state->usualMs;
    const double time = *outcome.milliseconds;
    if (usual && time > std::max(kSpikeFactor * *usual, kLeastSpikeMs))
        beginIncident(kAroundSpike, kAroundSpike);
    else
        usual = usual ? *usual + (time - *usual) * 0.1 : time;
}

void Recorder::keep(const Sample& sample)
{
    if (m_clock.monotonicNow() < m_keepUntil && m_samplesToday < kSamplesADay) {
        m_batch.samples.push_back(sample);
        ++m_samplesToday;
        return;
    }
    m_recent.push_back(sample);
    if (m_recent.size() > kRecentSamples)
        m_recent.pop_front();
}

/// From now on single probes are kept, and those before, too.
void Recorder::beginIncident(std::chrono::milliseconds before, std::chrono::milliseconds after)
{
    const auto now = m_clock.monotonicNow();
    m_keepUntil = std::max(m_keepUntil, now + after);
    const auto from = wallAt(now - before);
    for (const auto& sample : std::exchange(m_recent, {})) {
        if (sample.at >= from && m_samplesToday < kSamplesADay) {
            m_batch.samples.push_back(sample);
            ++m_samplesToday;
        }
    }
}

void Recorder::takeChanges()
{
    const auto& evidence = m_verdicts.evidence();
    const auto& verdict = m_verdicts.verdict();
    // Tells of a change, but not of what was so at the start.
    const auto follow
        = [this](auto& last, const auto& now, const QString& kind, const QString& text = {}) {
              if (last && now && *last != *now)
                  note(kind, text);
              if (now)
                  last = now;
          };
    const auto& radioOn = evidence.radioOn;
    follow(m_state->radioOn, radioOn, radioOn.value_or(false) ? u"radio-on"_s : u"radio-off"_s);
    if (evidence.network) {
        const auto& network = evidence.network->value;
        const std::optional hasAdapter(
            std::ranges::any_of(network.interfaces, &platform::NetworkInterface::isWireless));
        follow(m_state->hasAdapter, hasAdapter, *hasAdapter ? u"adapter-in"_s : u"adapter-out"_s);
        const std::optional gateway(
            network.physicalRoute ? network.physicalRoute->gateway : QString());
        follow(m_state->gateway, gateway, u"gateway"_s, *gateway);
        const std::optional isThroughVpn(network.route4 && network.route4->isThroughTunnel);
        follow(m_state->isThroughVpn, isThroughVpn, *isThroughVpn ? u"vpn-on"_s : u"vpn-off"_s);
    }
    if (verdict.cause != m_state->cause && verdict.cause != verdict::Cause::Unsure) {
        m_state->cause = verdict.cause;
        addEvent({.at = wallAt(m_clock.monotonicNow()),
            .kind = u"verdict"_s,
            .text = identifier(verdict.cause)});
    }
    if (verdict.severity >= verdict::Severity::Poor) {
        m_outages.takeCause(identifier(verdict.cause));
        if (m_state->severity < verdict::Severity::Poor)
            beginIncident(kAround, kAround);
    }
    m_state->severity = verdict.severity;
}

void Recorder::takeRadio(const platform::RadioEvent& event)
{
    if (!m_isRecording)
        return;
    using Kind = platform::RadioEvent::Kind;
    if (event.kind == Kind::ScanEnded) { // a scan is one event, with its length
        const auto scan = std::ranges::find(
            m_batch.events.rbegin(), m_batch.events.rend(), u"scan"_s, &Event::kind);
        if (scan != m_batch.events.rend() && !scan->code)
            scan->code = int(std::clamp<Milliseconds>(wallAt(event.at) - scan->at, 0, kMinute));
        return;
    }
    Event kept {.at = wallAt(event.at),
        .kind = kindOf(event.kind),
        .code = event.code,
        .accessPoint = event.bssid.value_or(QString())};
    const auto& links = m_verdicts.evidence().links;
    if (!links.empty() && links.back().value.ssid) {
        kept.signalDbm = links.back().value.signalDbm;
        if (event.kind == Kind::Roamed)
            kept.before = links.back().value.bssid.value_or(QString());
    }
    if (event.kind == Kind::Disconnected && event.code)
        kept.text = (event.byAccessPoint ? u"The access point ended it: "_s : QString())
            + reasonText(*event.code);
    addEvent(std::move(kept));
}

void Recorder::note(const QString& kind, const QString& text)
{
    addEvent({.at = wallAt(m_clock.monotonicNow()), .kind = kind, .text = text});
}

void Recorder::addEvent(Event event)
{
    constexpr size_t kMost = 200; // a minute; a flood of events is no history
    if (m_store && m_isRecording && m_batch.events.size() < kMost)
        m_batch.events.push_back(std::move(event));
}

void Recorder::finishMinute(Milliseconds next)
{
    if (!m_state)
        return;
    if (const auto minute = m_minute.finish(m_state->minute / kMinute * kMinute, m_network))
        m_batch.minutes.push_back(*minute);
    m_batch.outages = m_outages.take();
    m_store->add(std::exchange(m_batch, {}));
    constexpr Milliseconds kDay = kMinute * 60 * 24;
    if (next / kDay != m_state->minute / kDay)
        m_samplesToday = 0;
    m_state->minute = next;
    if (next != 0 && m_clock.monotonicNow() - m_flushedAt >= kFlushInterval)
        flush();
}

void Recorder::flush()
{
    m_flushedAt = m_clock.monotonicNow();
    base::runInBackground(
        m_platform.queues->utility, this, [store = m_store] { return store->flush(); },
        [this](const QString& problem) {
            if (!problem.isEmpty() && problem != m_lastProblem)
                base::log(logCategory(), u"History: could not be stored: "_s + problem);
            m_lastProblem = problem;
        },
        {m_clock, base::Delivery::Batched});
}

} // namespace netvane::history
