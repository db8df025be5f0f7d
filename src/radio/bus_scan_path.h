#pragma once

#include "radio/scan_path.h"

#include <QDBusMessage>

#include <functional>
#include <optional>

namespace netvane::radio {

inline const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

/// What a signal of a service says about the scan that was requested.
enum class ScanSignal { Unrelated, Finished, Failed };

/// The common part of the scan paths through a service on the system bus: some questions, a request
/// that is accepted or refused, and then a signal. Qt delivers a signal from any sender (matching
/// the sender would make Qt wait for the bus), so the sender is compared here with the owner of
/// the service's name.
class BusScanPath : public ScanPath {
    Q_OBJECT

public:
    QString silentService() const override { return m_isAccepted ? QString() : m_title; }

protected:
    /// `title` is the service's name in messages to the user.
    BusScanPath(const QDBusConnection& systemBus, QString service, QString title);

    QDBusMessage methodCall(const QString& path, const QString& interface, const QString& method,
        const QVariantList& arguments = {}) const;
    /// Passes on an answer that has this signature. Any other answer ends this path.
    void ask(const QDBusMessage& call, const QString& signature,
        std::function<void(const QDBusMessage&)> take);
    /// Listens for the signal that reports the end, and then requests the scan.
    void startScan(const QDBusMessage& call, const QDBusMessage& endSignal);
    /// Ends this path: the service does not own the interface.
    void declineScan();
    void fail(const QString& text, base::FailureKind kind = base::FailureKind::Other);

    /// Called for a signal from the service after the request was accepted.
    virtual ScanSignal meaningOf(const QDBusMessage& signal) const = 0;

private Q_SLOTS:
    void takeSignal(const QDBusMessage& signal);
    void takeOwnerChange(const QDBusMessage& signal);

private:
    void send(const QDBusMessage& call, const QString& signature,
        std::function<void(const QDBusMessage&)> take);
    void takeError(const QDBusMessage& error);
    bool end();

    QDBusConnection m_bus;
    const QString m_service;
    const QString m_title;
    QString m_owner; ///< the service's unique name; empty before the first question
    bool m_isAccepted = false;
    bool m_isOver = false;
};

/// The changes in a PropertiesChanged signal (org.freedesktop.DBus.Properties, sa{sv}as); absent if
/// it is another signal or about another interface.
std::optional<QVariantMap> changedProperties(const QDBusMessage& signal, const QString& interface);
/// The signal to listen for.
QDBusMessage propertiesChanged(const QString& path);

} // namespace netvane::radio
