#include "platform/linux/termination_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace netvane::platform {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// A signal handler may do little more than write a byte; the event loop reads it (pipe(7)).
std::array<int, 2> g_pipe = {-1, -1};
std::array<struct sigaction, kSignals.size()> g_previous {};

void writeByte(int)
{
    const int savedErrno = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(g_pipe[1], &byte, 1);
    errno = savedErrno;
}

int openPipe()
{
    // Without descriptors left the signals keep their default, which ends the program too.
    if (::pipe2(g_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    struct sigaction action { };
    action.sa_handler = writeByte;
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], nullptr, &g_previous[i]);
        // Whoever had one ignored wants us to survive it: nohup(1), a shell for its background
        // jobs.
        if (g_previous[i].sa_handler != SIG_IGN)
            ::sigaction(kSignals[i], &action, nullptr);
    }
    return g_pipe[0];
}

} // namespace

TerminationSignals::TerminationSignals()
    : m_notifier(openPipe(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::drain);
}

TerminationSignals::~TerminationSignals()
{
    for (size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &g_previous[i], nullptr);
    m_notifier.setEnabled(false);
    for (const int end : g_pipe)
        ::close(end);
}

void TerminationSignals::drain()
{
    std::array<char, 64> bytes {};
    while (::read(g_pipe[0], bytes.data(), bytes.size()) > 0) { }
    Q_EMIT received();
}

} // namespace netvane::platform
