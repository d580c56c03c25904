#include "Tests/Discovery/TestDaemon.h"

#include "Tests/Support/WaitUntil.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace
{

std::string contents(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

std::string configuration(const TestDaemon::Options& options)
{
    std::string text = "[server]\nhost-name=host" + options.host + "\nallow-interfaces=v" +
                       options.host + "\nuse-ipv6=" + (options.useIPv6 ? "yes" : "no") +
                       "\nratelimit-burst=10000\n";
    for (const auto& line : options.serverLines)
        text += line + "\n";
    return text + "[wide-area]\nenable-wide-area=no\n[publish]\npublish-workstation=no\n"
                  "publish-hinfo=no\npublish-domain=no\n";
}

} // namespace

TestDaemon::TestDaemon(Options options) : mOptions(std::move(options))
{
    mFolder.write("avahi.conf", configuration(mOptions));
    std::filesystem::create_directory(mFolder.path("run"));
    if (mOptions.startsAtOnce)
        start();
}

void TestDaemon::start()
{
    const auto log = mFolder.path("log");
    std::filesystem::remove(log);
    // Its pid file and socket have fixed paths.
    const auto script = "mount --bind " + mFolder.path("run") +
                        " /run/avahi-daemon && exec avahi-daemon -f " + mFolder.path("avahi.conf") +
                        " --no-chroot --no-rlimits --no-drop-root 2>" + log;
    mProcess = std::make_unique<ChildProcess>(
        std::vector<std::string>{"nsenter", "--net=/run/netns/" + mOptions.host, "unshare", "-m",
                                 "sh", "-c", script},
        ChildProcess::Environment{{"DBUS_SYSTEM_BUS_ADDRESS", mBus.address()}});
    const auto isReady = [&] {
        return contents(log).find("Server startup complete") != std::string::npos;
    };
    if (!waitUntil(isReady))
        throw std::runtime_error("the discovery daemon does not start: " + contents(log));
}

void TestDaemon::stop()
{
    mProcess->sendSignal(SIGTERM);
    mProcess->waitForEnd();
}

void TestDaemon::kill()
{
    mProcess->kill();
    std::filesystem::remove_all(mFolder.path("run"));
    std::filesystem::create_directory(mFolder.path("run"));
}
