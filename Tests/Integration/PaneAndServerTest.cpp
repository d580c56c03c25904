// The real pane, the real screen server and a real device, from the choice to the end.

#include "Tests/Integration/PaneSystem.h"
#include "Tests/Source/SheetFixture.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <csignal>

namespace farview
{
namespace
{

using std::chrono::milliseconds;
using std::chrono::seconds;

class PaneAndServer : public PaneSystem
{
protected:
    ~PaneAndServer() override { QDBusConnection::disconnectFromBus(connectionName); }

    FVEConnectToOtherSheetController& sheet() { return *pane->connectToOtherSheetController(); }
    void typeAndPressOK(const std::string& address)
    {
        sheet().otherTextField()->userTyped("");
        sheet().otherTextField()->userTyped(address);
        sheet().connectToOtherOKButton()->performClick(nullptr);
    }
    void connectTo(const std::string& address)
    {
        const auto loader = std::make_shared<FakeInterfaceLoader>();
        loader->wire = wireSheet;
        pane->setInterfaceLoader(loader);
        ASSERT_TRUE(choose("Connect To Other..."));
        ASSERT_TRUE(sheet().isOpen());
        typeAndPressOK(address);
    }
    /// The server that is known as the running one on the bus; 0 for none.
    pid_t runningServer() const
    {
        const auto connection =
            QDBusConnection::connectToBus(QString::fromStdString(bus.address()), connectionName);
        const auto server = QStringLiteral("com.quillon.ScreenCapture");
        return pid_t(connection.interface()->servicePid(server).value());
    }

private:
    const QString connectionName = QStringLiteral("watching");
};

TEST_F(PaneAndServer, AChosenDeviceIsConnectedAndOffFreesIt)
{
    showWithDesk();
    ASSERT_TRUE(choose("Desk"));
    ASSERT_TRUE(selects("Desk")) << text("device.log");
    EXPECT_TRUE(deviceSays("Connected to the host at")) << text("device.log");
    EXPECT_EQ(preferences().currentVirtualScreenDevice(), "desk-7.local");
    EXPECT_FALSE(isConnecting());
    EXPECT_TRUE(pane->spinningForServerTimer().expired());
    EXPECT_TRUE(pane->warningImage()->isHidden());
    EXPECT_EQ(servers().size(), 1u);

    pane->offTextPressed(nullptr);
    EXPECT_TRUE(serversAre(0));
    EXPECT_TRUE(deviceSays("The host is gone")) << text("device.log");
    EXPECT_EQ(pane->selectedNetService(), nullptr);
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->title(), "Farview: Off");

    turnOn();
    ASSERT_TRUE(choose("Desk")) << "it is free again";
    EXPECT_TRUE(selects("Desk"));
}

TEST_F(PaneAndServer, APickBeforeTheServerCanHearItIsKept)
{
    showWithDesk();
    pane->offTextPressed(nullptr);
    ASSERT_TRUE(serversAre(0));
    pane->onTextPressed(nullptr);
    ASSERT_TRUE(servers().empty() || runningServer() == 0);
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(selects("Desk")) << text("device.log");
}

TEST_F(PaneAndServer, HiddenAndShownAgainEverythingIsAsItWas)
{
    showConnectedToDesk();
    const auto before = servers();
    hide();
    show();
    // The new showing's list is still empty, and the server has not answered yet.
    EXPECT_NE(entry("Desk (in background)"), nullptr);
    ASSERT_TRUE(unlists("Desk (in background)"));
    EXPECT_TRUE(selects("Desk"));
    EXPECT_EQ(switchState(), 1);
    EXPECT_EQ(servers(), before);
}

TEST_F(PaneAndServer, APanelThatIsClosedAndOpenedFindsTheConnection)
{
    showConnectedToDesk();
    const auto before = servers();
    hide();
    reload();
    show();
    EXPECT_EQ(switchState(), 1);
    EXPECT_TRUE(selects("Desk"));
    EXPECT_EQ(servers(), before);
}

TEST_F(PaneAndServer, OffAndOnInQuickSuccessionEndsWithOneServer)
{
    showConnectedToDesk();
    for (int round = 0; round < 8; ++round) {
        pane->offTextPressed(nullptr);
        pane->onTextPressed(nullptr);
        // At once, and at several moments of the server's goodbye.
        runLoopFor(milliseconds(round * 30));
    }
    EXPECT_TRUE(deviceSays("The host is gone")) << text("device.log");
    ASSERT_TRUE(serversAre(1));
    EXPECT_TRUE(serverAnswers());
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(selects("Desk"));
    EXPECT_EQ(servers().size(), 1u);
    pane->watchdogTimerOperation(nullptr);
    EXPECT_EQ(switchState(), 1);
}

TEST_F(PaneAndServer, APickWhileTheLastServerSaysGoodbyeIsKept)
{
    const auto spare = start({FARVIEW_BINARY_DIR "/farview-device", "--headless", "--name", "Spare",
                              "--host-name", "spare-1", "--port", "0"},
                             "spare.log");
    showConnectedToDesk();
    const pid_t last = runningServer();
    ASSERT_NE(last, 0);
    // A device that does not answer holds up the goodbye.
    device->sendSignal(SIGSTOP);
    pane->offTextPressed(nullptr);
    pane->onTextPressed(nullptr);
    ASSERT_TRUE(
        waitUntil([this, last] { return runningServer() != 0 && runningServer() != last; }));
    // Not the one that stands still: it may still say that it is in use.
    ASSERT_TRUE(choose("Spare"));
    device->sendSignal(SIGCONT);
    EXPECT_TRUE(selects("Spare")) << text("spare.log");
    EXPECT_TRUE(serversAre(1));
}

TEST_F(PaneAndServer, OffBeforeTheServerCanHearItEndsWithoutAServer)
{
    load();
    show();
    pane->onTextPressed(nullptr);
    pane->offTextPressed(nullptr);
    // Its last word: it came up, and found that nobody wants it any more.
    ASSERT_TRUE(waitUntil([this] { return heard(kServerDisconnectedFromDevice) > 0; }));
    EXPECT_TRUE(serversAre(0));
}

TEST_F(PaneAndServer, OnAndOffInQuickSuccessionEndsWithoutAServer)
{
    load();
    show();
    for (int round = 0; round < 8; ++round) {
        pane->onTextPressed(nullptr);
        runLoopFor(milliseconds(round * 30));
        pane->offTextPressed(nullptr);
    }
    // One that was just starting when it was asked to quit may not have heard it.
    runLoopFor(seconds(1));
    EXPECT_TRUE(serversAre(0));
    pane->watchdogTimerOperation(nullptr);
    EXPECT_EQ(switchState(), 0);
}

TEST_F(PaneAndServer, TheSheetReachesADeviceByItsAddressAndCloses)
{
    showWithDesk();
    connectTo("127.0.0.1");
    ASSERT_TRUE(waitUntil([this] { return pane->connectedToOtherDevice(); }));
    EXPECT_EQ(sheet().connectToOtherProgress()->stringValue(), "Connected...");
    EXPECT_TRUE(waitUntil([this] { return !sheet().isOpen(); }));
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "127.0.0.1");
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->title(), "127.0.0.1");
    EXPECT_TRUE(deviceSays("Connected to the host at"));
    pane->takeNoVirtualScreenFrom(nullptr);
    EXPECT_TRUE(deviceSays("The host is gone")) << text("device.log");
}

TEST_F(PaneAndServer, AnAddressWhereNobodyAnswersLeavesTheSheetOpenForAnotherOne)
{
    load();
    show();
    turnOn();
    connectTo("127.0.0.1");
    ASSERT_TRUE(showsError(errorLimit));
    EXPECT_TRUE(sheet().isOpen());
    EXPECT_FALSE(pane->connectedToOtherDevice());
    startDesk();
    ASSERT_TRUE(deviceSays("Announced"));
    typeAndPressOK("127.0.0.1");
    EXPECT_TRUE(waitUntil([this] { return pane->connectedToOtherDevice() && !sheet().isOpen(); }));
}

} // namespace
} // namespace farview
