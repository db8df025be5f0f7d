#pragma once

#include "ui/state/accent.h"
#include "ui/state/relative_time.h"

namespace netvane::diagnostics {
class SpeedTestService;
struct SpeedTestResult;
} // namespace netvane::diagnostics
namespace netvane::probes {
class PingService;
} // namespace netvane::probes

namespace netvane::ui {

/// One of the recent tests; a speed is undefined when that half of the test failed.
struct RecentSpeedTest {
    Q_GADGET
    QML_VALUE_TYPE(recentSpeedTest)
    Q_PROPERTY(QString elapsed MEMBER elapsed)
    Q_PROPERTY(QVariant download MEMBER download)
    Q_PROPERTY(QVariant upload MEMBER upload)
    /// Both did.
    Q_PROPERTY(bool hasFailed READ hasFailed)
    /// The whole row for screen readers.
    Q_PROPERTY(QString summary READ summary)

public:
    QString elapsed;
    QVariant download;
    QVariant upload;

    bool hasFailed() const { return !download.isValid() && !upload.isValid(); }
    QString summary() const;
    bool operator==(const RecentSpeedTest&) const = default;
};

/// The speed test: runs one on request, and shows its result and those before it. Main thread.
class SpeedTestState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    Q_PROPERTY(bool hasResult READ hasResult NOTIFY resultChanged)
    /// With their unit; undefined when absent.
    Q_PROPERTY(QVariant downloadSpeed READ downloadSpeed NOTIFY resultChanged)
    Q_PROPERTY(QVariant uploadSpeed READ uploadSpeed NOTIFY resultChanged)
    /// Undefined when there was no lag to tell of.
    Q_PROPERTY(QVariant lagMessage READ lagMessage NOTIFY resultChanged)
    /// What the latest test could not measure, and why; empty while one runs.
    Q_PROPERTY(QString note READ note NOTIFY isRunningChanged)
    /// Newest first.
    Q_PROPERTY(
        QList<netvane::ui::RecentSpeedTest> recentTests READ recentTests NOTIFY recentTestsChanged)

public:
    static constexpr size_t maxRecentTests = 5;

    /// All of it outlives this. Without `routerPingService` no test tells of lag.
    SpeedTestState(diagnostics::SpeedTestService& service, probes::PingService* routerPingService,
        base::Clock& clock);

    bool isRunning() const;
    bool hasResult() const;
    QVariant downloadSpeed() const;
    QVariant uploadSpeed() const;
    QVariant lagMessage() const;
    QString note() const;
    QList<RecentSpeedTest> recentTests() const { return m_recentTests; }
    /// Whether all this can be seen.
    void setShown(bool isShown) { m_times.setShown(isShown); }

    Q_INVOKABLE void runTest();
    /// Forgets all tests, those that are not shown as well.
    Q_INVOKABLE void clearHistory();

Q_SIGNALS:
    void isRunningChanged();
    void resultChanged();
    void recentTestsChanged();

private:
    void refreshRecentTests();

    diagnostics::SpeedTestService& m_service;
    probes::PingService* const m_routerPingService;
    RelativeTimes m_times;
    QList<RecentSpeedTest> m_recentTests;
};

} // namespace netvane::ui
