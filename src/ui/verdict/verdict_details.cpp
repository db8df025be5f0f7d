#include "ui/verdict/verdict_details.h"

#include "base/background_work.h"
#include "base/visible_text.h"
#include "insights/verdict_text.h"
#include "platform/platform.h"
#include "services/services.h"
#include "verdict/verdict_service.h"

#include <QLocale>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

using TimePoint = std::chrono::system_clock::time_point;

QString linkSymbol(const verdict::ChainLink& link, size_t place)
{
    if (link.name == u"Cable"_s)
        return u"network"_s;
    constexpr std::array kSymbols
        = {"wifi"_L1, "wifi.router"_L1, "utility.pole"_L1, "globe"_L1, "text.magnifyingglass"_L1};
    return place < kSymbols.size() ? QString(kSymbols[place]) : QString();
}

Mark markOf(verdict::LinkState state)
{
    switch (state) {
    case verdict::LinkState::Fine:
        return mark::Fine;
    case verdict::LinkState::Bad:
        return mark::Poor;
    case verdict::LinkState::Broken:
        return mark::Broken;
    case verdict::LinkState::Unknown:
    case verdict::LinkState::NotReached:
        break;
    }
    return mark::Unknown;
}

/// The day only where it is another one.
QString clockTime(TimePoint time, TimePoint now)
{
    const QDateTime then = insights::localTime(time);
    const bool isToday = then.date() == insights::localTime(now).date();
    return QLocale::c().toString(then, isToday ? u"HH:mm"_s : u"ddd d MMM, HH:mm"_s);
}

} // namespace

ChainItem ChainItem::of(const verdict::ChainLink& link, size_t place)
{
    const Mark mark = markOf(link.state);
    return {.symbol = linkSymbol(link, place),
        .name = link.name,
        .word = link.word,
        .figure = link.figure,
        .mark = mark,
        .badge = mark == mark::Unknown ? QString() : symbolOf(mark),
        .isReached = link.state != verdict::LinkState::NotReached};
}

QString ChainItem::summary() const
{
    return figure.isEmpty() ? u"%1: %2"_s.arg(name, word) : u"%1: %2, %3"_s.arg(name, word, figure);
}

VerdictDetails::VerdictDetails(
    const services::Services& services, std::shared_ptr<timeline::Source> history)
    : VerdictState(services)
    , m_services(services)
    , m_history(std::move(history))
    , m_times(*services.platform.clock, [this] { tellTimes(); })
{
    connect(services.verdictService.get(), &verdict::VerdictService::evidenceChanged, this, [this] {
        if (isShown())
            follow();
    });
}

void VerdictDetails::setShown(bool isShown)
{
    if (m_times.isShown() == isShown)
        return;
    m_times.setShown(isShown);
    if (isShown) {
        follow();
        readHistory();
    }
    Q_EMIT isShownChanged();
}

void VerdictDetails::readHistory()
{
    if (!m_history)
        return;
    base::runInBackground(
        m_services.platform.queues->userInitiated, this,
        [history = m_history, now = timeline::millisecondsOf(m_services.platform.clock->now())] {
            return history->facts(now - timeline::kKept, now).week;
        },
        [this](const timeline::Week& week) {
            m_week = week;
            tellTimes();
        });
}

void VerdictDetails::follow()
{
    const auto& service = *m_services.verdictService;
    showAll(service.verdict(), m_services.platform.clock->monotonicNow() - service.weighedAt());
}

template <typename Value>
void VerdictDetails::show(Value& shown, const Value& current, void (VerdictDetails::*changed)())
{
    if (shown == current)
        return;
    shown = current;
    Q_EMIT(this->*changed)();
}

void VerdictDetails::showAll(
    const verdict::Verdict& verdict, std::chrono::steady_clock::duration passed)
{
    VerdictState::show(verdict);
    m_verdict = verdict;
    m_judgedAt = m_services.platform.clock->now()
        - std::chrono::duration_cast<std::chrono::system_clock::duration>(passed);
    QList<ChainItem> chain;
    for (const auto& link : verdict.chain)
        chain.append(ChainItem::of(link, size_t(chain.size())));
    show(m_chain, chain, &VerdictDetails::chainChanged);
    QList<DetailRow> evidence;
    for (const auto& item : verdict.evidence)
        evidence.append({base::withVisibleControls(item.text), insights::figureText(item)});
    show(m_evidence, evidence, &VerdictDetails::evidenceChanged);
    QList<DetailRow> others;
    for (const auto& [name, certainty] : insights::consideredCauses(verdict))
        others.append({name, certainty});
    show(m_others, others, &VerdictDetails::othersChanged);
    tellTimes();
}

void VerdictDetails::tellTimes()
{
    using namespace std::chrono_literals;
    const TimePoint now = m_services.platform.clock->now();
    std::vector<TimePoint> times;
    QStringList ages;
    for (const auto& item : m_verdict.evidence) {
        const std::chrono::duration<double> age(item.ageSeconds);
        times.push_back(m_judgedAt - std::chrono::duration_cast<TimePoint::duration>(age));
        ages.append(now - times.back() < 1s ? u"now"_s : m_times.text(times.back()));
    }
    QString since;
    if (m_verdict.since != TimePoint()) {
        times.push_back(m_verdict.since);
        since = u"Since %1 (%2)"_s.arg(
            clockTime(m_verdict.since, now), m_times.text(m_verdict.since));
        const QString again = m_verdict.severity >= verdict::Severity::Poor
            ? timeline::recurrence(
                m_week, insights::localTime(now).time().hour(), verdict::segmentOf(m_verdict.cause))
            : QString();
        if (!again.isEmpty())
            since += u", "_s + again;
    }
    if (ages != m_ages || since != m_since) {
        m_ages = ages;
        m_since = since;
        Q_EMIT timesChanged();
    }
    m_times.follow(times);
}

void VerdictDetails::copy()
{
    auto& clock = *m_services.platform.clock;
    m_services.platform.clipboard->setText(
        insights::verdictText(m_verdict, clock.now() - m_judgedAt));
    m_copied = clock.after(copiedTime, [this] {
        m_copied.reset();
        Q_EMIT isCopiedChanged();
    });
    Q_EMIT isCopiedChanged();
}

} // namespace netvane::ui
