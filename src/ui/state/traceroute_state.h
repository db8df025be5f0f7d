#pragma once

#include <QObject>
#include <QVariant>
#include <QtQmlIntegration>

namespace netvane::diagnostics {
class TracerouteService;
struct TracerouteHop;
} // namespace netvane::diagnostics

namespace netvane::ui {

/// One hop as it is listed.
struct TracerouteRow {
    Q_GADGET
    QML_VALUE_TYPE(tracerouteRow)
    Q_PROPERTY(QString number MEMBER number)
    /// The host's name, or its address where there is no name.
    Q_PROPERTY(QString name MEMBER name)
    /// Below the name; undefined where there is no name.
    Q_PROPERTY(QVariant address MEMBER address)
    Q_PROPERTY(QString latency MEMBER latency)
    Q_PROPERTY(bool isAnswered MEMBER isAnswered)
    /// The whole row for screen readers.
    Q_PROPERTY(QString summary READ summary)

public:
    QString number;
    QString name;
    QVariant address;
    QString latency;
    bool isAnswered = false;

    QString summary() const;
    bool operator==(const TracerouteRow&) const = default;
};

TracerouteRow tracerouteRow(const diagnostics::TracerouteHop& hop);

/// Takes a host, starts and stops the trace to it, and lists the hops. Main thread.
class TracerouteState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    Q_PROPERTY(QList<netvane::ui::TracerouteRow> hops READ hops NOTIFY hopsChanged)
    /// Why the last trace ended early; empty while one runs.
    Q_PROPERTY(QString note READ note NOTIFY isRunningChanged)
    /// What is typed; the default target at first.
    Q_PROPERTY(QString targetInput READ targetInput WRITE setTargetInput NOTIFY targetInputChanged)

public:
    /// The service outlives this.
    explicit TracerouteState(diagnostics::TracerouteService& service);

    bool isRunning() const;
    QList<TracerouteRow> hops() const;
    const QString& note() const;
    const QString& targetInput() const { return m_targetInput; }
    void setTargetInput(const QString& input);

    /// Traces what was typed, just as it was typed, or the default target without anything.
    Q_INVOKABLE void run();
    Q_INVOKABLE void stop();

Q_SIGNALS:
    void isRunningChanged();
    void hopsChanged();
    void targetInputChanged();

private:
    diagnostics::TracerouteService& m_service;
    QString m_targetInput;
};

} // namespace netvane::ui
