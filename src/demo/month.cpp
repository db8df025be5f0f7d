#include "demo/month.h"

#include "platform/platform.h"
#include "services/services.h"
#include "timeline/facts.h"
#include "windows/quick_views.h"

#include <QDateTime>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <random>

using namespace Qt::Literals::StringLiterals;

namespace netvane::demo {
namespace {

using timeline::Mark;
using timeline::Milliseconds;
using timeline::Minute;
using verdict::Cause;
using verdict::Severity;

constexpr Milliseconds kMinute = 60'000;
constexpr int kMinutesOfTrips = 120;
constexpr double kBusyShare = 0.7; ///< of the minutes of a weekday's evening

class Author {
public:
    Author(Milliseconds end, unsigned seed, int minutes)
        : m_random(seed)
        , m_begin((std::floor(end / kMinute) - minutes) * kMinute)
        , m_count(minutes)
    {
    }

    Month write()
    {
        for (int i = 0; i < m_count; ++i) {
            m_now = m_begin + i * kMinute;
            m_local = QDateTime::fromMSecsSinceEpoch(qint64(m_now));
            if (isAsleep())
                continue;
            drift();
            Minute minute = goodMinute();
            const bool isOut = m_now < m_outageEnd;
            if (isOut)
                breakDown(minute);
            else if (isBusyEvening() && share() < kBusyShare)
                slowDown(minute);
            else if (m_signal < -78)
                weaken(minute);
            m_month.minutes.push_back(minute);
            happen();
            if (i >= m_count - kMinutesOfTrips)
                send(minute);
        }
        return std::move(m_month);
    }

private:
    double share() { return std::uniform_real_distribution<double>(0, 1)(m_random); }
    double around(double middle, double spread)
    {
        return std::max(0.1, std::lognormal_distribution<double>(0, spread)(m_random) * middle);
    }
    bool isAsleep()
    {
        const int hour = m_local.time().hour();
        const bool isAsleep = hour >= 1 && hour < 7;
        if (isAsleep != m_wasAsleep && !m_month.minutes.empty())
            mark(Mark::Kind::System, isAsleep ? u"The computer went to sleep"_s : u"Awake again"_s);
        m_wasAsleep = isAsleep;
        return isAsleep;
    }
    bool isBusyEvening() const
    {
        const int hour = m_local.time().hour();
        return m_local.date().dayOfWeek() <= 5 && hour >= 19 && hour < 23;
    }
    void drift()
    {
        const double middle = m_room == 0 ? -52 : -68;
        m_signal += (middle - m_signal) * 0.15 + (share() - 0.5) * 4;
    }
    Minute goodMinute()
    {
        const double router = around(2.6, 0.15);
        const double line = router + around(7.5, 0.15);
        const double internet = line + around(6, 0.1);
        return {.at = m_now,
            .router = {router, around(router * 2.2, 0.3), share() < 0.01 ? 2.0 : 0.0},
            .line = {line, around(line * 1.6, 0.25), 0.0},
            .internet = {internet, around(internet * 1.5, 0.2), share() < 0.02 ? 5.0 : 0.0},
            .signalDbm = m_signal,
            .rateMbps = std::clamp(866 + (m_signal + 55) * 22 + (share() - 0.5) * 90, 24.0, 866.0),
            .cause = Cause::Healthy};
    }
    void slowDown(Minute& minute)
    {
        minute.line = {around(90, 0.3), around(260, 0.4), around(1.5, 0.6)};
        minute.internet = {*minute.line.medianMs + 6, *minute.line.farMs + 20, around(2, 0.6)};
        minute.cause = Cause::LineSlow;
        minute.severity = Severity::Poor;
    }
    void weaken(Minute& minute)
    {
        for (auto* path : {&minute.router, &minute.line, &minute.internet})
            *path = {*path->medianMs * 3, *path->farMs * 5, around(4, 0.4)};
        minute.cause = Cause::WeakSignal;
        minute.severity = Severity::Notice;
    }
    void breakDown(Minute& minute)
    {
        minute.internet = {{}, {}, 100.0};
        if (m_outageCause != Cause::DnsDead)
            minute.line = {{}, {}, 100.0};
        if (m_outageCause == Cause::RouterDead)
            minute.router = {{}, {}, 100.0};
        minute.cause = m_outageCause;
        minute.severity = Severity::Broken;
    }
    /// What may happen within the minute.
    void happen()
    {
        const Milliseconds at = m_now + share() * kMinute;
        if (m_local.time().minute() % 5 == 2) {
            m_month.marks.push_back({at, Mark::Kind::Scan, u"Another program scanned"_s});
            m_month.pauses.push_back({at, at + 3500, Mark::Kind::Scan});
        }
        if (share() < 1.0 / 180) {
            m_room = 1 - m_room;
            m_month.marks.push_back({at, Mark::Kind::Roam,
                m_room == 0 ? u"Changed to the access point 02:00:5e:10:00:01"_s
                            : u"Changed to the access point 02:00:5e:10:00:02"_s});
        }
        if (m_now >= m_outageEnd && share() < 1.0 / 2600)
            beginOutage(at);
    }
    /// The packets of the minute. Those that meet a scan are late.
    void send(const Minute& minute)
    {
        for (Milliseconds at = m_now; minute.internet.medianMs && at < m_now + kMinute;
             at += 3000) {
            const bool isLate = !m_month.pauses.empty() && at >= m_month.pauses.back().from
                && at <= m_month.pauses.back().to;
            m_month.trips.push_back(
                {at, around(*minute.internet.medianMs, 0.1) * (isLate ? 7 : 1)});
        }
    }
    void beginOutage(Milliseconds at)
    {
        constexpr std::array kCauses
            = {Cause::LineDown, Cause::LineDown, Cause::RouterDead, Cause::DnsDead};
        m_outageCause = kCauses.at(m_random() % kCauses.size());
        m_outageEnd = at + (0.5 + 14 * share() * share()) * kMinute;
        m_month.outages.push_back({at, m_outageEnd, m_outageCause});
    }
    void mark(Mark::Kind kind, const QString& text)
    {
        m_month.marks.push_back({m_now, kind, text});
    }

    std::mt19937 m_random;
    const Milliseconds m_begin;
    const int m_count;
    Milliseconds m_now = 0;
    QDateTime m_local;
    bool m_wasAsleep = false;
    double m_signal = -55;
    int m_room = 0;
    Milliseconds m_outageEnd = 0;
    Cause m_outageCause = Cause::LineDown;
    Month m_month;
};

/// Read on other threads while the user has it forgotten.
class MonthSource final : public timeline::Source {
public:
    MonthSource(Month month, const QString& network)
        : m_month(std::move(month))
        , m_network(network)
    {
    }

    timeline::Remembered remembered(const timeline::ChartRange& range) const override
    {
        const std::lock_guard lock(m_lock);
        const auto inRange = [&range](auto some) {
            std::erase_if(some,
                [&](const auto& each) { return each.at < range.from || each.at >= range.to; });
            return some;
        };
        return {inRange(m_month.minutes), inRange(m_month.marks), inRange(m_month.trips),
            m_month.pauses};
    }

    timeline::ProviderFacts facts(Milliseconds from, Milliseconds to) const override
    {
        const std::lock_guard lock(m_lock);
        return timeline::factsOf(m_month.minutes, m_month.outages, from, to);
    }

    bool isRecording() const override { return m_isRecording; }
    void setRecording(bool isRecording) override { m_isRecording = isRecording; }
    std::optional<QString> network() const override { return m_network; }
    void forgetNetwork() override { forgetEverything(); }
    void forgetEverything() override
    {
        const std::lock_guard lock(m_lock);
        m_month = {};
        m_network.reset();
    }

private:
    mutable std::mutex m_lock; ///< for the month
    Month m_month;
    std::optional<QString> m_network; ///< main thread
    bool m_isRecording = true;
};

} // namespace

Month month(Milliseconds end, unsigned seed, int minutes)
{
    return Author(end, seed, minutes).write();
}

std::shared_ptr<timeline::Source> monthSource(Month month, const QString& network)
{
    return std::make_shared<MonthSource>(std::move(month), network);
}

std::unique_ptr<app::DashboardViews> viewsWithMonth(
    const services::Services& services, const QMenu& menu, app::NotificationCenter& notifications)
{
    constexpr unsigned kSeed = 7;
    return windows::makeQuickViewsWith(services, menu, notifications,
        monthSource(
            month(timeline::millisecondsOf(services.platform.clock->now()), kSeed), u"Home"_s));
}

} // namespace netvane::demo
