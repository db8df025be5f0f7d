#pragma once

#include "platform/network_scanner.h"
#include "ui/state/accent.h"
#include "ui/state/relative_time.h"

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::ui {

/// One channel of the bar chart: how many networks there are on it.
struct ChartBar {
    Q_GADGET
    QML_VALUE_TYPE(chartBar)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(int count MEMBER count)
    Q_PROPERTY(bool isCurrent MEMBER isCurrent)

public:
    QString label;
    int count = 0;
    bool isCurrent = false;

    bool operator==(const ChartBar&) const = default;
};

/// The scan of nearby networks: how many there are on each channel, which channel is in use and
/// which one is the least crowded. Main thread.
class ChannelAnalysisState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(Body body READ body NOTIFY changed)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY changed)
    /// In ascending order of the channels.
    Q_PROPERTY(QList<netvane::ui::ChartBar> bars READ bars NOTIFY barsChanged)
    /// The same as a text, for screen readers.
    Q_PROPERTY(QString chartSummary READ chartSummary NOTIFY barsChanged)
    /// Undefined without one.
    Q_PROPERTY(QVariant currentChannel READ currentChannel NOTIFY changed)
    /// Undefined when there is none or it is the current one.
    Q_PROPERTY(QVariant recommendedChannel READ recommendedChannel NOTIFY changed)
    /// Why a press on Scan brought nothing new; undefined otherwise.
    Q_PROPERTY(QVariant problem READ problem NOTIFY changed)
    /// A line; undefined before the first scan.
    Q_PROPERTY(QVariant lastScan READ lastScan NOTIFY changed)

public:
    enum Body { PermissionNeeded, Hint, Results };
    Q_ENUM(Body)

    /// All services exist and outlive this.
    explicit ChannelAnalysisState(const services::Services& services);

    Body body() const { return m_shown.body; }
    bool isScanning() const { return m_shown.isScanning; }
    QList<ChartBar> bars() const { return m_shown.bars; }
    QString chartSummary() const;
    QVariant currentChannel() const { return orUndefined(m_shown.currentChannel); }
    QVariant recommendedChannel() const { return orUndefined(m_shown.recommendedChannel); }
    QVariant problem() const { return orUndefined(m_shown.problem); }
    QVariant lastScan() const { return orUndefined(m_shown.lastScan); }

    /// Whether all this can be seen. Coming into sight reads the current channel.
    void setShown(bool isShown);
    Q_INVOKABLE void scan();

Q_SIGNALS:
    void changed();
    void barsChanged();

private:
    struct Shown {
        Body body = Hint;
        bool isScanning = false;
        QList<ChartBar> bars;
        std::optional<int> currentChannel;
        std::optional<int> recommendedChannel;
        std::optional<QString> problem;
        std::optional<QString> lastScan;

        bool operator==(const Shown&) const = default;
    };

    void readCurrentChannel();
    void refresh();
    Shown shown() const;

    const services::Services& m_services;
    RelativeTimes m_times;
    std::optional<int> m_currentChannel;
    Shown m_shown;
};

} // namespace netvane::ui
