// A main() for tests of real programs: runs the tests in namespaces of their own, so that programs
// are told apart from the user's by name, and what they announce reaches nobody else.

#include "Tests/Support/Isolation.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

constexpr const char* kMark = "FARVIEW_TEST_ISOLATION";
constexpr const char* kIsolated = "isolated";

std::vector<std::string> isolation()
{
    std::vector<std::string> command{"unshare", "--net",        "--mount",     "--pid",
                                     "--fork",  "--kill-child", "--mount-proc"};
    if (::geteuid() != 0)
        command.emplace_back("--map-root-user");
    return command;
}

bool succeeds(std::vector<std::string> command)
{
    std::string line;
    for (const auto& word : command)
        line += word + " ";
    return std::system((line + ">/dev/null 2>&1").c_str()) == 0;
}

bool isListing(int argc, char** argv)
{
    for (int index = 1; index < argc; ++index) {
        if (std::strcmp(argv[index], "--gtest_list_tests") == 0)
            return true;
    }
    return false;
}

/// One network interface that carries multicast, with nobody at its other end.
bool makeNetwork()
{
    // A new interface's own IPv6 address can be announced at once, but not be connected to for up
    // to two seconds, while the kernel asks whether somebody else has it. Nobody is there. Where
    // this may not be said, tests that connect at once may fail.
    std::ofstream("/proc/sys/net/ipv6/conf/default/accept_dad") << 0;
    return succeeds({"ip link set lo up && ip link add fv0 type veth peer name fv1 &&",
                     "ip addr add 10.88.0.1/24 dev fv0 && ip link set fv1 up &&",
                     "ip link set fv0 up"});
}

void runIsolated(char** argv)
{
    std::vector<std::string> command = isolation();
    auto probe = command;
    probe.emplace_back("true");
    if (!succeeds(probe)) {
        ::setenv(kMark, "this machine does not let a test have namespaces of its own", 1);
        return;
    }
    ::setenv(kMark, kIsolated, 1);
    command.push_back(std::filesystem::read_symlink("/proc/self/exe").string());
    std::vector<char*> pointers;
    for (auto& word : command)
        pointers.push_back(word.data());
    for (char** argument = argv + 1; *argument != nullptr; ++argument)
        pointers.push_back(*argument);
    pointers.push_back(nullptr);
    ::execvp(pointers[0], pointers.data());
    ::setenv(kMark, "unshare cannot be run", 1);
}

} // namespace

std::string whyNotIsolated()
{
    const char* mark = std::getenv(kMark);
    return mark && std::strcmp(mark, kIsolated) != 0 ? mark : "";
}

int main(int argc, char** argv)
{
    if (!isListing(argc, argv) && !std::getenv(kMark))
        runIsolated(argv);
    const char* mark = std::getenv(kMark);
    if (mark && std::strcmp(mark, kIsolated) == 0 && !makeNetwork())
        ::setenv(kMark, "no network interface can be made (is iproute2 installed?)", 1);
    for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "XDG_SESSION_ID"})
        ::unsetenv(name);
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
