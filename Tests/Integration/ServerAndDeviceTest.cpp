// The real screen server and the real device, each a process, on a private bus and network.

#include "Tests/Integration/ServerAndDevice.h"
#include "Common/FVEConstants.h"
#include "Platform/Posix/PosixFileManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <sys/wait.h>

using namespace farview;
using testing::HasSubstr;

namespace
{

/// As the tool that root runs does.
void allowHiDPI()
{
    const auto location =
        PreferencesLocations(EnvironmentUse::honoured)
            .location("com.apple.windowserver", PreferencesUser::any, PreferencesHost::current);
    PosixFileManager files;
    files.createDirectoryAtPath(std::filesystem::path(location.path).parent_path());
    ASSERT_TRUE(files.writePropertyList(
        PropertyList::Dictionary{{"DisplayResolutionEnabled", true}}, location.path));
}

} // namespace

TEST_F(ServerAndDevice, MeetByHostNameOnAnyPort)
{
    startDevice({"--port", "0"});
    startServer();
    connectByName();
    EXPECT_EQ(panel->last(kServerConnectedToDevice)->deviceName, "desk-7.local");
    EXPECT_NE(panel->last(kServerConnectedToDevice)->deviceAddress, "");
    EXPECT_THAT(deviceLog(), HasSubstr("needs port 6001"));
}

TEST_F(ServerAndDevice, TellTheUserThatTheDeviceIsInUse)
{
    startDevice();
    startServer();
    ASSERT_TRUE(deviceSays("Announced"));
    const auto first = occupyDevice(6001);
    panel->connectToAddress("127.0.0.1");
    ASSERT_TRUE(panel->hears(kRequestingErrorMsgFromPrefPane));
    EXPECT_THAT(serverLog(), HasSubstr("in use by another computer"));
    EXPECT_TRUE(first->isOpen());
}

TEST_F(ServerAndDevice, HearTheDevicesGoodbye)
{
    startDevice();
    startServer();
    connectByAddress();
    device->sendSignal(SIGTERM);
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice));
    EXPECT_THAT(serverLog(), HasSubstr("switched off"));
    const auto status = device->waitForEnd(seconds(3));
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0) << deviceLog();
}

TEST_F(ServerAndDevice, HearTheServersGoodbye)
{
    startDevice();
    startServer();
    connectByAddress();
    server->sendSignal(SIGTERM);
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice));
    EXPECT_TRUE(serverEnded()) << serverLog();
    ASSERT_TRUE(deviceSays("The host is gone"));
    EXPECT_THAT(deviceLog(), testing::Not(HasSubstr("was lost"))) << "it was a goodbye";
}

TEST_F(ServerAndDevice, EndInTimeThoughTheOtherIsStopped)
{
    startDevice();
    startServer();
    connectByAddress();
    device->sendSignal(SIGSTOP);
    server->sendSignal(SIGTERM);
    EXPECT_TRUE(serverEnded());
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice));
}

TEST_F(ServerAndDevice, StayAwayAfterACrashWhenFarviewIsOff)
{
    preferences->setCurrentState(1);
    startServer();
    preferences->setCurrentState(0);
    ASSERT_TRUE(waitUntil([] { return serverPid() > 0; })) << serverLog();
    ::kill(serverPid(), SIGKILL);
    EXPECT_TRUE(serverEnded(seconds(5))) << serverLog();
    EXPECT_THAT(serverLog(), HasSubstr("Farview is off"));
}

TEST_F(ServerAndDevice, EndAtOnceWhenFarviewWasSwitchedOffWhileTheServerCameUp)
{
    environment.emplace("FARVIEW_STARTED_DETACHED", "1");
    server = start("ScreenCapture", {}, "server.log");
    EXPECT_TRUE(serverEnded(seconds(10))) << serverLog();
}

TEST_F(ServerAndDevice, FreeTheDeviceWhenTheServerIsStopped)
{
    startDevice();
    startServer();
    connectByAddress();
    const std::int32_t stopped = serverPid();
    ASSERT_GT(stopped, 0);
    ::kill(stopped, SIGSTOP);
    EXPECT_TRUE(deviceSays("The host is gone", kNoticed)) << deviceLog();
    ::kill(stopped, SIGCONT);
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice, kNoticed)) << serverLog();
}

TEST_F(ServerAndDevice, TellTheDeviceEachChangeOfTheOptions)
{
    startDevice();
    startServer();
    connectByAddress();
    ASSERT_TRUE(deviceSays("these options: touch retina windows-move-back\n")) << deviceLog();
    preferences->setEnableTouchDisplay(false);
    EXPECT_TRUE(deviceSays("these options: retina windows-move-back\n")) << deviceLog();
    preferences->setRetinaResolutionsEnabled(false);
    EXPECT_TRUE(deviceSays("these options: windows-move-back\n")) << deviceLog();
    preferences->setAutoMoveWindowsBackOption(false);
    EXPECT_TRUE(deviceSays("these options:\n")) << deviceLog();
    allowHiDPI();
    preferences->prefsDidChangeNotification();
    EXPECT_TRUE(deviceSays("these options: hidpi\n")) << deviceLog();
    preferences->setEnableTouchDisplay(true);
    EXPECT_TRUE(deviceSays("these options: touch hidpi\n")) << deviceLog();
}

TEST_F(ServerAndDevice, TellTheDeviceASystemsSettingThatChangedWithoutAWord)
{
    startDevice();
    startServer();
    connectByAddress();
    ASSERT_TRUE(deviceSays("these options: touch retina windows-move-back\n")) << deviceLog();
    allowHiDPI();
    // The panel asks whenever it is shown.
    panel->post(kQueryRequestForConnectedHost);
    EXPECT_TRUE(deviceSays("these options: touch retina hidpi windows-move-back\n")) << deviceLog();
}

TEST_F(ServerAndDevice, LeaveADeviceAloneThatIsNotNeeded)
{
    startDevice();
    ASSERT_TRUE(deviceSays("Announced")) << deviceLog();
    const auto needless =
        start("farview-device", {"--headless", "--unless-seen", "8"}, "second.log");
    const auto status = needless->waitForEnd();
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0);
    EXPECT_THAT(text("second.log"), HasSubstr("There is a device already: Desk"));
}

TEST_F(ServerAndDevice, ADeviceWithoutStandardInputReadsNoOtherFileInItsPlace)
{
    device = std::make_unique<ChildProcess>(
        std::vector<std::string>{"sh", "-c",
                                 "exec \"$0\" --headless <&- 2>'" + home.path("device.log") + "'",
                                 FARVIEW_BINARY_DIR "/farview-device"},
        environment);
    ASSERT_TRUE(deviceSays("Announced")) << deviceLog();
    const auto input = "/proc/" + std::to_string(device->pid()) + "/fd/0";
    EXPECT_EQ(std::filesystem::read_symlink(input), "/dev/null");
}

TEST_F(ServerAndDevice, AnswerTheCommandLine)
{
    const auto answer = [this](const std::vector<std::string>& arguments) {
        const auto program = start("farview-device", arguments, "answer.log");
        const auto status = program->waitForEnd();
        return status && WIFEXITED(*status) ? WEXITSTATUS(*status) : -1;
    };
    EXPECT_EQ(answer({"--help"}), 0);
    EXPECT_EQ(answer({"--version"}), 0);
    EXPECT_EQ(answer({"--port", "many"}), 2);
    EXPECT_THAT(text("answer.log"), HasSubstr("Usage: farview-device"));
    EXPECT_THAT(text("answer.log"), HasSubstr("--port cannot have that value"));
}

TEST_F(ServerAndDevice, IsOneServerForTheUser)
{
    startServer();
    const auto second = start("ScreenCapture", {}, "second.log");
    const auto status = second->waitForEnd();
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0);
    EXPECT_TRUE(server->isRunning());
    panel->post(kQueryRequestForConnectedHost);
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice));
}
