// How long a trace takes: trace_time HOST RUNS; run_trace_time makes the chain of routers and
// compares with tracepath.

#include "base/log.h"
#include "base/system_clock.h"
#include "diagnostics/traceroute_service.h"
#include "figure.h"
#include "net/socket_hop_probes.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>

using namespace netvane;

namespace {

double traceMs(diagnostics::TracerouteService& service, const QString& host)
{
    QEventLoop loop;
    QObject::connect(&service, &diagnostics::TracerouteService::isRunningChanged, &loop, [&] {
        if (!service.isRunning())
            loop.quit();
    });
    QElapsedTimer timer;
    timer.start();
    service.startTrace(host);
    loop.exec();
    if (service.hops().empty() || service.hops().back().ipAddress != host)
        qFatal("the trace does not arrive");
    return double(timer.nsecsElapsed()) / 1e6;
}

double tracepathMs(const QString& host)
{
    QElapsedTimer timer;
    timer.start();
    if (QProcess::execute(QStringLiteral("/bin/sh"),
            {QStringLiteral("-c"), QStringLiteral("tracepath -n \"$0\" >/dev/null"), host})
        != 0)
        qFatal("tracepath failed");
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    base::setLogSink([](const QString&) {});
    base::SystemClock clock;
    net::SocketHopProbes sockets(clock);
    diagnostics::TracerouteService service(clock, sockets);
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int run = 0; run < arguments[2].toInt(); ++run) {
        ours.push_back(traceMs(service, arguments[1]));
        theirs.push_back(tracepathMs(arguments[1]));
    }
    // Three probes a hop with a pause after each, so that no router is asked faster than it
    // answers.
    std::printf("a trace of four hops, ms: ours %.0f, tracepath %.0f\n", bench::median(ours),
        bench::median(theirs));
    bench::record({.name = QStringLiteral("a trace of four hops, three probes each"),
        .unit = QStringLiteral("ms"),
        .values = ours,
        .rival = QStringLiteral("tracepath, one probe each"),
        .rivalValues = theirs});
    return 0;
}
