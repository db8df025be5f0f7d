#pragma once

#include <QObject>
#include <QtQmlIntegration>

#include <optional>

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
    /// What came of the last press on "Check for Updates" or on an export of the report. All but
    /// one of them are empty; all of them before the first press and when the screen is opened
    /// again.
    Q_PROPERTY(QString updateAnswer MEMBER m_updateAnswer NOTIFY answersChanged)
    Q_PROPERTY(QString reportAnswer MEMBER m_reportAnswer NOTIFY answersChanged)
    Q_PROPERTY(QString reportProblem MEMBER m_reportProblem NOTIFY answersChanged)
    /// As it was when the screen was opened.
    Q_PROPERTY(bool needsPermission READ needsPermission NOTIFY needsPermissionChanged)
    Q_PROPERTY(bool notificationsEnabled READ notificationsEnabled WRITE setNotificationsEnabled
            NOTIFY notificationsChanged)
    Q_PROPERTY(bool mayNotify READ mayNotify NOTIFY notificationsChanged)

public:
    /// All services exist and outlive this.
    explicit SettingsState(const services::Services& services);

    QString version() const;
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
    void answersChanged();
    void needsPermissionChanged();
    void notificationsChanged();
    void backRequested();

private:
    void forgetAnswers();
    void answer(QString& line, const QString& text);
    std::optional<QString> newReport();

    const services::Services& m_services;
    QString m_updateAnswer;
    QString m_reportAnswer;
    QString m_reportProblem;
    bool m_needsPermission = false;
};

} // namespace netvane::ui
