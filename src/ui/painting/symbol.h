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
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    /// Width and height in device-independent pixels.
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged)

public:
    explicit Symbol(QQuickItem* parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString& name);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    qreal size() const { return m_size; }
    void setSize(qreal size);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

private:
    QString m_name;
    QColor m_color = Qt::black;
    qreal m_size = 16;
};

} // namespace netvane::ui
