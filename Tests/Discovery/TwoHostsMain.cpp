#include <QCoreApplication>

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The program starts itself anew on a computer or a network of its own, which a script makes, so
// that its tests see no daemon, no bus and no device but theirs, and nobody sees them.

namespace
{

const char* const script = FARVIEW_TEST_SCRIPT;

std::string reasonAgainstNamespaces()
{
    const std::string command = std::string(script) + " true 2>&1";
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    for (char buffer[256]; pipe && std::fgets(buffer, sizeof buffer, pipe);)
        output += buffer;
    const int status = pipe ? ::pclose(pipe) : -1;
    return status == 0 ? std::string() : "no computer of its own: " + output;
}

bool onlyListsTests(int argc, char** argv)
{
    for (int index = 1; index < argc; ++index) {
        if (std::string(argv[index]) == "--gtest_list_tests")
            return true;
    }
    return false;
}

void startAnewInside(int argc, char** argv)
{
    std::vector<char*> arguments{const_cast<char*>(script)};
    arguments.insert(arguments.end(), argv, argv + argc);
    arguments.push_back(nullptr);
    ::execv(script, arguments.data());
}

} // namespace

int main(int argc, char** argv)
{
    const bool isInside = ::getenv(FARVIEW_TEST_MARK) != nullptr;
    if (!isInside && !onlyListsTests(argc, argv)) {
        const auto reason = reasonAgainstNamespaces();
        if (reason.empty())
            startAnewInside(argc, argv);
        // The line by which ctest knows a skipped test.
        std::cout << "[  SKIPPED ] " << (reason.empty() ? "cannot run the script" : reason) << "\n";
        return 0;
    }
    // A test meets its own private buses only.
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
