#include "ui/timeline/history_pages.h"

#include "base/background_work.h"
#include "base/log.h"
#include "base/replace_file.h"
#include "base/visible_text.h"
#include "insights/verdict_text.h"
#include "platform/exports.h"
#include "platform/platform.h"
#include "services/services.h"
#include "ui/timeline/provider_pdf.h"

#include <QPointer>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.ui")

constexpr size_t kMostOutages = 200; // rows of a list that people read

QList<HourCell> cellsOf(const timeline::Week& week)
{
    QList<HourCell> cells;
    for (int day = 0; day < 7; ++day) {
        for (int hour = 0; hour < 24; ++hour) {
            const auto& each = week.at(size_t(day)).at(size_t(hour));
            const int percent = int(std::lround(each.badShare() * 100));
            cells.append({.isKnown = each.isKnown(),
                // Small shares have to be seen, too.
                .strength = each.isKnown() ? std::min(1.0, std::sqrt(each.badShare())) * 0.9 : 0,
                .number = each.isKnown() && percent > 0 ? QString::number(percent) : QString(),
                .text = timeline::hourText(week, day, hour)});
        }
    }
    return cells;
}

QString summaryOf(const std::vector<timeline::Outage>& outages, timeline::Milliseconds now)
{
    if (outages.empty())
        return u"There was none in the last 30 days."_s;
    timeline::Milliseconds total = 0;
    for (const auto& outage : outages)
        total += outage.to.value_or(now) - outage.from;
    return u"%1 in the last 30 days, %2 in all, newest first."_s.arg(outages.size())
        .arg(timeline::durationText(total));
}

} // namespace

HistoryPages::HistoryPages(
    const services::Services& services, std::shared_ptr<timeline::Source> source)
    : m_services(services)
    , m_source(std::move(source))
{
    take({});
}

void HistoryPages::load()
{
    base::runInBackground(
        m_services.platform.queues->userInitiated, this,
        [source = m_source, now = timeline::millisecondsOf(m_services.platform.clock->now())] {
            return source->facts(now - timeline::kKept, now);
        },
        [this](const timeline::ProviderFacts& facts) { take(facts); });
}

QString HistoryPages::network() const
{
    return base::withVisibleControls(m_source->network().value_or(QString()));
}

void HistoryPages::setRecording(bool isRecording)
{
    if (this->isRecording() == isRecording)
        return;
    m_source->setRecording(isRecording);
    Q_EMIT isRecordingChanged();
}

void HistoryPages::forgetNetwork()
{
    forget(&timeline::Source::forgetNetwork, u"This network is forgotten."_s);
}

void HistoryPages::forgetEverything()
{
    forget(&timeline::Source::forgetEverything, u"Everything is forgotten."_s);
}

void HistoryPages::forget(void (timeline::Source::*what)(), const QString& said)
{
    (m_source.get()->*what)();
    m_forgotten = said;
    Q_EMIT forgottenChanged();
    Q_EMIT historyChanged();
    load();
}

void HistoryPages::take(const timeline::ProviderFacts& facts)
{
    m_facts = facts;
    m_facts.network = network();
    m_badHours = timeline::badHoursSentence(facts.week);
    m_hours = cellsOf(facts.week);
    m_outageSummary = summaryOf(facts.outages, facts.to);
    m_outages.clear();
    for (auto outage = facts.outages.rbegin();
         outage != facts.outages.rend() && size_t(m_outages.size()) < kMostOutages; ++outage)
        m_outages.append({timeline::dayText(outage->from) + u", "_s + timeline::spanText(*outage),
            insights::causeName(outage->cause)});
    Q_EMIT changed();
}

void HistoryPages::savePdf()
{
    save(u".pdf"_s, &pdfOf);
}

void HistoryPages::saveMarkdown()
{
    save(u".md"_s, [](const QString& page) { return page.toUtf8(); });
}

void HistoryPages::save(const QString& ending, QByteArray (*made)(const QString& page))
{
    const QString day
        = insights::localTime(m_services.platform.clock->now()).toString(u"yyyy-MM-dd"_s);
    // The panel may outlive this object.
    m_services.platform.savePanel->show(u"Save Page for Your Provider"_s,
        u"internet-connection-"_s + day + ending,
        [self = QPointer(this), made, page = timeline::providerPage(m_facts)](
            const std::optional<QString>& path) {
            if (!self || !path)
                return;
            base::runInBackground(
                self->m_services.platform.queues->utility, self.data(),
                [made, page, path = *path] { return base::replaceFile(path, made(page)); },
                [self](const QString& error) {
                    if (!error.isEmpty())
                        base::log(logCategory(), u"HistoryPages: Failed to save file: "_s + error);
                    self->m_saved = error.isEmpty()
                        ? u"Saved."_s
                        : u"It could not be saved: "_s + base::withVisibleControls(error);
                    Q_EMIT self->savedChanged();
                });
        });
}

} // namespace netvane::ui
