// farview-device as a command: it tells the device that runs here what its user sees, lists the
// known computers, and forgets one.

#include "Common/FVEDistributedNotifications.h"
#include "Common/PairedPeers.h"
#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Platform/Posix/Settings/LockFile.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

class DeviceCommands : public testing::Test
{
protected:
    struct Outcome {
        int status;
        std::string output; ///< and what went to standard error
    };

    Outcome run(const std::string& arguments) const
    {
        ChildProcess process({"sh", "-c",
                              FARVIEW_BINARY_DIR "/farview-device " + arguments + " >'" +
                                  home.path("out") + "' 2>&1"},
                             environment);
        const auto status = process.waitForEnd();
        std::ostringstream output;
        output << std::ifstream(home.path("out")).rdbuf();
        return {status && WIFEXITED(*status) ? WEXITSTATUS(*status) : -1, output.str()};
    }
    /// A device whose user is asked about these digits, as the commands meet it on the bus.
    void beDeviceThatShows(const std::string& digits)
    {
        const auto answer = [this, digits](const Notification& asked) {
            heard.push_back(*asked.text(kDigitsKey));
            if (heard.back() == digits)
                center.postNotificationName(kComputerAccepted, "", {{kDigitsKey, digits}}, 3);
        };
        center.addObserver(life, answer, kAcceptComputer, "");
    }
    PairedPeers computers() { return {preferences, PairedPeers::computers}; }

    TemporaryFolder home;
    PrivateBus bus;
    SessionBusScope session{bus.address()};
    ChildProcess::Environment environment{{"DBUS_SESSION_BUS_ADDRESS", bus.address()},
                                          {"XDG_CONFIG_HOME", home.path("config")},
                                          {"XDG_DATA_HOME", home.path("data")},
                                          {"FARVIEW_SYSTEM_CONFIG", home.path("system-config")},
                                          {"TZ", "UTC"},
                                          {"HOME", home.path()}};
    ScopedEnvironment config{"XDG_CONFIG_HOME", home.path("config").c_str()};
    ScopedEnvironment systemConfig{"FARVIEW_SYSTEM_CONFIG", home.path("system-config").c_str()};
    FakeLog log;
    QtRunLoop loop;
    TestBus connection{log};
    DBusNotificationCenter center{connection, loop, log};
    FilePreferences preferences{PreferencesLocations(EnvironmentUse::honoured), log};
    std::shared_ptr<int> life = std::make_shared<int>();
    std::vector<std::string> heard;

    const PairedPeer desk{
        "0a1b2c3d" + std::string(56, '7'), "192.0.2.9", {1'700'000'000}, {1'700'086'400}};
    const PairedPeer lab{"0a1b2c3d" + std::string(56, '8'), "192.0.2.10", {0}, {0}};
};

TEST_F(DeviceCommands, TheDeviceHereAcceptsTheDigitsThatItShows)
{
    beDeviceThatShows("482913");
    const Outcome outcome = run("--accept '482 913'");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("Accepted; now confirm at the computer, too"));
    EXPECT_THAT(heard, ElementsAre("482913"));
}

TEST_F(DeviceCommands, DigitsThatNoDeviceShowsAreNotAccepted)
{
    beDeviceThatShows("000111");
    const Outcome outcome = run("--accept 482913");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("No device here shows these digits"));
    EXPECT_THAT(heard, ElementsAre("482913"));
}

TEST_F(DeviceCommands, AnAnswerAboutOtherDigitsIsNone)
{
    const auto answer = [this](const Notification&) {
        center.postNotificationName(kComputerAccepted, "", {{kDigitsKey, "000111"}}, 3);
        center.postNotificationName(kComputerAccepted, "", {}, 3);
    };
    center.addObserver(life, answer, kAcceptComputer, "");
    EXPECT_EQ(run("--accept 482913").status, 1);
}

TEST_F(DeviceCommands, WithoutASessionBusNobodyIsAsked)
{
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + home.path("no-bus");
    const Outcome outcome = run("--accept 482913");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.output, HasSubstr("There is no session bus"));
}

TEST_F(DeviceCommands, TheKnownComputersAreListed)
{
    EXPECT_EQ(run("--known").output, "");
    computers().add(desk);
    computers().add(lab);
    const Outcome outcome = run("--known");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "0a1b 2c3d  confirmed 2023-11-14  last used 2023-11-15  192.0.2.9\n"
                              "0a1b 2c3d  confirmed ?  last used ?  192.0.2.10\n");
}

TEST_F(DeviceCommands, OneComputerIsForgottenAndOthersHearOfIt)
{
    computers().add(desk);
    computers().add(lab);
    bool isTold = false;
    center.addObserver(
        life, [&](const Notification&) { isTold = true; }, kPairedDevicesDidChange, "");
    const Outcome outcome = run("--forget " + desk.key.substr(0, 9));
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(computers().all(), ElementsAre(lab));
    EXPECT_TRUE(waitUntil([&] { return isTold; }));
}

TEST_F(DeviceCommands, NobodyIsForgottenByAKeyThatFitsNoneOrSeveral)
{
    computers().add(desk);
    computers().add(lab);
    EXPECT_EQ(run("--forget 0a1b2c3d").status, 1);
    EXPECT_EQ(run("--forget ffffffff").status, 1);
    EXPECT_THAT(computers().all(), ElementsAre(desk, lab));
}

TEST_F(DeviceCommands, ForgettingNeedsNoSessionBus)
{
    computers().add(desk);
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + home.path("no-bus");
    EXPECT_EQ(run("--forget 0a1b2c3d").status, 0);
    EXPECT_TRUE(computers().all().empty());
}

TEST_F(DeviceCommands, SaysSoWhenTheListCannotBeStored)
{
    computers().add(desk);
    LockFile anotherWriter;
    ASSERT_EQ(
        anotherWriter.acquire(home.path("config/farview/com.quillon.FarviewDevice.plist.lock"),
                              std::chrono::seconds(1)),
        0);
    const Outcome outcome = run("--forget 0a1b2c3d");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("That cannot be stored"));
    EXPECT_THAT(computers().all(), ElementsAre(desk));
}

} // namespace
} // namespace farview
