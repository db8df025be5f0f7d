#pragma once

#include "platform/network_scanner.h"
#include "ui/painting/bar_chart.h"
#include "ui/state/relative_time.h"

#include <QObject>
#include <QVariant>
#include <QtQmlIntegration>

namespace netvane::diagnostics {
class ChannelAnalysisService;
} // namespace netvane::diagnostics
namespace netvane::platform {
class UrlOpener;
} // namespace netvane::platform
namespace netvane::wifi {
class LocationPermissionService;
} // namespace netvane::wifi

namespace netvane::ui {

/// The scan of nearby networks: how many there are on each channel, which channel is in use and
/// which one is the least crowded. Main thread.
class ChannelAnalysisState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(Body body READ body NOTIFY changed)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY changed)
    /// In ascending order of the channels.
    Q_PROPERTY(QList<netvane::ui::ChartBar> bars READ bars NOTIFY changed)
    /// The same as a text, for screen readers.
    Q_PROPERTY(QString chartSummary READ chartSummary NOTIFY changed)
    /// Undefined without one.
    Q_PROPERTY(QVariant currentChannel READ currentChannel NOTIFY changed)
    /// Undefined when there is none or it is the current one.
    Q_PROPERTY(QVariant recommendedChannel READ recommendedChannel NOTIFY changed)
    /// A line; undefined before the first scan.
    Q_PROPERTY(QVariant lastScan READ lastScan NOTIFY changed)
    /// Whether anybody can see all this.
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged)

public:
    enum Body { PermissionNeeded, Hint, Results };
    Q_ENUM(Body)

    /// What is shown in the results.
    struct Shown {
        Body body = Hint;
        bool isScanning = false;
        QList<ChartBar> bars;
        std::optional<int> currentChannel;
        std::optional<int> recommendedChannel;
        std::optional<QString> lastScan;

        bool operator==(const Shown&) const = default;
    };

    /// All of it outlives this.
    ChannelAnalysisState(diagnostics::ChannelAnalysisService& service,
        const wifi::LocationPermissionService& permission, platform::NetworkScanner& scanner,
        platform::UrlOpener& opener, base::Clock& clock);

    Body body() const { return m_shown.body; }
    bool isScanning() const { return m_shown.isScanning; }
    QList<ChartBar> bars() const { return m_shown.bars; }
    QString chartSummary() const;
    QVariant currentChannel() const;
    QVariant recommendedChannel() const;
    QVariant lastScan() const;
    bool isShown() const { return m_times.isShown(); }
    void setShown(bool isShown);

    Q_INVOKABLE void scan();
    Q_INVOKABLE void openSystemSettings();

Q_SIGNALS:
    void changed();
    void isShownChanged();

private:
    void readCurrentChannel();
    void refresh();
    Shown shown() const;

    diagnostics::ChannelAnalysisService& m_service;
    const wifi::LocationPermissionService& m_permission;
    platform::NetworkScanner& m_scanner;
    platform::UrlOpener& m_opener;
    RelativeTimes m_times;
    std::optional<int> m_currentChannel;
    Shown m_shown;
};

} // namespace netvane::ui
