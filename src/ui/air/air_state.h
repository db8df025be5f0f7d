#pragma once

#include "air/channel_advice.h"
#include "air/heard_networks.h"
#include "timeline/source.h"
#include "ui/air/network_table.h"
#include "ui/verdict/verdict_details.h"

#include <QObject>
#include <QtQmlIntegration>

#include <memory>

namespace netvane::ui {

/// A band with the advice for it.
struct AirBand {
    Q_GADGET
    QML_VALUE_TYPE(airBand)
    /// As `platform::ChannelBand`.
    Q_PROPERTY(int band MEMBER band)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString advice MEMBER advice)
    /// The networks in it for screen readers.
    Q_PROPERTY(QString summary MEMBER summary)

public:
    int band = 0;
    QString name;
    QString advice;
    QString summary;

    bool operator==(const AirBand&) const = default;
};

/// What the radio does and what it hears. Reads the air while it is shown, one reading at a time,
/// and starts a scan only when the user asks for one. Main thread.
class AirState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    /// Whether the window can be seen; the view sets it.
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged)
    /// Why there is nothing to show; empty otherwise.
    Q_PROPERTY(QString problem MEMBER m_problem NOTIFY changed)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY scanChanged)
    /// Why a press on Scan brought nothing; may be empty.
    Q_PROPERTY(QString scanNote READ scanNote NOTIFY scanChanged)
    /// The bands that the adapter has, or in which something was heard.
    Q_PROPERTY(QList<netvane::ui::AirBand> bands MEMBER m_bands NOTIFY changed)
    Q_PROPERTY(QList<netvane::ui::DetailRow> link MEMBER m_link NOTIFY changed)
    Q_PROPERTY(QString roaming MEMBER m_roaming NOTIFY changed)
    /// Changes of the access point in the last 24 hours, newest first, with their times.
    Q_PROPERTY(QList<netvane::ui::DetailRow> moves MEMBER m_moves NOTIFY movesChanged)
    /// The adapters' names and what they do.
    Q_PROPERTY(QList<netvane::ui::DetailRow> adapters MEMBER m_adapters NOTIFY changed)
    /// The name of the adapter that is shown; empty for the one in use.
    Q_PROPERTY(QString adapter READ adapter WRITE setAdapter NOTIFY adapterChanged)
    Q_PROPERTY(netvane::ui::NetworkTable* table READ table CONSTANT)

public:
    static constexpr std::chrono::milliseconds readInterval {2000};

    /// All services exist and outlive this. Without a history there are no moves.
    explicit AirState(
        const services::Services& services, std::shared_ptr<timeline::Source> history = {});
    ~AirState() override;

    bool isShown() const { return m_refresh != nullptr; }
    void setShown(bool isShown);
    bool isScanning() const;
    QString scanNote() const;
    const QString& adapter() const { return m_adapter; }
    void setAdapter(const QString& adapter);
    NetworkTable* table() { return &m_table; }

    const std::vector<platform::AirNetwork>& networks() const { return m_heard.networks(); }
    const std::vector<platform::AirChannel>& channels() const { return m_reading.channels; }

    /// The scan of the channel card, at the user's request.
    Q_INVOKABLE void scan();

Q_SIGNALS:
    void isShownChanged();
    void changed();
    void scanChanged();
    void movesChanged();
    void adapterChanged();

private:
    void read();
    void take(const base::Result<platform::AirReading>& reading);
    void tell();
    void tellBands();
    void tellRoaming();
    void readMoves();

    const services::Services& m_services;
    const std::shared_ptr<timeline::Source> m_history;
    std::unique_ptr<base::Timer> m_refresh; ///< runs while this is shown
    bool m_isReading = false;
    QString m_adapter;
    platform::AirReading m_reading;
    /// Two earlier ones: rates of a few seconds would jump.
    platform::AirReading m_before;
    platform::AirReading m_between;
    platform::AirChange m_change;
    air::HeardNetworks m_heard;
    NetworkTable m_table;
    QString m_problem;
    QList<AirBand> m_bands;
    QList<DetailRow> m_link;
    QString m_roaming;
    QList<DetailRow> m_moves;
    QList<DetailRow> m_adapters;
};

} // namespace netvane::ui
