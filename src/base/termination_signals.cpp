#include "base/termination_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace netvane::base {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};
// Long enough for what is being stored; a session that ends does not wait much longer for anybody.
constexpr unsigned kGraceSeconds = 3;

// A signal handler may do little more than write a byte; the event loop reads it (pipe(7)).
std::array<int, 2> g_pipe = {-1, -1};

void writeByte(int)
{
    const int savedErrno = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(g_pipe[1], &byte, 1);
    ::alarm(kGraceSeconds);
    errno = savedErrno;
}

void endNow(int)
{
    ::_exit(EXIT_FAILURE);
}

int openPipe()
{
    // Without descriptors left the signals keep their default, which ends the program too.
    if (::pipe2(g_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    std::signal(SIGALRM, endNow);
    struct sigaction action { };
    action.sa_handler = writeByte;
    action.sa_flags = SA_RESTART;
    for (const int number : kSignals) {
        struct sigaction previous { };
        ::sigaction(number, nullptr, &previous);
        // A signal that is ignored at the start stays ignored: nohup(1) and shells set this for
        // programs that must survive it.
        if (previous.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
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
    // A program that is ending must not be killed by a second signal, such as the hang-up of the
    // session that sent the first.
    for (const int number : kSignals)
        std::signal(number, SIG_IGN);
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

} // namespace netvane::base
