#include <gtest/gtest.h>

#include <QApplication>

#include <cstdio>
#include <cstdlib>

// These tests want a display server that sends real input: they run inside scripts/with-desktop.
int main(int argc, char* argv[])
{
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::fputs("There is no X display: run this program inside scripts/with-desktop.\n",
                   stderr);
        return EXIT_FAILURE;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    return RUN_ALL_TESTS();
}
