#include "demo/staged_program.h"

#include "demo/month.h"
#include "probes/dns_service.h"
#include "shell/detailed_window_controller.h"
#include "shell/popover_window.h"

#include <QDeadlineTimer>
#include <QThread>

using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

constexpr std::chrono::milliseconds kLookupLimit = 5s; ///< real time, on a machine that is busy

} // namespace

StagedProgram::StagedProgram(
    QApplication& application, StageOptions options, const std::function<void(Stage&)>& change)
    : m_stage(std::unique_ptr<base::Clock>(m_clock), std::move(options))
{
    if (change)
        change(m_stage);
    m_program = std::make_unique<app::Program>(
        application, std::move(m_stage.parts.platform), &viewsWithMonth);
    m_program->start();
    settle();
    pass(250ms);
}

QWindow& StagedProgram::openPopover(std::chrono::milliseconds time)
{
    delegate().popover()->show({});
    pass(time);
    return *delegate().popover()->window();
}

QWindow& StagedProgram::openDetailedWindow(std::chrono::milliseconds time)
{
    delegate().mainMenu()->actions().constFirst()->trigger();
    pass(time);
    return delegate().windowController()->window();
}

void StagedProgram::pass(std::chrono::milliseconds time, std::chrono::milliseconds step)
{
    for (auto left = time; left > 0ms; left -= step) {
        m_clock->advance(std::min(left, step));
        settle();
    }
}

void StagedProgram::settle()
{
    for (int round = 0; round < 4; ++round) {
        m_stage.parts.queues.userInitiated.waitForDone();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        // Outside an event loop Qt leaves these for when one begins.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    waitForLookup();
}

/// Look-ups take real time, on a thread of their own, and arrive some time after it.
void StagedProgram::waitForLookup()
{
    const auto* dns = delegate().dnsService();
    if (!dns)
        return;
    const auto& resolver = *m_stage.parts.resolver;
    const auto isPending = [&] {
        if (resolver.ended < dns->lookupCount())
            return true;
        return resolver.status == 0 && dns->lookupCount() != m_deliveredLookups
            && (dns->history().empty() || dns->history().back().timestamp != m_clock->now());
    };
    QDeadlineTimer deadline(kLookupLimit);
    while (isPending() && !deadline.hasExpired()) {
        QThread::msleep(1);
        QCoreApplication::processEvents();
    }
    m_deliveredLookups = dns->lookupCount();
}

} // namespace netvane::demo
