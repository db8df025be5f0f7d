#include "support/test_main.h"

#include <QFileInfo>
#include <QTest>

#ifdef NETVANE_TEST_WIDGETS
#include <QApplication>
#endif

#include <cstdio>
#include <map>

namespace netvane::test {
namespace {

constexpr int kSkipped = 77; // SKIP_RETURN_CODE of the tests

#ifdef NETVANE_TEST_WIDGETS
using Application = QApplication;
#else
using Application = QCoreApplication;
#endif

std::map<QString, Suite>& suites()
{
    static std::map<QString, Suite> s_suites;
    return s_suites;
}

int run(const Suite& suite, int argc, char** argv)
{
    if (suite.prepare && !suite.prepare()) {
        std::puts("SKIP: the system does not give what these tests need");
        return kSkipped;
    }
    Application application(argc, argv);
    if (suite.runAs) {
        if (const auto status = suite.runAs(QCoreApplication::arguments().mid(2)))
            return *status;
    }
    const auto tests = suite.make();
    return QTest::qExec(tests.get(), argc - 1, argv + 1);
}

} // namespace

int addSuite(const char* source, Suite suite)
{
    suites()[QFileInfo(QString::fromUtf8(source)).completeBaseName().mid(5)] = std::move(suite);
    return 0;
}

} // namespace netvane::test

int main(int argc, char** argv)
{
    using namespace netvane::test;
    const auto found = argc > 1 ? suites().find(QString::fromUtf8(argv[1])) : suites().end();
    if (found != suites().end())
        return run(found->second, argc, argv);
    std::puts("Name one of these, and any arguments of Qt Test after it:");
    for (const auto& [name, suite] : suites())
        std::puts(qPrintable(name));
    return 2;
}
