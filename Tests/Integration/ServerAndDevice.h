#pragma once

#include "Common/FVEPreferences.h"
#include "Common/GetPID.h"
#include "Platform/Platform.h"
#include "Platform/Posix/Processes/PosixProcessTable.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Tests/Integration/TestPanel.h"
#include "Tests/Link/PairedBeforehand.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/Isolation.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace farview
{

using std::chrono::milliseconds;
using std::chrono::seconds;

/// How soon a silent or dead peer must be noticed, and some patience with a busy machine.
inline constexpr milliseconds kNoticed = seconds(5) + milliseconds(500);

/// The screen server and devices as processes, on a bus, a network and settings of the test's own.
class ServerAndDevice : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const std::string reason = whyNotIsolated(); !reason.empty())
            GTEST_SKIP() << reason;
        for (const auto& [name, value] : environment)
            variables.push_back(std::make_unique<ScopedEnvironment>(name.c_str(), value.c_str()));
        platform.processTable = &processTable;
        scope = std::make_unique<Platform::Scope>(platform);
        panel = std::make_unique<TestPanel>();
        stored =
            std::make_unique<FilePreferences>(PreferencesLocations(EnvironmentUse::honoured), log);
        preferences = std::make_unique<FVEPreferences>(*stored, panel->center());
        preferences->setupDefaultValues();
        if (areConfirmed)
            pairBeforehand(*stored, {"Desk", "Sofa"});
    }

    std::unique_ptr<ChildProcess> start(const std::string& program,
                                        const std::vector<std::string>& arguments,
                                        const std::string& log)
    {
        std::vector<std::string> command{"sh", "-c",
                                         "exec \"$0\" \"$@\" >>'" + home.path(log) + "' 2>&1",
                                         FARVIEW_BINARY_DIR "/" + program};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return std::make_unique<ChildProcess>(command, environment);
    }
    void startServer()
    {
        panel->reports.clear(); // a server before it said the same as it ended
        server = start("ScreenCapture", {}, "server.log");
        ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice)) << serverLog();
        panel->reports.clear();
    }
    void startDevice(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments{"--headless", "--name", "Desk", "--host-name", "desk-7"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        device = start("farview-device", arguments, "device.log");
    }
    /// One of several: "Desk" of the host "desk-7", which has the usual port, and others so.
    static std::string logOf(const std::string& name) { return name + ".log"; }
    void startNamed(const std::string& name, const std::vector<std::string>& more = {})
    {
        std::string host = name + "-7";
        std::transform(host.begin(), host.end(), host.begin(), ::tolower);
        std::vector<std::string> arguments{"--headless", "--name", name, "--host-name", host};
        if (name != "Desk") // the usual port is taken
            arguments.insert(arguments.end(), {"--port", "0"});
        arguments.insert(arguments.end(), more.begin(), more.end());
        std::ofstream(home.path(logOf(name)), std::ios::trunc).flush();
        devices[name] = start("farview-device", arguments, logOf(name));
        ASSERT_TRUE(says(name, "Announced")) << text(logOf(name));
    }
    bool says(const std::string& name, const std::string& words,
              milliseconds limit = seconds(10)) const
    {
        return waitUntil([&] { return text(logOf(name)).find(words) != std::string::npos; }, limit);
    }
    void connectByName()
    {
        panel->connectTo("desk-7.local");
        ASSERT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
    }
    void connectByAddress()
    {
        ASSERT_TRUE(deviceSays("Announced"));
        panel->connectToAddress("127.0.0.1");
        ASSERT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
        panel->reports.clear();
    }
    /// Connects to a device as another computer does; `anotherHost` tells what comes of it.
    std::shared_ptr<LinkConnection> occupyDevice(std::uint16_t port)
    {
        auto link = LinkConnection::make(LinkSide::host, connectedSocket(port), anotherHost,
                                         keyOfHost(), ownGreeting(), LinkTimes{});
        EXPECT_TRUE(waitUntil([this] { return anotherHost->opened; }));
        return link;
    }
    std::string text(const std::string& log) const
    {
        std::ostringstream all;
        all << std::ifstream(home.path(log)).rdbuf();
        return all.str();
    }
    std::string serverLog() const { return "\nserver:\n" + text("server.log"); }
    std::string deviceLog() const { return "\ndevice:\n" + text("device.log"); }
    std::string everything() const
    {
        return serverLog() + "\nDesk:\n" + text(logOf("Desk")) + "\nSofa:\n" + text(logOf("Sofa"));
    }
    bool deviceSays(const std::string& words, milliseconds limit = seconds(10)) const
    {
        return waitUntil([&] { return text("device.log").find(words) != std::string::npos; },
                         limit);
    }
    /// Where the device of that log listens; 0 before it was announced.
    std::uint16_t portIn(const std::string& log) const
    {
        const std::string words = text(log);
        const auto found = words.find("\", port ");
        return found == std::string::npos
                   ? std::uint16_t{0}
                   : static_cast<std::uint16_t>(std::stoi(words.substr(found + 8)));
    }
    static std::int32_t serverPid() { return GetPIDForProcessName("ScreenCapture"); }
    bool serverEnded(milliseconds limit = seconds(10)) const
    {
        const auto status = server->waitForEnd(limit);
        return status && WIFEXITED(*status) && WEXITSTATUS(*status) == 0 && serverPid() == -1;
    }

    /// As a crash that takes all of the server's processes.
    void killServer()
    {
        for (const auto& each : processesBelow(server->pid()))
            ::kill(each.pid, SIGSTOP);
        server->sendSignal(SIGKILL);
        for (const auto& each : processesBelow(::getpid())) {
            if (each.shortName == "ScreenCapture")
                ::kill(each.pid, SIGKILL);
        }
    }

    /// Whether the users have confirmed computer and devices before.
    bool areConfirmed = true;
    PosixProcessTable processTable;
    Platform platform;
    std::unique_ptr<Platform::Scope> scope;
    TemporaryFolder home;
    PrivateBus bus;
    SessionBusScope session{bus.address()};
    ChildProcess::Environment environment{
        {"DBUS_SESSION_BUS_ADDRESS", bus.address()},
        {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path("no-system-bus")},
        {"FARVIEW_SYSTEM_CONFIG", home.path("system-config")},
        {"XDG_CONFIG_HOME", home.path("config")},
        {"XDG_DATA_HOME", home.path("data")},
        {"XDG_RUNTIME_DIR", home.path("runtime")},
        {"HOME", home.path()}};
    std::vector<std::unique_ptr<ScopedEnvironment>> variables;
    FakeLog log;
    std::unique_ptr<TestPanel> panel;
    std::unique_ptr<FilePreferences> stored;
    /// The user's settings, as the panel changes them.
    std::unique_ptr<FVEPreferences> preferences;
    std::shared_ptr<LinkRecorder> anotherHost = std::make_shared<LinkRecorder>();
    std::unique_ptr<ChildProcess> device;
    std::map<std::string, std::unique_ptr<ChildProcess>> devices;
    std::unique_ptr<ChildProcess> server;
};

} // namespace farview
