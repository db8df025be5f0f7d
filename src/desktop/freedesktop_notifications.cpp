#include "desktop/freedesktop_notifications.h"

#include "bus/bus_answer.h"

#include <QPointer>

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

using Authorization = platform::NotificationAuthorization;

const QString kService = u"org.freedesktop.Notifications"_s;
const QString kServicePath = u"/org/freedesktop/Notifications"_s;
const QString kBus = u"org.freedesktop.DBus"_s;
const QString kBusPath = u"/org/freedesktop/DBus"_s;
const QString kNoService = u"There is no notification service in this session"_s;

constexpr int kAnswerLimitMs = 25'000; // one that is only being started takes its time
// The longest text of ours, with a network's name in it whose every byte is written as an escape,
// stays below.
constexpr qsizetype kLongestText = 200;

/// Never starts the service: only `whenRunning` does.
QDBusMessage serviceCall(const QString& destination, const QString& method)
{
    auto call = QDBusMessage::createMethodCall(destination, kServicePath, kService, method);
    call.setAutoStartService(false);
    return call;
}

QDBusMessage busCall(const QString& method)
{
    return QDBusMessage::createMethodCall(kBus, kBusPath, kBus, method);
}

bool isReply(const QDBusMessage& answer, const QString& signature)
{
    return answer.type() == QDBusMessage::ReplyMessage && answer.signature() == signature;
}

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
    switch (category) {
    case platform::NotificationCategory::NetworkConnected:
        return u"network.connected"_s;
    case platform::NotificationCategory::NetworkDisconnected:
        return u"network.disconnected"_s;
    case platform::NotificationCategory::Network:
        break;
    }
    return u"network"_s;
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

template <typename... Values>
std::function<void(Values...)> whileAlive(QObject* owner, std::function<void(Values...)> handler)
{
    return [owner = QPointer(owner), handler = std::move(handler)](Values... values) {
        if (owner)
            handler(values...);
    };
}

} // namespace

std::optional<NotificationService> notificationService(const QDBusMessage& answer)
{
    if (!isReply(answer, u"as"_s))
        return {};
    const auto capabilities = answer.arguments().value(0).toStringList();
    return NotificationService {.hasBodyMarkup = capabilities.contains(u"body-markup"_s)};
}

FreedesktopNotifications::FreedesktopNotifications(bus::BusLink& sessionBus)
    : m_sessionBus(sessionBus)
{
    connect(&m_sessionBus, &bus::BusLink::stateChanged, this,
        &FreedesktopNotifications::followSessionBus);
    followSessionBus();
}

void FreedesktopNotifications::followSessionBus()
{
    if (m_sessionBus.state() == bus::BusLink::State::Connecting)
        return;
    if (m_sessionBus.state() == bus::BusLink::State::Absent) {
        ++m_questions;
        m_service.reset();
        settle(Authorization::Denied);
        return;
    }
    // Only taken as a reason to ask again, so it does not matter who sends it.
    QDBusConnection bus = m_sessionBus.connection();
    bus.connect(QString(), kBusPath, kBus, u"NameOwnerChanged"_s, {kService}, u"sss"_s, this,
        SLOT(handleOwnerChanged()));
    readCapabilities();
}

void FreedesktopNotifications::handleOwnerChanged()
{
    m_service.reset();
    if (isConnected())
        readCapabilities();
}

void FreedesktopNotifications::readCapabilities()
{
    m_isAsking = true;
    ask(bus::ownerQuestion(kService), [this](const QDBusMessage& answer) {
        if (!isReply(answer, u"s"_s)) {
            takeCapabilities({}, answer);
            return;
        }
        const auto owner = answer.arguments().value(0).toString();
        ask(serviceCall(owner, u"GetCapabilities"_s),
            [this, owner](
                const QDBusMessage& capabilities) { takeCapabilities(owner, capabilities); });
    });
}

void FreedesktopNotifications::takeCapabilities(const QString& owner, const QDBusMessage& answer)
{
    if (auto service = notificationService(answer)) {
        service->owner = owner;
        m_service = std::move(service);
        settle(Authorization::Authorized);
    } else if (bus::isNobodyThere(answer)) {
        readActivatableNames();
    } else {
        settle(bus::isLate(answer) ? m_status : Authorization::Denied, failureText(answer));
    }
}

void FreedesktopNotifications::readActivatableNames()
{
    ask(busCall(u"ListActivatableNames"_s), [this](const QDBusMessage& answer) {
        const bool isStartable = isReply(answer, u"as"_s)
            && answer.arguments().value(0).toStringList().contains(kService);
        settle(isStartable ? Authorization::Authorized : Authorization::Denied);
    });
}

/// The answer to a question that a later one has overtaken is not taken.
void FreedesktopNotifications::ask(
    const QDBusMessage& call, std::function<void(const QDBusMessage&)> take)
{
    bus::askBus(m_sessionBus.connection(), call, kAnswerLimitMs, this,
        [this, question = ++m_questions, take = std::move(take)](const QDBusMessage& answer) {
            if (question == m_questions)
                take(answer);
        });
}

void FreedesktopNotifications::settle(Authorization status, std::optional<QString> failure)
{
    m_isAsking = false;
    m_failure = std::move(failure);
    const bool isChanged = std::exchange(m_status, status) != status;
    for (const auto& action : std::exchange(m_waiting, {}))
        action();
    if (isChanged)
        Q_EMIT settingsChanged();
}

/// What a running service said stays true until another one takes its name; anything else may have
/// changed without a word.
void FreedesktopNotifications::refresh()
{
    if (!m_service && !m_isAsking && isConnected())
        readCapabilities();
}

void FreedesktopNotifications::whenKnown(std::function<void()> action)
{
    if (m_isAsking)
        m_waiting.push_back(std::move(action));
    else
        QMetaObject::invokeMethod(this, std::move(action), Qt::QueuedConnection);
}

void FreedesktopNotifications::whenRunning(std::function<void()> action)
{
    if (m_isAsking) {
        m_waiting.push_back([this, action = std::move(action)] { whenRunning(action); });
        return;
    }
    if (m_service) {
        action(); // at once, since it may be gone later
        return;
    }
    if (!isConnected()) {
        whenKnown(std::move(action));
        return;
    }
    constexpr uint kNoFlags = 0;
    const auto start = busCall(u"StartServiceByName"_s) << kService << kNoFlags;
    bus::askBus(m_sessionBus.connection(), start, kAnswerLimitMs, this,
        [this, action = std::move(action)](const QDBusMessage& answer) {
            // Who starts takes its name before this answer comes, and is being asked then.
            if (answer.type() == QDBusMessage::ErrorMessage)
                m_failure = failureText(answer);
            else
                refresh();
            whenKnown(action);
        });
}

void FreedesktopNotifications::getNotificationSettings(QObject* owner, SettingsHandler done)
{
    refresh();
    whenKnown([this, done = whileAlive(owner, std::move(done))] { done(m_status); });
}

void FreedesktopNotifications::requestAuthorization(
    platform::NotificationOptions, QObject* owner, PermissionHandler done)
{
    refresh();
    whenKnown([this, done = whileAlive(owner, std::move(done))] {
        done(m_status == Authorization::Authorized, m_failure);
    });
}

void FreedesktopNotifications::add(
    const platform::NotificationRequest& request, QObject* owner, AddHandler done)
{
    send(request, whileAlive(owner, std::move(done)), Attempt::First);
}

void FreedesktopNotifications::send(
    const platform::NotificationRequest& request, const AddHandler& done, Attempt attempt)
{
    whenRunning([this, request, done, attempt] {
        if (m_service)
            notify(request, done, attempt);
        else
            done(m_failure.value_or(kNoService));
    });
}

/// To the very process whose capabilities are known, so that a markup-less successor never gets
/// text with escapes in it. One that is gone did not show it, so its successor may.
void FreedesktopNotifications::notify(
    const platform::NotificationRequest& request, const AddHandler& done, Attempt attempt)
{
    auto call = serviceCall(m_service->owner, u"Notify"_s);
    call.setArguments(notifyArguments(request, m_service->hasBodyMarkup));
    bus::askBus(m_sessionBus.connection(), call, kAnswerLimitMs, this,
        [this, request, done, attempt](const QDBusMessage& answer) {
            if (bus::isNobodyThere(answer) && attempt == Attempt::First) {
                handleOwnerChanged();
                send(request, done, Attempt::Second);
                return;
            }
            done(isReply(answer, u"u"_s) ? std::nullopt : std::optional(failureText(answer)));
        });
}

} // namespace netvane::desktop
