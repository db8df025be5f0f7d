#include "desktop/freedesktop_notifications.h"

#include <QPointer>

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

using Authorization = platform::NotificationAuthorization;

const QString kService = u"org.freedesktop.Notifications"_s;
const QString kServicePath = u"/org/freedesktop/Notifications"_s;
const QString kNoService = u"There is no notification service in this session"_s;

// More than our longest text, which has a network's name in it with every byte as an escape.
constexpr qsizetype kLongestText = 200;

QString shortened(const QString& text)
{
    if (text.size() <= kLongestText)
        return text;
    QString start = text.first(kLongestText - 1);
    if (start.back().isHighSurrogate())
        start.chop(1);
    return start + u'…';
}

QString failureText(const QDBusMessage& answer)
{
    if (answer.type() != QDBusMessage::ErrorMessage)
        return u"The notification service gave an answer that makes no sense"_s;
    return shortened(answer.errorMessage().isEmpty() ? answer.errorName() : answer.errorMessage());
}

QString categoryName(platform::NotificationCategory category)
{
    static const QHash<platform::NotificationCategory, QString> names {
        {platform::NotificationCategory::NetworkConnected, u"network.connected"_s},
        {platform::NotificationCategory::NetworkDisconnected, u"network.disconnected"_s},
    };
    return names.value(category, u"network"_s);
}

/// The arguments of Notify, susssasa{sv}i. The summary is plain text for every service.
QVariantList notifyArguments(const platform::NotificationRequest& request, bool hasBodyMarkup)
{
    constexpr uint kReplacesNothing = 0;
    constexpr int kExpiresByDefault = -1;
    const QString body = shortened(request.body);
    const QVariantMap hints {
        {u"desktop-entry"_s, u"org.netvane.Netvane"_s},
        {u"category"_s, categoryName(request.category)},
        {u"sound-name"_s, u"message-new-instant"_s},
    };
    return {u"Netvane"_s, kReplacesNothing, QString(), shortened(request.title),
        hasBodyMarkup ? body.toHtmlEscaped() : body, QStringList(), hints, kExpiresByDefault};
}

template <typename Handler>
Handler whileAlive(QObject* owner, Handler handler)
{
    return [owner = QPointer(owner), handler = std::move(handler)](const auto&... values) {
        if (owner)
            handler(values...);
    };
}

} // namespace

std::optional<NotificationService> notificationService(const QDBusMessage& answer)
{
    if (!bus::isReply(answer, u"as"_s))
        return {};
    const auto capabilities = answer.arguments().value(0).toStringList();
    return NotificationService {.hasBodyMarkup = capabilities.contains(u"body-markup"_s)};
}

FreedesktopNotifications::FreedesktopNotifications(bus::BusLink& sessionBus)
    : m_bus(sessionBus, kService, kServicePath, kService)
{
    connect(&m_bus, &bus::BusService::reachable, this, &FreedesktopNotifications::readService);
    connect(&m_bus, &bus::BusService::gone, this, &FreedesktopNotifications::readService);
    m_bus.begin();
}

/// What a running service said stays true until another process takes its name. Anything else may
/// change without a signal.
void FreedesktopNotifications::readService()
{
    m_service.reset();
    if (!m_bus.isBusThere()) {
        setKnown(Authorization::Denied);
        return;
    }
    m_isReading = true;
    if (m_bus.owner().isEmpty())
        readActivatableNames();
    else
        askCapabilities(m_bus.owner(), bus::kAnswerLimitMs);
}

/// Nobody waits longer than usual, but the answer is taken whenever it comes.
void FreedesktopNotifications::askCapabilities(const QString& owner, int limitMs)
{
    const auto call
        = QDBusMessage::createMethodCall(owner, kServicePath, kService, u"GetCapabilities"_s);
    const auto take = [this, owner, limitMs](const QDBusMessage& answer) {
        takeCapabilities(owner, answer);
        if (bus::isLate(answer) && limitMs != bus::kNoLimitMs)
            askCapabilities(owner, bus::kNoLimitMs);
    };
    m_bus.ask(call, take, limitMs);
}

void FreedesktopNotifications::takeCapabilities(const QString& owner, const QDBusMessage& answer)
{
    m_service = notificationService(answer);
    if (m_service) {
        m_service->owner = owner;
        setKnown(Authorization::Authorized);
    } else if (bus::isNobodyThere(answer)) {
        readActivatableNames();
    } else {
        setKnown(bus::isLate(answer) ? m_status : Authorization::Denied, failureText(answer));
    }
}

void FreedesktopNotifications::readActivatableNames()
{
    m_bus.ask(bus::busCall(u"ListActivatableNames"_s), [this](const QDBusMessage& answer) {
        const bool isStartable = bus::isReply(answer, u"as"_s)
            && answer.arguments().value(0).toStringList().contains(kService);
        setKnown(isStartable ? Authorization::Authorized : Authorization::Denied);
    });
}

void FreedesktopNotifications::setKnown(Authorization status, std::optional<QString> failure)
{
    m_isReading = false;
    m_failure = std::move(failure);
    const bool isChanged = std::exchange(m_status, status) != status;
    for (const auto& action : std::exchange(m_waiting, {}))
        action();
    if (isChanged)
        Q_EMIT settingsChanged();
}

void FreedesktopNotifications::readIfUnknown()
{
    if (!m_service && !m_isReading && m_bus.isBusThere())
        readService();
}

/// Always on a later turn of the main loop.
void FreedesktopNotifications::whenKnown(std::function<void()> action)
{
    if (m_isReading)
        m_waiting.push_back(std::move(action));
    else
        QMetaObject::invokeMethod(this, std::move(action), Qt::QueuedConnection);
}

void FreedesktopNotifications::getNotificationSettings(QObject* owner, SettingsHandler done)
{
    readIfUnknown();
    whenKnown([this, done = whileAlive(owner, std::move(done))] { done(m_status); });
}

void FreedesktopNotifications::requestAuthorization(
    platform::NotificationOptions, QObject* owner, PermissionHandler done)
{
    readIfUnknown();
    whenKnown([this, done = whileAlive(owner, std::move(done))] {
        done(m_status == Authorization::Authorized, m_failure);
    });
}

void FreedesktopNotifications::add(
    const platform::NotificationRequest& request, QObject* owner, AddHandler done)
{
    const Delivery delivery {request, whileAlive(owner, std::move(done))};
    whenKnown([this, delivery] { deliver(delivery); });
}

void FreedesktopNotifications::deliver(Delivery delivery)
{
    if (m_service)
        notify(delivery);
    else if (m_bus.isBusThere() && std::exchange(delivery.mayStart, false))
        startService(delivery);
    else
        delivery.done(m_failure.value_or(kNoService));
}

void FreedesktopNotifications::startService(const Delivery& delivery)
{
    constexpr uint kNoFlags = 0;
    const auto call = bus::busCall(u"StartServiceByName"_s) << kService << kNoFlags;
    bus::askBus(m_bus.connection(), call, bus::kAnswerLimitMs, this,
        [this, delivery](const QDBusMessage& answer) {
            // The service takes its name before this answer comes, and is being read then.
            if (answer.type() == QDBusMessage::ErrorMessage)
                m_failure = failureText(answer);
            else
                readIfUnknown();
            whenKnown([this, delivery] { deliver(delivery); });
        });
}

/// Sends to the process whose capabilities are known: escaped text never reaches a successor that
/// has no markup. A process that is gone did not show it, so its successor gets it.
void FreedesktopNotifications::notify(Delivery delivery)
{
    auto call
        = QDBusMessage::createMethodCall(m_service->owner, kServicePath, kService, u"Notify"_s);
    call.setAutoStartService(false);
    call.setArguments(notifyArguments(delivery.request, m_service->hasBodyMarkup));
    bus::askBus(m_bus.connection(), call, bus::kAnswerLimitMs, this,
        [this, delivery = std::move(delivery)](const QDBusMessage& answer) mutable {
            if (bus::isNobodyThere(answer) && std::exchange(delivery.mayRepeat, false))
                repeat(std::move(delivery));
            else if (bus::isReply(answer, u"u"_s))
                delivery.done({});
            else
                delivery.done(failureText(answer));
        });
}

void FreedesktopNotifications::repeat(Delivery delivery)
{
    delivery.mayStart = true;
    readService();
    whenKnown([this, delivery = std::move(delivery)] { deliver(delivery); });
}

} // namespace netvane::desktop
