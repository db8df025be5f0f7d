#pragma once

#include "platform/user_notifications.h"

#include <QPointer>

#include <utility>
#include <vector>

namespace netvane::test {

/// Keeps what it is asked until the test answers.
class FakeUserNotifications : public platform::UserNotificationCenter {
public:
    using Status = platform::NotificationAuthorization;

    void getNotificationSettings(QObject* owner, SettingsHandler done) override
    {
        settingsAsked.push_back({owner, std::move(done)});
    }
    void requestAuthorization(
        platform::NotificationOptions options, QObject* owner, PermissionHandler done) override
    {
        requestedOptions.push_back(options.toInt());
        permissionsAsked.push_back({owner, std::move(done)});
    }
    void add(const platform::NotificationRequest& request, QObject* owner, AddHandler done) override
    {
        added.push_back(request);
        addsPending.push_back({owner, std::move(done)});
    }

    /// Each answers all questions of its kind.
    void tellSettings(Status status) { answer(settingsAsked, status); }
    void tellPermission(bool granted, const std::optional<QString>& error = {})
    {
        answer(permissionsAsked, granted, error);
    }
    void finishAdds(const std::optional<QString>& error = {}) { answer(addsPending, error); }

    template <typename Handler>
    using Pending = std::vector<std::pair<QPointer<QObject>, Handler>>;
    Pending<SettingsHandler> settingsAsked;
    Pending<PermissionHandler> permissionsAsked;
    Pending<AddHandler> addsPending;
    std::vector<int> requestedOptions;
    std::vector<platform::NotificationRequest> added;

private:
    template <typename Handler, typename... Values>
    static void answer(Pending<Handler>& pending, const Values&... values)
    {
        for (const auto& [owner, done] : std::exchange(pending, {})) {
            if (owner)
                done(values...);
        }
    }
};

} // namespace netvane::test
