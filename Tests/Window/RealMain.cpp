// A main() for tests with real input, which must not meet the desktop of whoever runs the tests:
// they get one of their own.

#include "Tests/Support/OwnDesktop.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <vector>

int main(int argc, char* argv[])
{
    std::vector<char*> original(argv, argv + argc);
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (!isInsideOwnDesktop())
        return enterOwnDesktop(static_cast<int>(original.size()), original.data());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    return RUN_ALL_TESTS();
}
