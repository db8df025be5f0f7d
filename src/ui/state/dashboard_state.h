#pragma once

// The room ui is what the user sees. In `state`, C++ decides what is shown: texts, grades, colours,
// and when something is taken over. In `views` and `components` QML draws it, in `painting` C++
// paints what QML cannot, and `symbols` are the drawings.

#include "ui/state/channel_analysis_state.h"
#include "ui/state/connection_status.h"
#include "ui/state/dashboard_readings.h"
#include "ui/state/dashboard_sections.h"
#include "ui/state/settings_state.h"
#include "ui/state/speed_test_state.h"
#include "ui/state/traceroute_state.h"
#include "ui/verdict/verdict_state.h"

namespace netvane::ui {

/// What a window with a dashboard shows, the popover as well as the detailed window: the sections
/// of the dashboard, and the settings in place of them. Each section is a value that is made anew
/// from the readings and signalled only when it differs. Main thread.
class DashboardState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by its window")
    /// Whether the dashboard can be seen; the view sets it.
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged)
    Q_PROPERTY(bool showSettings READ showSettings WRITE setShowSettings NOTIFY showSettingsChanged)
    Q_PROPERTY(netvane::ui::NetworkInfo networkInfo MEMBER m_networkInfo NOTIFY networkInfoChanged)
    /// As of the last refresh, or of the loss of the permission since.
    Q_PROPERTY(bool needsLocationPermission MEMBER m_needsLocationPermission NOTIFY
            needsLocationPermissionChanged)
    /// The system has not asked the user yet; follows at once.
    Q_PROPERTY(bool canRequestPermission READ canRequestPermission NOTIFY canRequestChanged)
    /// Undefined when there is none.
    Q_PROPERTY(QVariant errorMessage MEMBER m_errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isCaptive MEMBER m_isCaptive NOTIFY isCaptiveChanged)
    Q_PROPERTY(netvane::ui::WiFiMetrics wifiMetrics MEMBER m_wifiMetrics NOTIFY wifiMetricsChanged)
    Q_PROPERTY(netvane::ui::PerformanceSection router MEMBER m_router NOTIFY routerChanged)
    Q_PROPERTY(netvane::ui::PerformanceSection internet MEMBER m_internet NOTIFY internetChanged)
    /// From the near end of the path to the far one.
    Q_PROPERTY(QList<netvane::ui::ConnectionItem> connectionSummary MEMBER m_connectionSummary
            NOTIFY connectionSummaryChanged)
    Q_PROPERTY(netvane::ui::MetricCardContent dnsCard MEMBER m_dnsCard NOTIFY dnsCardChanged)
    /// Undefined until the first look at the configuration.
    Q_PROPERTY(QVariant dnsServer MEMBER m_dnsServer NOTIFY dnsServerChanged)
    Q_PROPERTY(QStringList recommendations MEMBER m_recommendations NOTIFY recommendationsChanged)
    Q_PROPERTY(netvane::ui::ChannelAnalysisState* channelAnalysis READ channelAnalysis CONSTANT)
    Q_PROPERTY(netvane::ui::SpeedTestState* speedTest READ speedTest CONSTANT)
    Q_PROPERTY(netvane::ui::TracerouteState* traceroute READ traceroute CONSTANT)
    Q_PROPERTY(netvane::ui::VerdictState* verdict READ verdict CONSTANT)
    Q_PROPERTY(netvane::ui::SettingsState* settings READ settings CONSTANT)

public:
    /// All services exist and outlive this. `loadProbe` tells the speed test how the link lags
    /// while it is busy; null for a test that is not told.
    DashboardState(const services::Services& services, probes::PingService* loadProbe);

    /// Reads the services again. Returns the names of what changed, see `DashboardReadings`.
    QStringList refresh();

    bool isShown() const { return m_isShown; }
    void setShown(bool isShown);
    bool showSettings() const { return m_showSettings; }
    void setShowSettings(bool show);
    bool canRequestPermission() const;
    ChannelAnalysisState* channelAnalysis() { return &m_channelAnalysis; }
    SpeedTestState* speedTest() { return &m_speedTest; }
    TracerouteState* traceroute() { return &m_traceroute; }
    VerdictState* verdict() { return &m_verdict; }
    SettingsState* settings() { return &m_settings; }

    /// Out of the settings, which is what Escape means first. False when they are not shown.
    Q_INVOKABLE virtual bool goBack();
    Q_INVOKABLE void openLoginPage();
    Q_INVOKABLE void openSystemSettings();
    Q_INVOKABLE void requestPermission();

Q_SIGNALS:
    void isShownChanged();
    void showSettingsChanged();
    void networkInfoChanged();
    void needsLocationPermissionChanged();
    void canRequestChanged();
    void errorMessageChanged();
    void isCaptiveChanged();
    void wifiMetricsChanged();
    void routerChanged();
    void internetChanged();
    void connectionSummaryChanged();
    void dnsCardChanged();
    void dnsServerChanged();
    void recommendationsChanged();

protected:
    const services::Services& services() const { return m_services; }

private:
    /// The series of one target, which are made only while they can be seen.
    struct Path {
        PathSeries series;
        size_t recordCount = 0; ///< in the history when the series were made
        std::chrono::system_clock::time_point newest; ///< of its records
        bool isShown = false;

        void follow(bool isPresentAndShown, const std::vector<probes::NetworkMetrics>& history);
    };

    template <typename Value>
    void show(Value& shown, const Value& current, void (DashboardState::*changed)());
    void showReadings();
    void showPermission();
    void showPaths();
    void showSummary();
    void showLookups();
    void recordLink();
    void recordLinkChanges(const std::optional<wifi::WiFiInfo>& previous);
    void followLinkVisibility();

    const services::Services& m_services;
    DashboardReadings m_readings;
    wifi::WiFiMetricsHistory m_linkHistory; ///< begins with this object
    bool m_isLinkShown = false;
    Path m_routerPath;
    Path m_internetPath;
    NetworkInfo m_networkInfo;
    bool m_needsLocationPermission = false;
    QVariant m_errorMessage;
    bool m_isCaptive = false;
    WiFiMetrics m_wifiMetrics;
    PerformanceSection m_router;
    PerformanceSection m_internet;
    QList<ConnectionItem> m_connectionSummary;
    MetricCardContent m_dnsCard;
    QVariant m_dnsServer;
    QStringList m_recommendations;
    ChannelAnalysisState m_channelAnalysis;
    SpeedTestState m_speedTest;
    TracerouteState m_traceroute;
    VerdictState m_verdict;
    SettingsState m_settings;
    bool m_isShown = false;
    bool m_showSettings = false;
};

} // namespace netvane::ui
