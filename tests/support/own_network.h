#pragma once

namespace netvane::test {

/// Moves the calling thread, and the processes that it starts from now on, into a network namespace
/// of its own that holds nothing but loopback, so that a program under test can reach nobody.
/// Before other threads begin, since without root it takes a user namespace too. False where the
/// system does not allow it.
bool enterOwnNetwork();

} // namespace netvane::test
