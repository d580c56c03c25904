// What the panel shows when a device does not behave, from its announcement to the error text.

#include "Tests/Integration/PaneSystem.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <filesystem>
#include <functional>
#include <sys/socket.h>

namespace farview
{
namespace
{

using std::chrono::seconds;
using testing::Contains;

/// How a device that is not one treats a host.
struct Manners {
    const char* name;
    bool listens;
    /// What happens to a connection; nothing: it is never let in.
    std::function<void(QTcpSocket&)> receive;
};

std::ostream& operator<<(std::ostream& stream, const Manners& manners)
{
    return stream << manners.name;
}

class PaneDeviceFaults : public PaneSystem
{
protected:
    std::uint16_t listen(const Manners& manners)
    {
        EXPECT_TRUE(stranger.listen(QHostAddress(QHostAddress::AnyIPv4)));
        const auto port = stranger.serverPort();
        if (!manners.listens)
            stranger.close();
        else if (manners.receive)
            receiveBy(manners.receive);
        else
            acceptNobody();
        return port;
    }
    std::unique_ptr<ChildProcess> startWilling()
    {
        return start({FARVIEW_BINARY_DIR "/farview-device", "--headless", "--name", "Willing",
                      "--host-name", "willing-1", "--port", "0"},
                     "willing.log");
    }

private:
    void receiveBy(const std::function<void(QTcpSocket&)>& receive)
    {
        QObject::connect(&stranger, &QTcpServer::newConnection, &stranger, [this, receive] {
            while (auto* socket = stranger.nextPendingConnection())
                receive(*socket);
        });
    }
    /// Fills the line of those that wait to be let in, so that the next is not even answered.
    void acceptNobody()
    {
        stranger.pauseAccepting();
        EXPECT_EQ(::listen(static_cast<int>(stranger.socketDescriptor()), 0), 0);
        waiting.connectToHost(QHostAddress(QHostAddress::LocalHost), stranger.serverPort());
        EXPECT_TRUE(waitUntil([&] { return waiting.state() == QAbstractSocket::ConnectedState; }));
    }

    QTcpServer stranger;
    QTcpSocket waiting;
};

class PaneAndStranger : public PaneDeviceFaults, public testing::WithParamInterface<Manners>
{
};

INSTANTIATE_TEST_SUITE_P(
    ThatIsNoDevice, PaneAndStranger,
    testing::Values(Manners{"NobodyListens", false, {}}, Manners{"NeverAccepts", true, {}},
                    Manners{"NeverGreets", true, [](QTcpSocket&) {}},
                    Manners{"GreetsWithGarbage", true,
                            [](QTcpSocket& socket) { socket.write("SSH-2.0-OpenSSH_9.2p1\r\n"); }},
                    Manners{
                        "PoursGarbage", true,
                        [](QTcpSocket& socket) { socket.write(QByteArray(1'000'000, '\xFF')); }},
                    Manners{"HangsUp", true, [](QTcpSocket& socket) { socket.abort(); }}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_P(PaneAndStranger, IsAnErrorWithinFifteenSecondsAndTheServerGoesOn)
{
    load();
    show();
    announce("Stranger", "stranger-1", listen(GetParam()));
    turnOn();
    ASSERT_TRUE(lists("Stranger"));
    ASSERT_TRUE(choose("Stranger"));
    EXPECT_TRUE(showsError(errorLimit));
    EXPECT_EQ(pane->selectedNetService(), nullptr);
    EXPECT_TRUE(serverAnswers());
    EXPECT_EQ(servers().size(), 1u);
}

TEST_F(PaneDeviceFaults, ARefusalIsAnErrorAndAnotherDeviceCanBeChosen)
{
    startDesk({"--refuse", "Closed for maintenance"});
    const auto other = startWilling();
    load();
    show();
    turnOn();
    ASSERT_TRUE(lists("Desk"));
    ASSERT_TRUE(lists("Willing"));
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(showsError(errorLimit));
    EXPECT_EQ(pane->selectedNetService(), nullptr);
    ASSERT_TRUE(choose("Willing"));
    EXPECT_TRUE(selects("Willing")) << text("willing.log");
}

TEST_F(PaneDeviceFaults, OneThatVanishesWithoutAGoodbyeLeavesAndCanBeChosenWhenItReturns)
{
    const auto other = startWilling();
    showWithDesk();
    ASSERT_TRUE(lists("Willing"));
    device->kill();
    // Nobody said goodbye for it: it is still listed, and found to be gone when it is chosen.
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(showsError(errorLimit));
    EXPECT_TRUE(unlists("Desk"));
    EXPECT_NE(entry("Willing"), nullptr) << "it was looked at too, and answered";

    startDesk();
    ASSERT_TRUE(lists("Desk")) << text("device.log");
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(selects("Desk")) << text("device.log");
}

TEST_F(PaneDeviceFaults, OneThatVanishesIsConnectedAgainWhereItReturns)
{
    showConnectedToDesk();
    device->kill();
    EXPECT_TRUE(selectsNothing(seconds(6)));
    runLoopFor(seconds(3));
    EXPECT_FALSE(errorShows()) << "nobody asked for it now";
    startDesk({"--port", "6011"});
    EXPECT_TRUE(selects("Desk")) << text("device.log");
}

TEST_F(PaneDeviceFaults, OneThatQuicklyReturnsOnAnotherPortIsFoundThere)
{
    showConnectedToDesk();
    device->kill();
    startDesk({"--port", "6011"});
    // Nobody missed it, so nobody asked where it is now: the first attempt goes to the old port.
    EXPECT_TRUE(selectsNothing(seconds(6)));
    EXPECT_TRUE(selects("Desk")) << text("device.log");
}

TEST_F(PaneDeviceFaults, OneThatVanishesStaysAwayWhenTheUserWantsNoneMeanwhile)
{
    showConnectedToDesk();
    device->kill();
    EXPECT_TRUE(selectsNothing(seconds(6)));
    pane->takeNoVirtualScreenFrom(nullptr);
    std::filesystem::remove(home.path("device.log"));
    startDesk();
    ASSERT_TRUE(deviceSays("Announced")) << text("device.log");
    ASSERT_TRUE(lists("Desk"));
    runLoopFor(seconds(4));
    EXPECT_FALSE(deviceSays("Connected", Limit(0))) << text("device.log");
    EXPECT_EQ(pane->selectedNetService(), nullptr);
}

TEST_F(PaneDeviceFaults, OneThatSaysGoodbyeLeavesTheMenuAtOnce)
{
    showConnectedToDesk();
    device->sendSignal(SIGTERM);
    EXPECT_TRUE(selectsNothing(seconds(3)));
    EXPECT_TRUE(unlists("Desk", seconds(5)));
    EXPECT_EQ(entry("Desk (in background)"), nullptr);
}

TEST_F(PaneDeviceFaults, HostileNamesFromTheNetworkAreListedLetterForLetter)
{
    const std::vector<std::string> names{"<b>Desk</b> & <img src=x>",
                                         "Desk\nwith\ttwo\x1b[31mlines",
                                         "\xe2\x80\xae"
                                         "ksed",
                                         std::string(63, 'x'),
                                         "\xe6\x9c\xba" + std::string(60, 'y'),
                                         "%s%n \"quoted\" \\"};
    load();
    show();
    for (std::size_t index = 0; index < names.size(); ++index)
        announce(names[index], "hostile-" + std::to_string(index), 6001);
    turnOn();
    for (const auto& name : names) {
        EXPECT_TRUE(lists(name)) << name;
    }
    // The list for the next showing holds them too.
    pane->autoConnect()->performClick(nullptr);
    std::vector<std::string> rows;
    for (const auto& row : pane->autoConnectDevices()) {
        const auto* name = row.name.get<std::string>();
        rows.push_back(name ? *name : "");
    }
    for (const auto& name : names)
        EXPECT_THAT(rows, Contains(name));
}

} // namespace
} // namespace farview
