#include "ui/air/air_state.h"

#include "air/link_words.h"
#include "air/roaming.h"
#include "base/background_work.h"
#include "base/visible_text.h"
#include "diagnostics/channel_analysis_service.h"
#include "platform/platform.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::ui {
namespace {

using diagnostics::ChannelAnalysisService;
using platform::AirReading;

/// Counters are compared over this time or up to twice as much.
constexpr std::chrono::milliseconds kCompared = 10s;
constexpr timeline::Milliseconds kMovesShown = 24 * 3600'000.0;
constexpr int kMostMoves = 50;

QString networkCount(size_t count)
{
    return count == 1 ? u"one network"_s : u"%1 networks"_s.arg(count);
}

} // namespace

AirState::AirState(const services::Services& services, std::shared_ptr<timeline::Source> history)
    : m_services(services)
    , m_history(std::move(history))
{
    const auto* scans = m_services.channelAnalysisService.get();
    connect(scans, &ChannelAnalysisService::isScanningChanged, this, &AirState::scanChanged);
    connect(scans, &ChannelAnalysisService::problemChanged, this, &AirState::scanChanged);
    connect(m_services.locationPermissionService.get(),
        &wifi::LocationPermissionService::authorizationStatusChanged, this, &AirState::scanChanged);
    // The kernel forgets what a scan found within half a minute.
    connect(scans, &ChannelAnalysisService::lastScanTimeChanged, this, [this] {
        if (isShown())
            read();
    });
    tell();
}

AirState::~AirState() = default;

void AirState::setShown(bool isShown)
{
    if (this->isShown() == isShown)
        return;
    m_refresh.reset();
    if (isShown) {
        m_refresh = m_services.platform.clock->repeat(readInterval, [this] { read(); });
        read();
        readMoves();
    }
    Q_EMIT isShownChanged();
}

bool AirState::isScanning() const
{
    return m_services.channelAnalysisService->isScanning();
}

QString AirState::scanNote() const
{
    if (!m_services.locationPermissionService->isAuthorized())
        return u"The system does not allow this user to scan."_s;
    const auto& problem = m_services.channelAnalysisService->problem();
    return problem ? *problem + u'.' : QString();
}

void AirState::scan()
{
    m_services.channelAnalysisService->scanNetworks();
}

/// What another adapter hears is another table.
void AirState::setAdapter(const QString& adapter)
{
    if (m_adapter == adapter)
        return;
    m_adapter = adapter;
    m_heard = {};
    Q_EMIT adapterChanged();
    read();
}

void AirState::read()
{
    if (std::exchange(m_isReading, true))
        return;
    base::runInBackground(
        m_services.platform.queues->utility, this,
        [reader = m_services.platform.airReader, name = m_adapter] { return reader->read(name); },
        [this, name = m_adapter](const base::Result<AirReading>& reading) {
            m_isReading = false;
            if (name == m_adapter)
                take(reading);
            else
                read();
        });
}

void AirState::take(const base::Result<AirReading>& reading)
{
    m_problem.clear();
    if (!reading) {
        m_problem = base::withVisibleControls(reading.failure().text) + u'.';
        m_reading = {};
        m_change = {};
    } else {
        m_reading = reading.value();
        m_heard.add(m_reading);
        m_change = platform::changeBetween(m_before, m_reading);
        if (m_reading.at - m_between.at >= kCompared) {
            m_before = std::exchange(m_between, m_reading);
            if (!m_before.link)
                m_before = m_reading;
        }
    }
    tell();
}

void AirState::tell()
{
    m_link.clear();
    for (const auto& [title, text] : air::linkLines(m_reading, m_change))
        m_link.append({title, base::withVisibleControls(text)});
    m_adapters.clear();
    for (const auto& adapter : m_reading.adapters)
        m_adapters.append({base::withVisibleControls(adapter.name),
            base::withVisibleControls(air::adapterText(adapter))});
    if (m_problem.isEmpty() && networks().empty())
        m_problem = u"Nothing was heard yet: the list fills when a program scans, or with the "
                    "button Scan."_s;
    m_table.show(networks());
    tellBands();
    tellRoaming();
    Q_EMIT changed();
}

void AirState::tellBands()
{
    const auto scanned = m_services.channelAnalysisService->lastScanTime();
    const air::Surroundings around {.networks = networks(),
        .channels = channels(),
        .change = m_change,
        .wasScanned = m_adapter.isEmpty() && scanned
            && m_services.platform.clock->now() - *scanned <= air::kFresh};
    m_bands.clear();
    for (const auto band : air::kBands) {
        const auto isInBand = [band](std::uint32_t mhz) { return platform::bandOf(mhz) == band; };
        const auto heard = size_t(std::ranges::count_if(networks(), [&](const auto& network) {
            return network.span && isInBand(network.span->primaryMhz);
        }));
        const bool isKnown = std::ranges::any_of(
            channels(), [&](const auto& channel) { return isInBand(channel.frequencyMhz); });
        if (heard == 0 && !isKnown)
            continue;
        const QString name = air::bandName(band);
        m_bands.append({.band = int(band),
            .name = name,
            .advice = air::sentence(air::adviseChannel(band, around)),
            .summary = u"%1: %2"_s.arg(name, networkCount(heard))});
    }
}

void AirState::tellRoaming()
{
    m_roaming = m_reading.link ? air::sentence(air::betterAccessPoint(*m_reading.link, networks()))
                               : u"There is no link."_s;
}

void AirState::readMoves()
{
    if (!m_history)
        return;
    const auto now = timeline::millisecondsOf(m_services.platform.clock->now());
    base::runInBackground(
        m_services.platform.queues->utility, this,
        [history = m_history, now] {
            // Of the minutes, which are not used, one is enough.
            return history->remembered({now - kMovesShown, now, kMovesShown}).marks;
        },
        [this](const std::vector<timeline::Mark>& marks) {
            m_moves.clear();
            for (auto mark = marks.rbegin(); mark != marks.rend(); ++mark) {
                if (mark->kind == timeline::Mark::Kind::Roam && m_moves.size() < kMostMoves)
                    m_moves.append({base::withVisibleControls(mark->text),
                        timeline::timeText(mark->at, true)});
            }
            Q_EMIT movesChanged();
        });
}

} // namespace netvane::ui
