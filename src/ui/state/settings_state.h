#pragma once

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::ui {

/// The settings screen. Every control acts at once; nothing is kept here. Main thread.
class SettingsState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by its window")
    Q_PROPERTY(QString version READ version CONSTANT)
    /// What came of the last "Check for Updates"; empty before the first and when the screen is
    /// opened again.
    Q_PROPERTY(QString updateAnswer READ updateAnswer NOTIFY updateAnswerChanged)
    /// As it was when the screen was opened.
    Q_PROPERTY(bool needsPermission READ needsPermission NOTIFY needsPermissionChanged)
    Q_PROPERTY(bool notificationsEnabled READ notificationsEnabled WRITE setNotificationsEnabled
            NOTIFY notificationsChanged)
    Q_PROPERTY(bool mayNotify READ mayNotify NOTIFY notificationsChanged)

public:
    /// All services exist and outlive this.
    explicit SettingsState(const services::Services& services);

    QString version() const;
    QString updateAnswer() const { return m_updateAnswer; }
    bool needsPermission() const { return m_needsPermission; }
    bool notificationsEnabled() const;
    void setNotificationsEnabled(bool enabled);
    bool mayNotify() const;

    /// The screen was opened.
    Q_INVOKABLE void appear();
    Q_INVOKABLE void goBack() { Q_EMIT backRequested(); }
    Q_INVOKABLE void checkForUpdates();
    Q_INVOKABLE void openLocationSettings();
    Q_INVOKABLE void requestNotificationPermission();
    Q_INVOKABLE void copyReport();
    Q_INVOKABLE void shareReport();
    Q_INVOKABLE void saveReport();
    Q_INVOKABLE void resetOnboarding();
    Q_INVOKABLE void quit();

Q_SIGNALS:
    void updateAnswerChanged();
    void needsPermissionChanged();
    void notificationsChanged();
    void backRequested();

private:
    const services::Services& m_services;
    QString m_updateAnswer;
    bool m_needsPermission = false;
};

} // namespace netvane::ui
