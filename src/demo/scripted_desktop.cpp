#include "demo/scripted_desktop.h"

#include "base/log.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.demo")

} // namespace

std::optional<bool> MemoryDefaults::boolean(const QString& key) const
{
    const QVariant value = m_values.value(key);
    return value.typeId() == QMetaType::Bool ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<QString> MemoryDefaults::text(const QString& key) const
{
    const QVariant value = m_values.value(key);
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

void LoggedNotifications::getNotificationSettings(QObject* owner, SettingsHandler done)
{
    m_stage->later(0ms, owner,
        [done = std::move(done)] { done(platform::NotificationAuthorization::Authorized); });
}

void LoggedNotifications::requestAuthorization(
    platform::NotificationOptions, QObject* owner, PermissionHandler done)
{
    m_stage->later(0ms, owner, [done = std::move(done)] { done(true, {}); });
}

void LoggedNotifications::add(
    const platform::NotificationRequest& request, QObject* owner, AddHandler done)
{
    base::log(logCategory(),
        u"Demonstration: notification \"%1\": %2"_s.arg(request.title, request.body));
    m_stage->later(0ms, owner, [done = std::move(done)] { done({}); });
}

bool LoggedUrlOpener::openUrl(const QUrl& url)
{
    base::log(logCategory(), u"Demonstration: would open "_s + url.toDisplayString());
    return true;
}

void ChosenAppearance::setColorScheme(platform::ColorScheme scheme)
{
    if (std::exchange(m_scheme, scheme) != scheme)
        Q_EMIT colorSchemeChanged();
}

void GrantedClaim::claim()
{
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT decided(true); }, Qt::QueuedConnection);
}

} // namespace netvane::demo
