#pragma once

#include "platform/user_notifications.h"
#include "simulated/questions.h"

namespace netvane::simulated {

/// Records notifications. Requests wait for an answer of the test. Main thread.
class UserNotifications final : public platform::UserNotificationCenter {
public:
    using Status = platform::NotificationAuthorization;

    void getNotificationSettings(QObject* owner, SettingsHandler done) override
    {
        settingsAsked.add(owner, std::move(done));
    }
    void requestAuthorization(
        platform::NotificationOptions options, QObject* owner, PermissionHandler done) override
    {
        requestedOptions.push_back(options.toInt());
        permissionsAsked.add(owner, std::move(done));
    }
    void add(const platform::NotificationRequest& request, QObject* owner, AddHandler done) override
    {
        added.push_back(request);
        addsPending.add(owner, std::move(done));
    }

    // Each answers all requests of its kind.
    void tellSettings(Status status) { settingsAsked.answer(status); }
    void tellPermission(bool granted, const std::optional<QString>& error = {})
    {
        permissionsAsked.answer(granted, error);
    }
    void finishAdds(const std::optional<QString>& error = {}) { addsPending.answer(error); }

    Questions<Status> settingsAsked;
    Questions<bool, std::optional<QString>> permissionsAsked;
    Questions<std::optional<QString>> addsPending;
    std::vector<int> requestedOptions;
    std::vector<platform::NotificationRequest> added;
};

} // namespace netvane::simulated
