#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // No desktop theme of the machine: every machine tests the same style.
    qputenv("QT_QPA_PLATFORMTHEME", "none");
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
