#pragma once

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace netvane::test {

/// One class of tests of an executable.
struct Suite {
    std::function<std::unique_ptr<QObject>()> make;
    /// Called before any application object or thread exists; false skips the suite.
    std::function<bool()> prepare;
    /// Runs instead of the tests if the executable was started by a test; absent: run the tests.
    std::function<std::optional<int>(const QStringList& arguments)> runAs;
};

/// Registers a suite under the name of its source, `test_NAME.cpp`.
int addSuite(const char* source, Suite suite);

template <typename Tests>
Suite suiteOf()
{
    Suite suite {.make = [] { return std::make_unique<Tests>(); }};
    if constexpr (requires { Tests::prepare(); })
        suite.prepare = Tests::prepare;
    if constexpr (requires { Tests::runAs(QStringList()); })
        suite.runAs = Tests::runAs;
    return suite;
}

} // namespace netvane::test

/// Goes at the end of each source of tests. `Tests` may have the static functions `prepare` and
/// `runAs` (see `Suite`).
#define NETVANE_TEST(Tests)                                                                        \
    [[maybe_unused]] static const int s_suite                                                      \
        = netvane::test::addSuite(__FILE__, netvane::test::suiteOf<Tests>());
