#include "verdict/verdict_keeper.h"

#include <utility>

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;

constexpr auto kSentenceLife = 15s;

} // namespace

const Verdict& VerdictKeeper::take(
    Verdict judged, TimePoint now, std::chrono::system_clock::time_point wallClock)
{
    if (judged.cause == m_shown.cause && !m_isFirst) {
        m_rivalSince.reset();
        judged.since = m_shown.since;
        if (judged.severity != m_shown.severity || now - m_shownAt >= kSentenceLife)
            show(std::move(judged), now);
        else
            m_shown.chain = std::move(judged.chain);
        return m_shown;
    }
    if (!m_rivalSince || m_rival != judged.cause) {
        m_rival = judged.cause;
        m_rivalSince = now;
    }
    if (now - *m_rivalSince >= holdAgainst(judged)) {
        m_rivalSince.reset();
        judged.since = wallClock;
        show(std::move(judged), now);
    }
    return m_shown;
}

/// What rests on several lost packets need not wait. What rests on one reading has to be read
/// again: networks change in steps.
std::chrono::milliseconds VerdictKeeper::holdAgainst(const Verdict& judged) const
{
    const auto segment = segmentOf(judged.cause);
    if (m_isFirst)
        return 0ms;
    if (judged.cause == Cause::Unsure)
        return m_shown.cause == Cause::Healthy ? 5s : 12s;
    if (judged.cause == Cause::Healthy)
        return m_shown.cause == Cause::Unsure ? 0ms : 2500ms;
    if (segment == Segment::System || segment == Segment::Radio)
        return 2500ms;
    if (m_shown.cause == Cause::Healthy || m_shown.cause == Cause::Unsure)
        return 0ms;
    return judged.severity > m_shown.severity ? 2500ms : 5500ms;
}

void VerdictKeeper::show(Verdict judged, TimePoint now)
{
    m_isFirst = false;
    m_shown = std::move(judged);
    m_shownAt = now;
}

} // namespace netvane::verdict
