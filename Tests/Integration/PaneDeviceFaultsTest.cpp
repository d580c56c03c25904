// What the panel shows when a device does not behave, from its announcement to the error text.

#include "Tests/Integration/PaneSystem.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

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
    /// What happens to a connection; nothing: the system completes it, and nobody takes it.
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
        if (!manners.receive)
            stranger.pauseAccepting();
        QObject::connect(&stranger, &QTcpServer::newConnection, &stranger, [this, manners] {
            while (auto* socket = stranger.nextPendingConnection())
                manners.receive(*socket);
        });
        const auto port = stranger.serverPort();
        if (!manners.listens)
            stranger.close();
        return port;
    }

    QTcpServer stranger;
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
    const auto other = start({FARVIEW_BINARY_DIR "/farview-device", "--headless", "--name",
                              "Willing", "--host-name", "willing-1", "--port", "0"},
                             "willing.log");
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
    showConnectedToDesk();
    device->kill();
    EXPECT_TRUE(selectsNothing(seconds(6)));
    // Nobody said goodbye for it: it is still listed, and found to be gone when it is chosen.
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(showsError(errorLimit));
    EXPECT_TRUE(unlists("Desk"));

    startDesk();
    ASSERT_TRUE(lists("Desk")) << text("device.log");
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(selects("Desk")) << text("device.log");
}

TEST_F(PaneDeviceFaults, OneThatAnswersStaysWhenItIsLookedAtAgain)
{
    showConnectedToDesk();
    platform().discovery->checkAgain();
    EXPECT_FALSE(unlists("Desk", seconds(6)));
    EXPECT_TRUE(selects("Desk"));
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
