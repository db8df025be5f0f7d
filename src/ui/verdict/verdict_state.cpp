#include "ui/verdict/verdict_state.h"

#include "platform/platform.h"
#include "services/services.h"
#include "ui/state/relative_time.h"
#include "verdict/chain.h"
#include "verdict/verdict_service.h"

#include <array>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::ui {
namespace {

using verdict::LinkState;
using verdict::Severity;

struct Look {
    QString symbol;
    Accent accent;
};

Look lookOf(const verdict::Verdict& verdict)
{
    if (verdict.cause == verdict::Cause::Unsure)
        return {u"questionmark.circle.fill"_s, accent::Tertiary};
    switch (verdict.severity) {
    case Severity::Fine:
        return {u"checkmark.circle.fill"_s, accent::Green};
    case Severity::Notice:
        return {u"info.circle.fill"_s, accent::Blue};
    case Severity::Poor:
        return {u"exclamationmark.triangle.fill"_s, accent::Orange};
    case Severity::Broken:
        break;
    }
    return {u"xmark.octagon.fill"_s, accent::Red};
}

Look lookOf(LinkState state)
{
    switch (state) {
    case LinkState::Fine:
        return {u"checkmark.circle.fill"_s, accent::Green};
    case LinkState::Bad:
        return {u"exclamationmark.triangle.fill"_s, accent::Orange};
    case LinkState::Broken:
        return {u"xmark.octagon.fill"_s, accent::Red};
    case LinkState::Unknown:
    case LinkState::NotReached:
        break;
    }
    return {u"questionmark.circle.fill"_s, accent::Tertiary};
}

/// What a cause is called where it is only considered.
QString nameOf(verdict::Cause cause)
{
    constexpr std::array kNames = {""_L1, "This computer"_L1, "Wi-Fi"_L1, "Router"_L1, "Line"_L1,
        "DNS"_L1, "Log-in page"_L1, "Internet"_L1};
    return kNames.at(size_t(segmentOf(cause))) + u": "_s + verdict::wordOf(cause);
}

QString wordFor(double certainty)
{
    if (certainty >= 0.6)
        return u"likely"_s;
    return certainty >= 0.3 ? u"possible"_s : u"unlikely"_s;
}

} // namespace

VerdictState::VerdictState(const services::Services& services)
    : m_services(services)
{
    const auto* service = services.verdictService.get();
    connect(service, &verdict::VerdictService::verdictChanged, this, &VerdictState::verdictChanged);
    connect(service, &verdict::VerdictService::evidenceChanged, this, &VerdictState::updateDetails);
}

QString VerdictState::sentence() const
{
    const auto& sentence = m_services.verdictService->verdict().sentence;
    return sentence.isEmpty() ? u"Looking at the connection…"_s : sentence;
}

QString VerdictState::advice() const
{
    return m_services.verdictService->verdict().advice;
}

QString VerdictState::symbol() const
{
    return lookOf(m_services.verdictService->verdict()).symbol;
}

Accent VerdictState::accent() const
{
    return lookOf(m_services.verdictService->verdict()).accent;
}

void VerdictState::setShown(bool isShown)
{
    if (std::exchange(m_isShown, isShown) == isShown)
        return;
    updateDetails();
    Q_EMIT isShownChanged();
}

/// The evidence comes anew with each round of probes, so the ages need no timer.
void VerdictState::updateDetails()
{
    if (!m_isShown)
        return;
    const auto& verdict = m_services.verdictService->verdict();
    QList<ChainItem> chain;
    for (const auto& link : verdict.chain) {
        const auto [symbol, accent] = lookOf(link.state);
        ChainItem item;
        item.name = link.name;
        item.word = link.word;
        item.figure = link.figure;
        item.symbol = symbol;
        item.accent = accent;
        item.isBroken = link.state == LinkState::Broken || link.state == LinkState::Bad;
        item.isReached = link.state != LinkState::NotReached;
        chain.append(item);
    }
    QStringList evidence;
    for (const auto& item : verdict.evidence)
        evidence.append(u"%1 · %2 s ago"_s.arg(item.text).arg(qRound(item.ageSeconds)));
    QStringList others;
    for (const auto& other : verdict.others)
        if (!verdict::wordOf(other.cause).isEmpty())
            others.append(u"%1 (%2)"_s.arg(nameOf(other.cause), wordFor(other.certainty)));
    const QString since = verdict.since.time_since_epoch().count() == 0
        ? QString()
        : u"Began "_s + relativeTime(m_services.platform.clock->now() - verdict.since);
    if (chain == m_chain && evidence == m_evidence && others == m_others && since == m_since)
        return;
    m_chain = chain;
    m_evidence = evidence;
    m_others = others;
    m_since = since;
    Q_EMIT detailsChanged();
}

QString VerdictState::wholeText() const
{
    QStringList lines = {sentence()};
    if (!advice().isEmpty())
        lines.append(advice());
    lines.append(QString());
    for (const auto& link : m_chain)
        lines.append(u"%1: %2 %3"_s.arg(link.name, link.word, link.figure).trimmed());
    lines.append(QString());
    lines.append(m_evidence);
    if (!m_others.isEmpty())
        lines.append(u"Also considered: "_s + m_others.join(u", "_s));
    return lines.join(u'\n') + u'\n';
}

void VerdictState::copy()
{
    m_services.platform.clipboard->setText(wholeText());
    const auto label = [this](const QString& text) {
        m_copyLabel = text;
        Q_EMIT copyLabelChanged();
    };
    label(u"Copied"_s);
    m_copied = m_services.platform.clock->after(2s, [label] { label(u"Copy"_s); });
}

} // namespace netvane::ui
