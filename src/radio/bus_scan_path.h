#pragma once

#include "radio/scan_path.h"

#include <QDBusMessage>

#include <functional>

namespace netvane::radio {

/// What the services on the system bus have in common: some questions, a request that is accepted
/// or refused, and then a signal. Those come without any check of who sent them (Qt would look up
/// owners for it, and wait), so their sender is compared with the owner of the service's name.
class BusScanPath : public ScanPath {
    Q_OBJECT

protected:
    /// `title` is the service's name for people.
    BusScanPath(const QDBusConnection& systemBus, QString service, QString title);

    QDBusMessage methodCall(
        const QString& path, const QString& interface, const QString& method) const;
    /// Hands on an answer that has this signature; whatever else comes ends this path.
    void ask(const QDBusMessage& call, const QString& signature,
        std::function<void(const QDBusMessage&)> take);
    /// Listens for the signal that tells the end, and then asks for the scan.
    void request(const QDBusMessage& call, const QString& replySignature,
        const QDBusMessage& endSignal, const QString& endSignature);
    void passOn();
    void fail(const QString& text, base::FailureKind kind = base::FailureKind::Other);

    /// What a signal from the service after the request was accepted says: nothing of the end
    /// (absent), the end, or a failure.
    virtual std::optional<base::Result<std::monostate>> verdictOf(
        const QDBusMessage& signal) const = 0;

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

/// Whether a signal PropertiesChanged (org.freedesktop.DBus.Properties, sa{sv}as) is about this
/// interface, and then the changes that it names.
std::optional<QVariantMap> changedProperties(const QDBusMessage& signal, const QString& interface);
/// The signal to listen for.
QDBusMessage propertiesChanged(const QString& path);

} // namespace netvane::radio
