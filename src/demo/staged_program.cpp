#include "demo/staged_program.h"

#include "probes/dns_service.h"
#include "windows/quick_views.h"

#include <QDeadlineTimer>
#include <QThread>

using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

constexpr std::chrono::milliseconds kStep = 250ms;
constexpr std::chrono::milliseconds kLookupLimit = 5s; ///< real time, on a machine that is busy

} // namespace

StagedProgram::StagedProgram(QApplication& application, Wishes wishes)
    : StagedProgram(application, std::make_unique<simulated::ManualClock>(), std::move(wishes))
{
}

StagedProgram::StagedProgram(
    QApplication& application, std::unique_ptr<simulated::ManualClock> clock, Wishes wishes)
    : m_clock(*clock)
    , m_scripted(makeScriptedPlatform(std::move(clock), std::move(wishes)))
    , m_queue(m_scripted.platform.queues->userInitiated)
    , m_program(application, std::move(m_scripted.platform), &windows::makeQuickViews)
{
    m_program.start();
    settle();
    pass(kStep);
}

void StagedProgram::pass(std::chrono::milliseconds time)
{
    for (auto left = time; left > 0ms; left -= kStep) {
        m_clock.advance(std::min(left, kStep));
        settle();
    }
}

/// What was begun at this time ends at it.
void StagedProgram::settle()
{
    for (int round = 0; round < 4; ++round) {
        m_queue.waitForDone();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    waitForLookup();
}

/// Look-ups take real time, on a thread of their own, and arrive some time after it.
void StagedProgram::waitForLookup()
{
    const auto* dns = delegate().dnsService();
    if (!dns)
        return;
    const auto isPending = [&] {
        if (m_scripted.lookups->ended < dns->lookupCount())
            return true;
        const bool isAnswered = m_scripted.lookups->microseconds >= 0;
        return isAnswered && dns->lookupCount() != m_deliveredLookups
            && (dns->history().empty() || dns->history().back().timestamp != m_clock.now());
    };
    QDeadlineTimer deadline(kLookupLimit);
    while (isPending() && !deadline.hasExpired()) {
        QThread::msleep(1);
        QCoreApplication::processEvents();
    }
    m_deliveredLookups = dns->lookupCount();
}

} // namespace netvane::demo
