// The diagnosis as a program, on a machine of the test's own on which one thing after another
// breaks.

#include "Common/Rules/PairingReport.h"
#include "Platform/Desktop/Discovery/DesktopNetServicePublisher.h"
#include "Tests/Integration/DoctorRun.h"
#include "Tests/Integration/ServerAndDevice.h"
#include "Tests/Support/WaitUntil.h"

#include <QTcpServer>

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>

using namespace farview;
using testing::HasSubstr;

namespace
{

namespace fs = std::filesystem;

/// Takes the network's cable out at both ends for the length of the scope.
struct UnpluggedNetwork {
    UnpluggedNetwork()
    {
        EXPECT_EQ(std::system("ip link set fv0 down && ip link set fv1 down"), 0);
    }
    ~UnpluggedNetwork() { EXPECT_EQ(std::system("ip link set fv1 up && ip link set fv0 up"), 0); }
    UnpluggedNetwork(const UnpluggedNetwork&) = delete;
    UnpluggedNetwork& operator=(const UnpluggedNetwork&) = delete;
};

/// Notices when the network knows of the test's own device.
struct Announcement final : NetServicePublisherDelegate {
    bool isOnTheNetwork = false;
    void didPublish(const std::string& /*name*/) override { isOnTheNetwork = true; }
    void willRename(const std::string& /*name*/) override {}
    void didNotPublish(const std::string& reason) override { ADD_FAILURE() << reason; }
};

class Doctor : public ServerAndDevice
{
protected:
    void SetUp() override
    {
        fs::create_directories(root + "/PreferencePanes");
        fs::create_directory_symlink(FARVIEW_PANE_BUNDLE,
                                     root + "/PreferencePanes/Farview Preferences.prefPane");
        fs::copy(FARVIEW_EXTENSIONS, root + "/Extensions", fs::copy_options::recursive);
        environment["FARVIEW_SYSTEM_ROOT"] = root;
        environment["FARVIEW_LOCAL_ROOT"] = home.path("local");
        ServerAndDevice::SetUp();
        preferences->setShowInMenuBar(false);
    }
    DoctorRun examine(const std::vector<std::string>& arguments = {"--json"}) const
    {
        return {environment, arguments};
    }
    void expect(const DoctorRun& run, const char* identifier, const char* verdict, int status)
    {
        EXPECT_TRUE(run.finds(identifier)) << identifier << "\n" << run.output();
        EXPECT_EQ(run.verdict(), verdict) << run.output();
        EXPECT_EQ(run.status(), status) << run.output();
    }
    void startAnnouncedDevice(const std::vector<std::string>& more = {})
    {
        startDevice(more);
        ASSERT_TRUE(deviceSays("Announced")) << deviceLog();
    }
    /// A device that is announced and behaves as the port does.
    void announce(std::uint16_t port)
    {
        publisher = std::make_unique<DesktopNetServicePublisher>(log);
        publisher->setDelegate(announcement);
        publisher->publish({"Desk", "_qlexvscreen._udp", port, {}, "desk-8"});
        ASSERT_TRUE(waitUntil([this] { return announcement->isOnTheNetwork; }));
    }
    /// Every file of the user's, with its contents.
    std::map<std::string, std::string> files() const
    {
        std::map<std::string, std::string> all;
        for (const char* folder : {"config", "data"}) {
            if (!fs::exists(home.path(folder)))
                continue;
            for (const auto& each : fs::recursive_directory_iterator(home.path(folder))) {
                std::ifstream file(each.path());
                all[each.path()] = each.is_regular_file()
                                       ? std::string{std::istreambuf_iterator<char>(file), {}}
                                       : "";
            }
        }
        return all;
    }

    std::string root = home.path("root");
    std::shared_ptr<Announcement> announcement = std::make_shared<Announcement>();
    std::unique_ptr<DesktopNetServicePublisher> publisher;
};

TEST_F(Doctor, FindsEverythingInOrderAndChangesNothing)
{
    startAnnouncedDevice();
    const auto before = files();
    const auto run = examine();
    expect(run, "devices.ready", "works", 0);
    EXPECT_EQ(run.detail("devices.ready", "name"), "Desk");
    EXPECT_EQ(run.detail("devices.ready", "host"), "desk-7.local");
    EXPECT_EQ(run.detail("devices.ready", "port"), "6001");
    EXPECT_THAT(run.detail("devices.ready", "addresses"), HasSubstr("10.88.0.1:6001"));
    for (const char* each :
         {"versions.pane", "versions.server", "bus.session", "driver.published",
          "discovery.embedded", "preferences.good", "processes.server-off", "screen.no-desktop"})
        EXPECT_TRUE(run.finds(each)) << each << "\n" << run.output();
    EXPECT_EQ(files(), before);
    EXPECT_EQ(deviceLog().find("Connected to the host"), std::string::npos) << deviceLog();
    EXPECT_TRUE(deviceSays("asks whether it would be served"));
}

TEST_F(Doctor, FindsThatNoDeviceIsThere) { expect(examine(), "devices.none", "works", 0); }

TEST_F(Doctor, SpeaksTheUsersLanguage)
{
    environment["LC_ALL"] = "de_DE.UTF-8";
    const auto run = examine({});
    EXPECT_EQ(run.status(), 0);
    EXPECT_THAT(run.output(), HasSubstr("Im Netzwerk ist kein Gerät angekündigt."));
    EXPECT_THAT(run.output(), HasSubstr("[Hinweis]"));
}

TEST_F(Doctor, FindsThatTheBusHasGone)
{
    bus.stop();
    expect(examine(), "bus.session-refused", "blocked", 1);
}

TEST_F(Doctor, FindsThatThereNeverWasABus)
{
    environment["DBUS_SESSION_BUS_ADDRESS"] = "";
    environment["XDG_RUNTIME_DIR"] = "";
    expect(examine(), "bus.session-missing", "blocked", 1);
}

TEST_F(Doctor, FindsThatTheBusDoesNotAnswerWithoutWaitingForIt)
{
    bus.process().sendSignal(SIGSTOP);
    expect(examine(), "bus.session-silent", "blocked", 1);
    bus.process().sendSignal(SIGCONT);
}

TEST_F(Doctor, FindsABrokenPreferencesFileAndLeavesItAlone)
{
    home.write("config/farview/com.quillon.Farview.plist", "<plist><dict><key>");
    const auto before = files();
    const auto run = examine();
    expect(run, "preferences.broken", "limited", 0);
    EXPECT_EQ(run.detail("preferences.broken", "path"),
              home.path("config/farview/com.quillon.Farview.plist"));
    EXPECT_EQ(files(), before);
}

TEST_F(Doctor, FindsThatTheDriverWasRemoved)
{
    fs::remove_all(root + "/Extensions/QLExGFX.kext");
    const auto run = examine();
    expect(run, "driver.missing", "blocked", 1);
    EXPECT_EQ(run.detail("driver.missing", "folder"), root + "/Extensions");
}

TEST_F(Doctor, FindsThatTheDriverIsDamaged)
{
    home.write("root/Extensions/QLExGFX.kext/Contents/Info.plist", "no list");
    const auto run = examine();
    expect(run, "driver.unusable", "blocked", 1);
    EXPECT_EQ(run.detail("driver.unusable", "path"), root + "/Extensions/QLExGFX.kext");
}

TEST_F(Doctor, FindsThatThePanelIsNotInstalled)
{
    fs::remove(root + "/PreferencePanes/Farview Preferences.prefPane");
    expect(examine(), "versions.pane-missing", "blocked", 1);
}

TEST_F(Doctor, FindsThatThereIsNoNetwork)
{
    const UnpluggedNetwork unplugged;
    expect(examine(), "discovery.loopback-only", "blocked", 1);
}

TEST_F(Doctor, TellsWhatEncryptsTheConnectionWhichEndsWhenTheDeviceIsForgotten)
{
    startServer();
    startAnnouncedDevice();
    connectByName();
    const auto run = examine();
    EXPECT_EQ(run.detail("pairing.encrypted", "device"), "desk-7.local") << run.output();
    EXPECT_THAT(run.detail("pairing.encrypted", "cipher"), HasSubstr("TLS_"));
    EXPECT_TRUE(run.finds("pairing.key"));
    panel->reports.clear();
    EXPECT_EQ(examine({"--forget", "Desk"}).status(), 0);
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice)) << serverLog();
}

TEST_F(Doctor, AnswersWhatTheServerAsks)
{
    PairingReport report;
    const auto life = std::make_shared<int>();
    panel->center().addObserver(
        life,
        [&](const Notification& heard) { report = pairingReport(heard.text(kPairingReportKey)); },
        kServerPairingDidChange, "");
    startServer();
    EXPECT_THAT(examine({"--confirm", "482913"}).output(), HasSubstr("No device asks"));
    startAnnouncedDevice();
    EXPECT_EQ(examine({"--forget", "Desk"}).status(), 0);
    panel->connectTo("desk-7.local");
    ASSERT_TRUE(waitUntil([&] { return report.state == PairingReport::State::comparing; }))
        << serverLog() << deviceLog();
    const auto confirmed = examine({"--confirm", report.digits});
    EXPECT_EQ(confirmed.status(), 0);
    EXPECT_THAT(confirmed.output(), HasSubstr("Now confirm it at Desk, too."));
    EXPECT_EQ(examine({"--refuse", report.digits}).status(), 0);
    EXPECT_EQ(report.state, PairingReport::State::none);
}

TEST_F(Doctor, FindsThatTheServerDoesNotRunAlthoughItShould)
{
    preferences->setCurrentState(1);
    expect(examine(), "processes.server-not-running", "blocked", 1);
    startServer();
    const auto run = examine();
    expect(run, "processes.server-running", "works", 0);
    EXPECT_EQ(run.detail("processes.server-running", "pids"), std::to_string(serverPid()));
    EXPECT_FALSE(run.finds("processes.server-deaf"));
}

TEST_F(Doctor, FindsADeviceThatRefuses)
{
    startAnnouncedDevice({"--refuse", "Back at noon."});
    const auto run = examine();
    expect(run, "devices.refuses", "blocked", 1);
    EXPECT_EQ(run.detail("devices.refuses", "answer"), "Back at noon.");
}

TEST_F(Doctor, FindsADeviceThatIsInUseAndLeavesItsUserAlone)
{
    startAnnouncedDevice();
    const auto link = occupyDevice(6001);
    expect(examine(), "devices.in-use", "works", 0);
    EXPECT_TRUE(link->isOpen());
}

TEST_F(Doctor, FindsADeviceThatNeverGreets)
{
    QTcpServer mute;
    ASSERT_TRUE(mute.listen(QHostAddress::Any, 0));
    announce(mute.serverPort());
    const auto run = examine();
    expect(run, "devices.silent", "blocked", 1);
    EXPECT_EQ(run.detail("devices.silent", "port"), std::to_string(mute.serverPort()));
}

TEST_F(Doctor, FindsADeviceWhosePortIsClosed)
{
    announce(4);
    expect(examine(), "devices.port-closed", "blocked", 1);
}

TEST_F(Doctor, NamesADeviceThatIsAway)
{
    preferences->setAutoConnectDevices({"Tablet"});
    const auto run = examine();
    expect(run, "devices.away", "works", 0);
    EXPECT_EQ(run.detail("devices.away", "name"), "Tablet");
}

TEST_F(Doctor, WorksWithoutAnything)
{
    const UnpluggedNetwork unplugged;
    bus.stop();
    fs::remove_all(root);
    environment["HOME"] = "/nonexistent";
    environment["XDG_CONFIG_HOME"] = "/nonexistent/config";
    environment["XDG_DATA_HOME"] = "/nonexistent/data";
    const auto run = examine();
    expect(run, "versions.pane-missing", "blocked", 1);
    EXPECT_TRUE(run.finds("display.none"));
    EXPECT_TRUE(run.finds("driver.missing"));
}

/// The window's program, without a display to show it on.
class DoctorWindowProgram : public Doctor
{
protected:
    std::unique_ptr<ChildProcess> startWindow()
    {
        environment["QT_QPA_PLATFORM"] = "offscreen";
        environment["QT_QPA_PLATFORMTHEME"] = "none";
        return std::make_unique<ChildProcess>(
            std::vector<std::string>{FARVIEW_PANE_BUNDLE
                                     "/Contents/Resources/FarviewDoctor.app/Contents/Linux/"
                                     "FarviewDoctor"},
            environment);
    }
    /// Whether it ends in order, soon after it was asked to.
    static bool endsWhenAsked(ChildProcess& process)
    {
        process.sendSignal(SIGTERM);
        const auto status = process.waitForEnd(seconds(2));
        return status && WIFEXITED(*status) && WEXITSTATUS(*status) == 0;
    }
};

TEST_F(DoctorWindowProgram, IsCancelledByClosing)
{
    startAnnouncedDevice();
    const auto window = startWindow();
    ASSERT_TRUE(deviceSays("asks whether it would be served")) << "it is at work";
    EXPECT_TRUE(endsWhenAsked(*window));
}

TEST_F(DoctorWindowProgram, ExaminesAlsoWhenTheBusDoesNotAnswer)
{
    startAnnouncedDevice();
    bus.process().sendSignal(SIGSTOP);
    const auto window = startWindow();
    EXPECT_TRUE(deviceSays("asks whether it would be served"));
    EXPECT_TRUE(endsWhenAsked(*window));
    bus.process().sendSignal(SIGCONT);
}

TEST_F(Doctor, SwitchesThePacketLogAndTellsTheServer)
{
    const std::string logs = home.path("FarviewLogging (2026-0");
    fs::create_directory(logs + "1-02 03:04:05 +0000)");
    fs::create_directory(logs + "2-02 03:04:05 +0000)");
    int told = 0;
    const auto listener = std::make_shared<int>(0);
    panel->center().addObserver(
        listener, [&](const Notification&) { ++told; }, kFVEPrefsDidChangeNotification, "");
    const auto on = examine({"--packet-log", "on"});
    EXPECT_EQ(on.status(), 0) << on.output();
    EXPECT_THAT(on.output(), HasSubstr("[Note] The screen server logs what it sends"));
    EXPECT_TRUE(preferences->logsScreenPackets());
    EXPECT_TRUE(waitUntil([&] { return told == 1; }));
    const auto report = examine();
    EXPECT_EQ(report.detail("processes.packet-log-on", "path"), home.path());
    EXPECT_EQ(report.detail("processes.packet-log", "path"), logs + "2-02 03:04:05 +0000)");
    EXPECT_EQ(examine({"--packet-log", "off"}).status(), 0);
    EXPECT_FALSE(preferences->logsScreenPackets());
    EXPECT_TRUE(waitUntil([&] { return told == 2; }));
}

TEST_F(Doctor, SaysThatThePacketLogCannotBeSwitched)
{
    environment["XDG_CONFIG_HOME"] = "/dev/null/config";
    const auto run = examine({"--packet-log", "on"});
    EXPECT_EQ(run.status(), 1);
    EXPECT_THAT(run.output(), HasSubstr("[Problem] Settings cannot be kept in /dev/null/config"));
}

TEST_F(Doctor, SwitchesThePacketLogWithoutABus)
{
    bus.stop();
    EXPECT_EQ(examine({"--packet-log", "on"}).status(), 0);
    EXPECT_TRUE(preferences->logsScreenPackets());
}

TEST_F(Doctor, RefusesArgumentsThatItDoesNotKnow)
{
    EXPECT_EQ(examine({"--packet-log", "perhaps"}).status(), 2);
    EXPECT_EQ(examine({"--something"}).status(), 2);
    EXPECT_EQ(examine({"--help"}).status(), 0);
    for (const char* line : {"\n   0  ", "\n   1  ", "\n   2  ", "\n   3  "})
        EXPECT_THAT(examine({"--help"}).output(), HasSubstr(line));
    EXPECT_THAT(examine({"--version"}).output(), HasSubstr("farview-doctor "));
}

} // namespace
