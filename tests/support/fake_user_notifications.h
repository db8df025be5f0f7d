#pragma once

#include "simulated/user_notifications.h"

namespace netvane::test {

using FakeUserNotifications = simulated::UserNotifications;

} // namespace netvane::test
