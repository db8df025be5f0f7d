#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace netvane::ui {

/// One of the program's own pictures, drawn in one colour at any size. The files lie in `symbols/`,
/// each named by its symbol, drawn on a grid of 24.
class Symbol : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name MEMBER m_name NOTIFY lookChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY lookChanged)
    /// Width and height in device-independent pixels.
    Q_PROPERTY(qreal size MEMBER m_size NOTIFY lookChanged)

public:
    explicit Symbol(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void lookChanged();

private:
    QString m_name;
    QColor m_color = Qt::black;
    qreal m_size = 16;
};

} // namespace netvane::ui
