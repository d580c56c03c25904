#include "Link/HostConnector.h"

#include "Tests/Support/WaitUntil.h"

#include <QTcpServer>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <optional>

using namespace farview;

namespace
{

using std::chrono::milliseconds;

const QHostAddress kHere(QHostAddress::LocalHost);

/// A port that swallows connection attempts: its queue is full and nobody accepts.
class FullPort
{
public:
    FullPort()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        mListener = socket(AF_INET, SOCK_STREAM, 0);
        bind(mListener, reinterpret_cast<sockaddr*>(&address), sizeof address);
        listen(mListener, 0);
        socklen_t size = sizeof address;
        getsockname(mListener, reinterpret_cast<sockaddr*>(&address), &size);
        port = ntohs(address.sin_port);
        for (int& filler : mFillers) {
            filler = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
            static_cast<void>(connect(filler, reinterpret_cast<sockaddr*>(&address), size));
        }
    }
    ~FullPort()
    {
        for (const int filler : mFillers)
            close(filler);
        close(mListener);
    }
    FullPort(const FullPort&) = delete;
    FullPort& operator=(const FullPort&) = delete;

    std::uint16_t port = 0;

private:
    int mListener = -1;
    int mFillers[4] = {};
};

std::uint16_t closedPort()
{
    QTcpServer server;
    server.listen(kHere, 0);
    return server.serverPort();
}

class HostConnectorTest : public testing::Test
{
protected:
    HostConnectorTest() { server.listen(kHere, 0); }

    void start(std::vector<LinkCandidate> candidates)
    {
        connector.start(
            std::move(candidates), [this](auto found) { socket = std::move(found); },
            [this](const std::string& why) { failure = why; });
    }
    bool isDecided() const { return socket || failure; }
    void expectConnection()
    {
        ASSERT_TRUE(waitUntil([&] { return isDecided(); }));
        ASSERT_TRUE(socket);
        EXPECT_EQ(socket->state(), QAbstractSocket::ConnectedState);
        EXPECT_EQ(socket->peerPort(), server.serverPort());
    }
    void expectFailure(const char* why)
    {
        EXPECT_TRUE(waitUntil([&] { return isDecided(); }));
        EXPECT_EQ(failure, why);
    }

    QTcpServer server;
    std::unique_ptr<QTcpSocket> socket;
    std::optional<std::string> failure;
    HostConnector connector{{milliseconds(1500), milliseconds(100)}};
};

TEST_F(HostConnectorTest, HandsOverAConnectedSocket)
{
    start({{kHere, server.serverPort()}});
    EXPECT_FALSE(isDecided()) << "never inside the call";
    expectConnection();
}

TEST_F(HostConnectorTest, GoesOnToTheNextAddressWhenOneRefuses)
{
    start({{kHere, closedPort()}, {kHere, closedPort()}, {kHere, server.serverPort()}});
    expectConnection();
}

TEST_F(HostConnectorTest, DoesNotWaitForAnAddressThatNeverAnswers)
{
    const FullPort full;
    start({{kHere, full.port}, {kHere, server.serverPort()}});
    expectConnection();
}

TEST_F(HostConnectorTest, GivesUpAtItsDeadline)
{
    const FullPort full;
    start({{kHere, full.port}});
    expectFailure("The device did not answer in time.");
}

TEST_F(HostConnectorTest, TellsWhyNoAddressWorks)
{
    start({{kHere, closedPort()}});
    expectFailure("Connection refused");
}

TEST_F(HostConnectorTest, FailsWithoutAnAddress)
{
    start({});
    EXPECT_FALSE(isDecided()) << "never inside the call";
    expectFailure("The device has no address to connect to.");
}

TEST_F(HostConnectorTest, MayBeDestroyedFromInsideItsReport)
{
    auto owned = std::make_unique<HostConnector>(ConnectorTimes{});
    std::string reason;
    const auto failed = [&](const std::string& why) {
        owned.reset();
        reason = why;
    };
    owned->start(
        {{kHere, closedPort()}}, [](auto) {}, failed);
    EXPECT_TRUE(waitUntil([&] { return !owned; }));
    EXPECT_EQ(reason, "Connection refused") << "the text outlives the connector";

    owned = std::make_unique<HostConnector>(ConnectorTimes{});
    const auto connected = [&](std::unique_ptr<QTcpSocket> found) {
        owned.reset();
        socket = std::move(found);
    };
    owned->start({{kHere, server.serverPort()}}, connected, failed);
    EXPECT_TRUE(waitUntil([&] { return !owned; }));
    EXPECT_TRUE(socket);
}

TEST_F(HostConnectorTest, ReportsNothingAfterItsDestruction)
{
    bool reported = false;
    auto owned = std::make_unique<HostConnector>(ConnectorTimes{});
    owned->start(
        {{kHere, server.serverPort()}}, [&](auto) { reported = true; },
        [&](const std::string&) { reported = true; });
    waitUntil([&] { return server.hasPendingConnections(); }, milliseconds(50));
    owned.reset();
    runLoopFor(milliseconds(100));
    EXPECT_FALSE(reported);
}

} // namespace
