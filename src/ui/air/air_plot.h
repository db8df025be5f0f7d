#pragma once

#include "ui/air/air_state.h"

#include <QColor>
#include <QFont>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace netvane::ui {

/// Draws one band: each network as wide as the spectrum that it covers and as high as its signal,
/// our own on top with a thick line. What the country does not allow is shaded.
class AirPlot : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(netvane::ui::AirState* air READ air WRITE setAir NOTIFY airChanged REQUIRED)
    /// As `platform::ChannelBand`.
    Q_PROPERTY(int band MEMBER m_band NOTIFY lookChanged REQUIRED)
    Q_PROPERTY(QColor ownColor MEMBER m_ownColor NOTIFY lookChanged)
    Q_PROPERTY(QColor otherColor MEMBER m_otherColor NOTIFY lookChanged)
    Q_PROPERTY(QColor gridColor MEMBER m_gridColor NOTIFY lookChanged)
    Q_PROPERTY(QColor textColor MEMBER m_textColor NOTIFY lookChanged)
    /// Behind it; names stand on it.
    Q_PROPERTY(QColor surface MEMBER m_surface NOTIFY lookChanged)
    Q_PROPERTY(QFont font MEMBER m_font NOTIFY lookChanged)

public:
    explicit AirPlot(QQuickItem* parent = nullptr);

    AirState* air() const { return m_air; }
    void setAir(AirState* air);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void airChanged();
    void lookChanged();

private:
    double xOf(double mhz) const;
    double yOf(int signalDbm) const;
    void paintGrid(QPainter& painter) const;
    void paintNetwork(QPainter& painter, const platform::AirNetwork& network) const;
    void paintNames(
        QPainter& painter, const std::vector<const platform::AirNetwork*>& networks) const;

    QPointer<AirState> m_air;
    int m_band = 0;
    QColor m_ownColor, m_otherColor, m_gridColor, m_textColor, m_surface;
    QFont m_font;
};

} // namespace netvane::ui
