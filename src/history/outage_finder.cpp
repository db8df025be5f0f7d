#include "history/outage_finder.h"

#include <utility>

namespace netvane::history {
namespace {

/// A line that loses some of its answers anyway is no witness.
constexpr int kWitness = 10;
/// The line's question goes out in the same round, and may be the first to be lost.
constexpr Milliseconds kRound = 3'500;

} // namespace

bool OutageFinder::isOutage() const
{
    return m_current && (m_unanswered >= 2 || (m_unanswered == 1 && m_isLineSilent));
}

void OutageFinder::takeInternet(Milliseconds askedAt, bool isAnswered)
{
    if (!isAnswered) {
        if (!m_current)
            m_current = {.from = askedAt};
        ++m_unanswered;
        m_current->to = askedAt;
        return;
    }
    if (isOutage()) {
        m_current->to = std::max(askedAt, m_current->from);
        m_ended.push_back(*m_current);
    }
    m_current.reset();
    m_unanswered = 0;
    m_isLineSilent = false;
}

void OutageFinder::takeLine(Milliseconds askedAt, bool isAnswered)
{
    if (isAnswered) {
        ++m_lineAnswers;
        return;
    }
    if (m_lineAnswers >= kWitness && m_current && askedAt >= m_current->from - kRound)
        m_isLineSilent = true;
    if (!m_current)
        m_lineAnswers = 0;
}

void OutageFinder::takeCause(const QString& cause)
{
    if (m_current)
        m_current->cause = cause;
}

void OutageFinder::interrupt()
{
    if (isOutage())
        m_ended.push_back(*m_current);
    m_current.reset();
    m_unanswered = 0;
    m_isLineSilent = false;
}

std::vector<Outage> OutageFinder::take()
{
    auto outages = std::exchange(m_ended, {});
    if (isOutage())
        outages.push_back(*m_current);
    return outages;
}

} // namespace netvane::history
