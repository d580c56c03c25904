// The status item as it lies in the pane's bundle: a process, on a private bus and network.

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Tests/Support/Isolation.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/StatusNotifierWatcher.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

using namespace farview;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace
{

constexpr const char* program = FARVIEW_PANE_BUNDLE
    "/Contents/Resources/FarviewStatusItem.app/Contents/Linux/FarviewStatusItem";

class StatusItemProgram : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const std::string reason = whyNotIsolated(); !reason.empty())
            GTEST_SKIP() << reason;
        environment = {{"DBUS_SESSION_BUS_ADDRESS", bus.address()},
                       {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path("no-system-bus")},
                       {"QT_QPA_PLATFORM", "offscreen"},
                       {"QT_QPA_PLATFORMTHEME", "none"},
                       {"XDG_CONFIG_HOME", home.path("config")},
                       {"XDG_DATA_HOME", home.path("data")},
                       {"XDG_RUNTIME_DIR", home.path("runtime")},
                       {"HOME", home.path()}};
        preferences.setupDefaultValues();
    }

    std::unique_ptr<ChildProcess> start(const std::string& argument = {})
    {
        return std::make_unique<ChildProcess>(
            std::vector<std::string>{
                "sh", "-c", "exec \"$0\" " + argument + " >>'" + home.path("log") + "' 2>&1",
                program},
            environment);
    }
    bool appears()
    {
        return waitUntil([this] { return !watcher.items().isEmpty(); }) && hasMenu();
    }
    bool hasMenu()
    {
        return waitUntil([this] { return watcher.menu(item()).size() > 4; });
    }
    void post(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {})
    {
        center.postNotificationName(name, "", std::move(userInfo), 3);
    }
    static bool ended(ChildProcess& process)
    {
        const auto status = process.waitForEnd(seconds(5));
        return status && WIFEXITED(*status) && WEXITSTATUS(*status) == 0;
    }
    QString item() const { return watcher.items().last(); }
    std::string said() const
    {
        std::ostringstream all;
        all << std::ifstream(home.path("log")).rdbuf();
        return all.str();
    }
    bool serverRuns() { return session.hasOwner("com.quillon.ScreenCapture"); }
    /// Asks the server to end, so that nothing is left of the test.
    bool endServer()
    {
        post(kTerminateScreenServer);
        return waitUntil([this] { return !session.hasOwner("com.quillon.ScreenCapture.Turn"); });
    }

    TemporaryFolder home;
    PrivateBus bus;
    SessionBusScope scope{bus.address()};
    ScopedEnvironment config{"XDG_CONFIG_HOME", home.path("config").c_str()};
    ChildProcess::Environment environment;
    FakeLog log;
    QtRunLoop loop;
    TestBus session{log};
    DBusNotificationCenter center{session, loop, log};
    FilePreferences store{PreferencesLocations(EnvironmentUse::honoured), log};
    FVEPreferences preferences{store, center};
    StatusNotifierWatcher watcher{bus.address()};
    OrphanCollector orphans{"ScreenCapture"};
};

TEST_F(StatusItemProgram, AppearsWithItsMenuAndEndsByTheTerminateNotification)
{
    const auto process = start();
    ASSERT_TRUE(appears()) << said();
    EXPECT_EQ(watcher.property(item(), "IconName"), "farview-off-symbolic");
    EXPECT_NE(watcher.entry(item(), "Turn Farview On").id, 0);
    EXPECT_NE(watcher.entry(item(), "No device selected").id, 0);
    EXPECT_NE(watcher.entry(item(), "Quit").id, 0);
    post(kTerminateMenuExtra);
    EXPECT_TRUE(ended(*process)) << said();
    EXPECT_FALSE(watcher.isAlive(item()));
    EXPECT_TRUE(preferences.showInMenuBar());
}

TEST_F(StatusItemProgram, TurnsTheSystemOnAndOff)
{
    const auto process = start();
    ASSERT_TRUE(appears()) << said();
    watcher.click(item(), watcher.entry(item(), "Turn Farview On").id);
    EXPECT_TRUE(waitUntil([this] { return preferences.currentState() == 1; }));
    EXPECT_TRUE(waitUntil([this] { return serverRuns(); })) << said();
    ASSERT_TRUE(waitUntil([this] { return watcher.entry(item(), "Turn Farview Off").id != 0; }));
    EXPECT_EQ(watcher.property(item(), "IconName"), "farview-on-symbolic");
    watcher.click(item(), watcher.entry(item(), "Turn Farview Off").id);
    EXPECT_TRUE(waitUntil([this] { return preferences.currentState() == 0; }));
    EXPECT_TRUE(waitUntil([this] { return !serverRuns(); }));
    EXPECT_TRUE(endServer());
    process->sendSignal(SIGTERM);
    EXPECT_TRUE(ended(*process)) << said();
}

TEST_F(StatusItemProgram, AsksWhetherADeviceShowsTheSameDigitsAndPassesTheAnswerOn)
{
    preferences.setCurrentState(1);
    const auto process = start();
    ASSERT_TRUE(appears()) << said();
    std::string confirmed;
    const auto life = std::make_shared<int>();
    center.addObserver(
        life, [&](const Notification& heard) { confirmed = *heard.text(kDigitsKey); },
        kConfirmDevice, "");
    post(kServerPairingDidChange, {{kPairingReportKey, "comparing 482913 Desk"}});
    ASSERT_TRUE(waitUntil([this] { return watcher.entry(item(), "Yes, These Digits").id != 0; }));
    EXPECT_EQ(watcher.property(item(), "IconName"), "farview-question-symbolic");
    watcher.click(item(), watcher.entry(item(), "Yes, These Digits").id);
    EXPECT_TRUE(waitUntil([&] { return confirmed == "482913"; }));
    process->sendSignal(SIGTERM);
    EXPECT_TRUE(ended(*process)) << said();
}

TEST_F(StatusItemProgram, QuitEndsItAndUnticksTheBox)
{
    const auto process = start();
    ASSERT_TRUE(appears()) << said();
    watcher.click(item(), watcher.entry(item(), "Quit").id);
    EXPECT_TRUE(ended(*process)) << said();
    EXPECT_FALSE(preferences.showInMenuBar());
}

TEST_F(StatusItemProgram, EndsAtOnceWhenTheBoxWasUntickedWhileItCameUp)
{
    preferences.setShowInMenuBar(false);
    const auto byHand = start();
    ASSERT_TRUE(appears()) << said();
    byHand->sendSignal(SIGTERM);
    EXPECT_TRUE(ended(*byHand));
    environment.emplace("FARVIEW_STARTED_DETACHED", "1");
    const auto byThePanel = start();
    EXPECT_TRUE(ended(*byThePanel)) << said();
}

TEST_F(StatusItemProgram, IsThereOnce)
{
    const auto first = start();
    ASSERT_TRUE(appears()) << said();
    const auto second = start();
    EXPECT_TRUE(ended(*second)) << said();
    EXPECT_TRUE(first->isRunning());
    EXPECT_EQ(watcher.items().size(), 1);
    first->sendSignal(SIGTERM);
    EXPECT_TRUE(ended(*first));
}

TEST_F(StatusItemProgram, UsesNoProcessorTimeWhenNothingHappens)
{
    const auto process = start();
    ASSERT_TRUE(appears()) << said();
    const auto ticks = [&] {
        std::ifstream stat("/proc/" + std::to_string(process->pid()) + "/stat");
        std::string word;
        for (int i = 0; i < 13; ++i)
            stat >> word;
        long user = 0;
        long system = 0;
        stat >> user >> system;
        return user + system;
    };
    // The first questions to the network are asked within this time.
    runLoopFor(seconds(3));
    const long before = ticks();
    runLoopFor(seconds(5));
    EXPECT_LE(ticks() - before, 2) << "of 10 ms each";
    process->sendSignal(SIGTERM);
    EXPECT_TRUE(ended(*process));
}

TEST_F(StatusItemProgram, AtLoginItStartsWhatTheSettingsAskFor)
{
    preferences.setCurrentState(1);
    const auto process = start("--at-login");
    ASSERT_TRUE(appears()) << said();
    EXPECT_TRUE(waitUntil([this] { return serverRuns(); })) << said();
    process->sendSignal(SIGTERM);
    EXPECT_TRUE(ended(*process));
    EXPECT_TRUE(endServer());
}

TEST_F(StatusItemProgram, AtLoginTheServerStartsAloneWhereNoItemIsWanted)
{
    preferences.setCurrentState(1);
    preferences.setShowInMenuBar(false);
    const auto process = start("--at-login");
    EXPECT_TRUE(waitUntil([this] { return serverRuns(); })) << said();
    EXPECT_TRUE(ended(*process)) << said();
    EXPECT_TRUE(watcher.items().isEmpty());
    EXPECT_TRUE(serverRuns()) << "it stays";
    EXPECT_TRUE(endServer());
}

TEST_F(StatusItemProgram, AtLoginNothingStartsWhereNothingIsWanted)
{
    preferences.setShowInMenuBar(false);
    const auto process = start("--at-login");
    EXPECT_TRUE(ended(*process)) << said();
    EXPECT_TRUE(watcher.items().isEmpty());
    EXPECT_FALSE(serverRuns());
}

TEST_F(StatusItemProgram, RefusesArgumentsThatItDoesNotKnow)
{
    const auto process = start("--something");
    const auto status = process->waitForEnd();
    ASSERT_TRUE(status.has_value());
    EXPECT_EQ(WEXITSTATUS(*status), 2);
}

} // namespace
