#pragma once

namespace netvane::test {

/// Moves the calling thread, and the processes that it starts from now on, into a network namespace
/// of its own with only loopback, so that a program under test cannot reach any host. Call it
/// before other threads start, since without root it needs a user namespace too. False if the
/// system does not allow it.
bool enterOwnNetwork();

} // namespace netvane::test
