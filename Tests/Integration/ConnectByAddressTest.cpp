// The panel's sheet, the real screen server and the real device, on a private bus and network.

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Tests/Source/SheetFixture.h"
#include "Tests/Support/Isolation.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <fstream>
#include <sstream>

using namespace farview;

namespace
{

/// A pane whose notifications go over a real bus, on an otherwise scripted machine.
class ConnectByAddress : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const std::string reason = whyNotIsolated(); !reason.empty())
            GTEST_SKIP() << reason;
        fake.platform().runLoop = &loop;
        fake.platform().distributedNotificationCenter = &center;
        fake.registry.publish("QLExGFX");
        fake.preferences.writeAsAnotherProcess(kCurrentState, std::int64_t{1}, kApplicationID);
        showPane();
        startServer();
    }
    void showPane()
    {
        pane = std::make_shared<FVEPreferencePane>(fake.platform());
        ASSERT_TRUE(pane->initWithBundle(fake.bundles.add("/opt/Farview Preferences.prefPane")));
        for (const auto& outlet : pane->outlets())
            outlet.connect(*pane);
        const auto loader = std::make_shared<FakeInterfaceLoader>();
        loader->wire = wireSheet;
        pane->setInterfaceLoader(loader);
        pane->mainViewDidLoad();
        pane->willSelect();
        pane->didSelect();
    }
    std::unique_ptr<ChildProcess> start(const std::string& program, const std::string& arguments)
    {
        const std::string path = FARVIEW_BINARY_DIR "/" + program;
        return std::make_unique<ChildProcess>(
            std::vector<std::string>{"sh", "-c",
                                     "exec '" + path + "' " + arguments + " >>'" +
                                         home.path(program + ".log") + "' 2>&1"},
            environment);
    }
    void startServer()
    {
        bool ready = false;
        const auto listener = std::make_shared<int>();
        center.addObserver(
            listener, [&](const Notification&) { ready = true; }, kServerDisconnectedFromDevice,
            "");
        server = start("ScreenCapture", "");
        ASSERT_TRUE(waitUntil([&] { return ready; })) << log("ScreenCapture");
    }
    void startDevice()
    {
        device = start("farview-device", "--headless --name Desk --host-name desk-7");
        ASSERT_TRUE(waitUntil([&] {
            return log("farview-device").find("Announced") != std::string::npos;
        })) << log("farview-device");
    }
    std::string log(const std::string& program) const
    {
        std::ostringstream all;
        all << std::ifstream(home.path(program + ".log")).rdbuf();
        return all.str();
    }
    FVEConnectToOtherSheetController& sheet() { return *pane->connectToOtherSheetController(); }
    void connectTo(const std::string& address)
    {
        MenuItem entry;
        pane->takeVirtualOtherDeviceScreenFrom(&entry);
        ASSERT_TRUE(sheet().isOpen());
        sheet().otherTextField()->userTyped(address);
        sheet().connectToOtherOKButton()->performClick(nullptr);
    }

    TemporaryFolder home;
    PrivateBus bus;
    SessionBusScope session{bus.address()};
    ChildProcess::Environment environment{
        {"DBUS_SESSION_BUS_ADDRESS", bus.address()},
        {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path("no-system-bus")},
        {"XDG_CONFIG_HOME", home.path("config")},
        {"XDG_DATA_HOME", home.path("data")},
        {"XDG_RUNTIME_DIR", home.path("runtime")},
        {"HOME", home.path()}};
    FakePlatform fake;
    Platform::Scope scope{fake.platform()};
    QtRunLoop loop;
    TestBus connection{fake.log};
    DBusNotificationCenter center{connection, loop, fake.log};
    std::shared_ptr<FVEPreferencePane> pane;
    std::unique_ptr<ChildProcess> device;
    std::unique_ptr<ChildProcess> server;
};

TEST_F(ConnectByAddress, TheSheetReachesARealDeviceAndCloses)
{
    startDevice();
    connectTo("127.0.0.1");
    ASSERT_TRUE(waitUntil([&] { return pane->connectedToOtherDevice(); }))
        << log("ScreenCapture") << log("farview-device");
    EXPECT_EQ(sheet().connectToOtherProgress()->stringValue(), "Connected...");
    EXPECT_TRUE(waitUntil([&] { return !sheet().isOpen(); }));
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "127.0.0.1");
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->title(), "127.0.0.1");
    EXPECT_NE(log("farview-device").find("Connected to the host at"), std::string::npos);

    pane->takeNoVirtualScreenFrom(nullptr);
    EXPECT_TRUE(waitUntil([&] {
        return log("farview-device").find("The host is gone") != std::string::npos;
    })) << log("farview-device");
}

TEST_F(ConnectByAddress, AnAddressWhereNobodyAnswersLeavesTheSheetOpenForAnotherOne)
{
    connectTo("127.0.0.1");
    ASSERT_TRUE(waitUntil([&] { return !pane->warningImage()->isHidden(); }))
        << log("ScreenCapture");
    EXPECT_TRUE(sheet().isOpen());
    EXPECT_FALSE(pane->connectedToOtherDevice());
    startDevice();
    sheet().otherTextField()->userTyped("");
    sheet().otherTextField()->userTyped("127.0.0.1");
    sheet().connectToOtherOKButton()->performClick(nullptr);
    EXPECT_TRUE(waitUntil([&] { return pane->connectedToOtherDevice() && !sheet().isOpen(); }))
        << log("ScreenCapture");
}

} // namespace
