#include <gtest/gtest.h>

#include <QApplication>

namespace
{

/// Every machine tests the same pixels: no theme of its desktop, no scale of its screens.
void leaveTheDesktop()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_PLATFORMTHEME", "none");
    for (const char* name : {"QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI", "QT_USE_PHYSICAL_DPI",
                             "QT_SCALE_FACTOR_ROUNDING_POLICY"})
        qunsetenv(name);
    const QByteArray ratio = qgetenv("FARVIEW_TEST_PIXEL_RATIO");
    qputenv("QT_SCALE_FACTOR", ratio.isEmpty() ? QByteArray("1") : ratio);
}

} // namespace

int main(int argc, char* argv[])
{
    leaveTheDesktop();
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
