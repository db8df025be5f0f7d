#pragma once

#include "demo/stage.h"
#include "platform/appearance.h"
#include "platform/instance_claim.h"
#include "platform/status_notifier_host.h"
#include "platform/url_opener.h"
#include "platform/user_defaults.h"
#include "platform/user_notifications.h"

#include <QHash>
#include <QVariant>

namespace netvane::demo {

/// Settings that are gone with the program.
class MemoryDefaults final : public platform::UserDefaults {
public:
    std::optional<bool> boolean(const QString& key) const override;
    std::optional<QString> text(const QString& key) const override;
    void setBoolean(const QString& key, bool value) override { m_values[key] = value; }
    void setText(const QString& key, const QString& value) override { m_values[key] = value; }
    void remove(const QString& key) override { m_values.remove(key); }

private:
    QHash<QString, QVariant> m_values;
};

/// Takes notifications to the log.
class LoggedNotifications final : public platform::UserNotificationCenter {
public:
    explicit LoggedNotifications(std::shared_ptr<Stage> stage)
        : m_stage(std::move(stage))
    {
    }

    void getNotificationSettings(QObject* owner, SettingsHandler done) override;
    void requestAuthorization(
        platform::NotificationOptions options, QObject* owner, PermissionHandler done) override;
    void add(
        const platform::NotificationRequest& request, QObject* owner, AddHandler done) override;

private:
    const std::shared_ptr<Stage> m_stage;
};

/// Takes addresses to the log: they lead nowhere.
class LoggedUrlOpener final : public platform::UrlOpener {
public:
    bool openUrl(const QUrl& url) override;
};

class ChosenAppearance final : public platform::Appearance {
public:
    explicit ChosenAppearance(platform::ColorScheme scheme)
        : m_scheme(scheme)
    {
    }

    platform::ColorScheme colorScheme() const override { return m_scheme; }
    void setColorScheme(platform::ColorScheme scheme);

private:
    platform::ColorScheme m_scheme;
};

/// What the program found out about its session at the start.
class KnownStatusArea final : public platform::StatusNotifierHost {
public:
    explicit KnownStatusArea(bool isPresent)
        : m_isPresent(isPresent)
    {
    }

    std::optional<bool> isPresent() const override { return m_isPresent; }

private:
    const bool m_isPresent;
};

/// Demonstrations do not get into each other's way.
class GrantedClaim final : public platform::InstanceClaim {
public:
    void claim() override;
};

} // namespace netvane::demo
