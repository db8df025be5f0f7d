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
    /// Before there is an application or a thread; false skips the suite.
    std::function<bool()> prepare;
    /// What the executable does as a process that a test has started; absent: it tests.
    std::function<std::optional<int>(const QStringList& arguments)> runAs;
};

/// Offers a suite under the name of its source, `test_NAME.cpp`.
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

/// Stands at the end of each source of tests. `Tests` may have the static functions `prepare` and
/// `runAs` (see `Suite`).
#define NETVANE_TEST(Tests)                                                                        \
    [[maybe_unused]] static const int s_suite                                                      \
        = netvane::test::addSuite(__FILE__, netvane::test::suiteOf<Tests>());
