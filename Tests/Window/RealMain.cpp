#include <gtest/gtest.h>

#include <QApplication>

#include <cstdlib>
#include <unistd.h>
#include <vector>

namespace
{

constexpr auto insideMark = "FARVIEW_TEST_INSIDE_ITS_DESKTOP";

/// Real input must not meet the desktop of whoever runs the tests: they get one of their own.
int runInsideADesktopOfItsOwn(int argc, char* argv[])
{
    setenv(insideMark, "1", 1);
    std::vector<char*> arguments = {const_cast<char*>(FARVIEW_WITH_DESKTOP)};
    arguments.insert(arguments.end(), argv, argv + argc);
    arguments.push_back(nullptr);
    execv(FARVIEW_WITH_DESKTOP, arguments.data());
    perror(FARVIEW_WITH_DESKTOP);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char* argv[])
{
    const bool inside = std::getenv(insideMark) != nullptr;
    std::vector<char*> original(argv, argv + argc);
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (!inside)
        return runInsideADesktopOfItsOwn(static_cast<int>(original.size()), original.data());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    return RUN_ALL_TESTS();
}
