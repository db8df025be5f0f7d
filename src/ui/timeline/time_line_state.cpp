#include "ui/timeline/time_line_state.h"

#include "base/background_work.h"
#include "insights/verdict_text.h"
#include "platform/platform.h"
#include "services/services.h"
#include "timeline/outages.h"
#include "ui/timeline/history_pages.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::ui {
namespace {

using timeline::Chart;
using timeline::Lane;
using timeline::Milliseconds;

constexpr Milliseconds kMinute = 60'000;
constexpr Milliseconds kHour = 60 * kMinute;
constexpr Milliseconds kDay = 24 * kHour;
constexpr std::array<Milliseconds, 5> kRanges = {15 * kMinute, kHour, kDay, 7 * kDay, 30 * kDay};
constexpr int kFirstRange = 2;
/// As often as there is something new.
constexpr std::chrono::milliseconds kRefresh = 60s;
/// More points than pixels show nothing more.
constexpr double kMostPoints = 700;
constexpr int kTableRows = 48;

QString valueText(const Lane& lane, double value)
{
    const int decimals = lane.kind == Lane::Kind::Delay && value < 9.95 ? 1 : 0;
    return QString::number(value, 'f', decimals) + u' ' + lane.unit;
}

QString formatted(Milliseconds at, const QString& format)
{
    return QLocale::c().toString(QDateTime::fromMSecsSinceEpoch(qint64(at)), format);
}

/// Whole minutes a point, so that the same times fall into the same points while panning.
Milliseconds stepFor(Milliseconds span)
{
    return std::max(kMinute, std::ceil(span / kMostPoints / kMinute) * kMinute);
}

/// The mean of the points in this time; absent in a gap.
std::optional<double> meanOf(
    const Lane& lane, Milliseconds from, Milliseconds span, Milliseconds step)
{
    double sum = 0;
    int count = 0;
    for (int i = 0; i * step < span; ++i) {
        if (const auto* point = timeline::pointAt(lane, from + i * step, step)) {
            sum += double(point->value);
            ++count;
        }
    }
    return count > 0 ? std::optional(sum / count) : std::nullopt;
}

/// One row: the time, the verdict in words and each lane's value.
TableRow rowAt(const Chart& chart, Milliseconds from, Milliseconds span)
{
    TableRow row;
    row.cells.append(formatted(from, span >= kHour ? u"ddd d MMM, HH:mm"_s : u"HH:mm"_s));
    const timeline::Band* worst = nullptr;
    for (const auto& band : chart.verdicts) {
        if (band.from < from + span && band.to > from
            && (!worst || worst->severity < band.severity))
            worst = &band;
    }
    row.cells.append(worst ? insights::causeName(worst->cause) : u"–"_s);
    QStringList said = row.cells;
    for (const auto& lane : chart.lanes) {
        const auto mean = meanOf(lane, from, span, chart.step);
        row.cells.append(mean ? valueText(lane, *mean) : u"–"_s);
        if (mean)
            said.append(lane.name + u' ' + row.cells.constLast());
    }
    row.summary = said.join(u", "_s);
    return row;
}

} // namespace

TimeLineState::TimeLineState(
    const services::Services& services, std::shared_ptr<timeline::Source> source)
    : m_services(services)
    , m_source(std::move(source))
    , m_pages(std::make_unique<HistoryPages>(services, m_source))
    , m_span(kRanges.at(kFirstRange))
    , m_chart(std::make_shared<const Chart>())
{
    m_to = now();
    connect(m_pages.get(), &HistoryPages::historyChanged, this, &TimeLineState::load);
    connect(this, &TimeLineState::viewChanged, this, &TimeLineState::tell);
    connect(this, &TimeLineState::cursorChanged, this, &TimeLineState::tell);
    connect(this, &TimeLineState::chartChanged, this, &TimeLineState::tell);
}

TimeLineState::~TimeLineState() = default;

Milliseconds TimeLineState::now() const
{
    return timeline::millisecondsOf(m_services.platform.clock->now());
}

void TimeLineState::setShown(bool isShown)
{
    if (this->isShown() == isShown)
        return;
    m_refresh.reset();
    if (isShown) {
        m_refresh = m_services.platform.clock->repeat(kRefresh, [this] { refresh(); });
        refresh();
    }
    Q_EMIT isShownChanged();
}

void TimeLineState::refresh()
{
    if (m_isAtNow)
        setView(now(), m_span);
    load();
    m_pages->load();
}

QStringList TimeLineState::rangeNames()
{
    return {u"15 minutes"_s, u"1 hour"_s, u"24 hours"_s, u"7 days"_s, u"30 days"_s};
}

int TimeLineState::range() const
{
    const auto found = std::find(kRanges.begin(), kRanges.end(), m_span);
    return found == kRanges.end() ? -1 : int(found - kRanges.begin());
}

QString TimeLineState::period() const
{
    const QString begin = formatted(from(), u"ddd d MMM, HH:mm"_s);
    const bool isOneDay = formatted(from(), u"yyyyMMdd"_s) == formatted(to(), u"yyyyMMdd"_s);
    return u"%1 – %2"_s.arg(begin, formatted(to(), isOneDay ? u"HH:mm"_s : u"ddd d MMM, HH:mm"_s));
}

bool TimeLineState::isEmpty() const
{
    return m_chart->verdicts.empty()
        && std::all_of(m_chart->lanes.begin(), m_chart->lanes.end(),
            [](const Lane& lane) { return lane.points.empty(); });
}

TableRow TimeLineState::tableHead() const
{
    QStringList heads = {u"Time"_s, u"Verdict"_s};
    for (const auto& lane : m_chart->lanes)
        heads.append(lane.name);
    return {heads, heads.join(u", "_s)};
}

QList<TableRow> TimeLineState::table() const
{
    QList<TableRow> rows;
    const Milliseconds each
        = std::max(m_chart->step, std::ceil(m_span / kTableRows / m_chart->step) * m_chart->step);
    if (isEmpty())
        return rows;
    const Milliseconds last = std::floor(to() / each) * each;
    for (int i = 0; last - i * each >= from(); ++i)
        rows.append(rowAt(*m_chart, last - i * each, each));
    return rows;
}

void TimeLineState::show(int range)
{
    if (range >= 0 && size_t(range) < kRanges.size())
        setView(m_isAtNow ? now() : m_to, kRanges.at(size_t(range)));
}

void TimeLineState::goToNow()
{
    setView(now(), m_span);
}

void TimeLineState::pan(qreal share)
{
    setView(m_to + share * m_span, m_span);
}

void TimeLineState::zoom(qreal factor, qreal place)
{
    const Milliseconds span = std::clamp(m_span * factor, kRanges.front(), kRanges.back());
    const Milliseconds kept = from() + place * m_span;
    setView(m_isAtNow ? now() : kept + (1 - place) * span, span);
}

/// Not beyond now, and not before what is kept.
void TimeLineState::setView(Milliseconds to, Milliseconds span)
{
    const Milliseconds last = now();
    const Milliseconds first = last - kRanges.back() + span;
    m_to = std::clamp(to, std::min(first, last), last);
    m_span = span;
    m_isAtNow = m_to >= last;
    Q_EMIT viewChanged();
    Q_EMIT tableChanged();
    loadIfNeeded();
}

void TimeLineState::pointTo(qreal place)
{
    setCursor(from() + std::clamp(place, 0.0, 1.0) * m_span);
}

/// From point to point; one that is out of sight begins in the middle.
void TimeLineState::moveCursor(int steps)
{
    const bool isSeen = m_cursor && *m_cursor >= from() && *m_cursor <= to();
    setCursor(isSeen
            ? std::clamp(*m_cursor + steps * std::max(m_chart->step, m_span / 200), from(), to())
            : from() + m_span / 2);
}

void TimeLineState::clearCursor()
{
    setCursor({});
}

void TimeLineState::setCursor(std::optional<Milliseconds> cursor)
{
    if (m_cursor == cursor)
        return;
    m_cursor = cursor;
    Q_EMIT cursorChanged();
}

void TimeLineState::loadIfNeeded()
{
    const bool isCovered = m_chart->from <= std::max(from(), now() - kRanges.back())
        && m_chart->to >= std::min(to(), now() - kRefresh.count());
    if (!isCovered || m_chart->step != stepFor(m_span))
        load();
}

void TimeLineState::load()
{
    if (std::exchange(m_isLoading, true)) {
        m_isStale = true;
        return;
    }
    m_isStale = false;
    const timeline::ChartRange range {
        .from = from() - m_span, .to = std::min(to() + m_span, now()), .step = stepFor(m_span)};
    base::runInBackground(
        m_services.platform.queues->userInitiated, this,
        [source = m_source, range] {
            return std::make_shared<const Chart>(
                timeline::chartOf(source->remembered(range), range));
        },
        [this](const std::shared_ptr<const Chart>& chart) { take(chart); });
}

void TimeLineState::take(std::shared_ptr<const Chart> chart)
{
    m_isLoading = false;
    m_chart = std::move(chart);
    Q_EMIT chartChanged();
    Q_EMIT tableChanged();
    fitFirst();
    if (m_isStale)
        load();
}

/// The first view is the shortest range that holds all, so that a young history can be seen.
void TimeLineState::fitFirst()
{
    if (isEmpty() || std::exchange(m_hasFitted, true))
        return;
    Milliseconds oldest = to();
    for (const auto& lane : m_chart->lanes)
        oldest = lane.points.empty() ? oldest : std::min(oldest, lane.points.front().at);
    const auto range = std::find_if(kRanges.begin(), kRanges.begin() + kFirstRange,
        [&](Milliseconds span) { return to() - oldest <= span; });
    setView(now(), *range);
}

/// The texts beside the lanes and of the moment.
void TimeLineState::tell()
{
    QList<LaneLabel> lanes;
    for (const auto& lane : m_chart->lanes) {
        const auto* point = m_cursor ? timeline::pointAt(lane, *m_cursor, m_chart->step)
            : lane.points.empty()    ? nullptr
                                     : &lane.points.back();
        lanes.append({lane.name, point ? valueText(lane, double(point->value)) : u"–"_s,
            QString::number(lane.top, 'f', 0)});
    }
    QStringList said;
    if (m_cursor) {
        said.append(formatted(*m_cursor, u"ddd d MMM, HH:mm:ss"_s));
        if (const auto* band = timeline::bandAt(*m_chart, *m_cursor))
            said.append(insights::causeName(band->cause));
        for (const auto& mark : timeline::marksNear(*m_chart, *m_cursor, m_span)) {
            if (said.size() < 4)
                said.append(formatted(mark.at, u"HH:mm:ss "_s) + mark.text);
        }
    }
    const QString moment = said.isEmpty()
        ? u"Point at a moment to read its values. Drag to move, turn the wheel to zoom."_s
        : said.join(u" · "_s);
    if (lanes == m_lanes && moment == m_moment)
        return;
    m_lanes = lanes;
    m_moment = moment;
    Q_EMIT lanesChanged();
}

} // namespace netvane::ui
