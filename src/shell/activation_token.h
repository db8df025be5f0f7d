#pragma once

#include <QString>

namespace netvane::shell {

/// Lets the next window that asks for the keyboard get it: the user, by what the token stands for
/// (see `platform::InstanceClaim`), has just asked for it in another program. Wayland compositors
/// refuse it otherwise. Empty or too long a token is ignored. Main thread.
void useActivationToken(const QString& token);

} // namespace netvane::shell
