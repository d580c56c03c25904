// A main() for tests that look at real programs on a desktop from outside: they have no window.

#include "Tests/Support/OwnDesktop.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <vector>

int main(int argc, char* argv[])
{
    std::vector<char*> original(argv, argv + argc);
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (!isInsideOwnDesktop())
        return enterOwnDesktop(static_cast<int>(original.size()), original.data());
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
