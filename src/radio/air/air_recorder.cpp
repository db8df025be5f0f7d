#include "radio/air/air_recorder.h"

#include "base/background_work.h"
#include "radio/air/nl80211_air_reader.h"
#include "radio/radio_events.h"

#include <QSocketNotifier>
#include <QSysInfo>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {

using Events = base::Result<netlink::GenericEvents>;

namespace {

constexpr std::chrono::seconds kBetweenPasses {5};

std::shared_ptr<Events> openEvents()
{
    return std::make_shared<Events>(netlink::GenericEvents::open(NL80211_GENL_NAME,
        std::array {NL80211_MULTICAST_GROUP_MLME, NL80211_MULTICAST_GROUP_SCAN}, kRadioCommands));
}

} // namespace

AirRecorder::AirRecorder(base::Clock& clock, base::WorkQueue& queue)
    : m_clock(clock)
    , m_queue(queue)
    , m_recording(AirRecording {.origin = u"Linux "_s + QSysInfo::kernelVersion()})
{
}

AirRecorder::~AirRecorder() = default;

void AirRecorder::start(std::chrono::seconds duration)
{
    m_start = m_clock.monotonicNow();
    base::runInBackground(m_queue, this, openEvents,
        [this](const std::shared_ptr<Events>& events) { follow(events); });
    ask();
    m_passes = m_clock.repeat(kBetweenPasses, [this] { ask(); });
    m_end = m_clock.after(duration, [this] { finish(); });
}

void AirRecorder::ask()
{
    base::runInBackground(
        m_queue, this, [] { return readAirPass(InterfaceChoice(), {}); },
        [this](const base::Result<AirPass>& pass) {
            if (m_recording && pass) {
                m_recording.value().adapters = pass.value().adapters;
                keep(pass.value().messages);
            } else if (m_recording) {
                m_recording = pass.failure();
                finish();
            }
        });
}

void AirRecorder::follow(std::shared_ptr<Events> events)
{
    m_events = std::move(events);
    if (!*m_events)
        return; // the passes are of use without them
    m_notifier
        = std::make_unique<QSocketNotifier>(m_events->value().descriptor(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        m_events->value().receive([this](const netlink::GenericMessage& message) {
            keep({{std::uint8_t(message.command), bytesOf(message.attributes)}});
        });
    });
}

void AirRecorder::keep(AirMessages messages)
{
    const auto at
        = std::chrono::duration_cast<std::chrono::milliseconds>(m_clock.monotonicNow() - m_start);
    if (m_recording)
        m_recording.value().moments.push_back({at, std::move(messages)});
}

void AirRecorder::finish()
{
    if (!std::exchange(m_end, nullptr))
        return; // it is over already
    m_passes.reset();
    m_notifier.reset();
    Q_EMIT finished();
}

} // namespace netvane::radio
