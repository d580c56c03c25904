#include "Link/LinkConnection.h"

#include "Tests/Link/LinkPeers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <linux/sockios.h>
#include <sys/ioctl.h>

using namespace farview;

namespace
{

const LinkAgreement kAgreed{1, {kLinkEncryptionFeature, kLinkScreenFeature}};
/// At most, in addition to a picture.
constexpr std::size_t kEncryptionTakes = 1000;
constexpr std::size_t kPictureSize = std::size_t{100} << 10;

LinkScreenRectangle picture(std::size_t size, std::uint8_t content = 7)
{
    return {{1, 2, 3, 4}, QLScreenEncodingJPG, Bytes(size, content)};
}

/// A host of ours, and a device that reads nothing until the test lets it.
class LinkConnectionSending : public testing::Test
{
protected:
    void open(LinkTimes times = {})
    {
        SocketPair sockets;
        socket = sockets.host.get();
        stranger = std::move(sockets.device);
        link = LinkConnection::make(LinkSide::host, std::move(sockets.host), seen, keyOfHost(),
                                    ownGreeting(), times);
        ASSERT_TRUE(introduce(*stranger, LinkSide::device, kAgreed));
        ASSERT_TRUE(waitUntil([&] { return seen->opened; }));
        stranger->setReadBufferSize(1);
    }
    void sendUntilThereIsNoRoom()
    {
        ASSERT_TRUE(waitUntil([&] {
            while (link->hasRoom())
                link->send(picture(kPictureSize));
            // What the system takes at once does not count.
            runLoopFor(std::chrono::milliseconds(20));
            return !link->hasRoom();
        }));
        seen->timesOfRoom = 0;
    }
    /// The device reads until the condition is true; `last` is the frame that came last.
    bool readUntil(const std::function<bool()>& condition)
    {
        stranger->setReadBufferSize(0);
        return waitUntil([&] {
            const QByteArray bytes = stranger->readAll();
            inbox.insert(inbox.end(), bytes.begin(), bytes.end());
            for (auto next = decodeFrame(inbox); next.status == DecodeStatus::complete;
                 next = decodeFrame(inbox)) {
                last = std::move(next.value);
                inbox.erase(inbox.begin(),
                            inbox.begin() + static_cast<std::ptrdiff_t>(next.consumed));
            }
            return condition();
        });
    }

    std::shared_ptr<LinkRecorder> seen = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> link;
    QSslSocket* socket = nullptr;
    std::unique_ptr<QSslSocket> stranger;
    Bytes inbox;
    LinkFrame last;
};

TEST(LinkConnectionBothSides, KeepTheOrderOfSmallFramesAndLargePictures)
{
    SocketPair sockets;
    const auto atHost = std::make_shared<LinkRecorder>();
    const auto atDevice = std::make_shared<LinkRecorder>();
    const auto host = LinkConnection::make(LinkSide::host, std::move(sockets.host), atHost,
                                           keyOfHost(), ownGreeting(), LinkTimes{});
    const auto device = LinkConnection::make(LinkSide::device, std::move(sockets.device), atDevice,
                                             keyOfDevice(), ownGreeting(), LinkTimes{});
    ASSERT_TRUE(waitUntil([&] { return atHost->opened && atDevice->opened; }));
    std::vector<LinkFrame> sent;
    for (const std::size_t size : {0U, 1U, 5000U, 300000U, 20U, 4096U, 4095U, 3000000U, 2U}) {
        sent.push_back(picture(size, static_cast<std::uint8_t>(sent.size())));
        sent.push_back(LinkOptions{true, false, true, false});
    }
    for (const LinkFrame& frame : sent)
        host->send(frame);
    ASSERT_TRUE(waitUntil([&] { return atDevice->frames.size() == sent.size(); }));
    EXPECT_TRUE(atDevice->frames == sent);
    EXPECT_TRUE(waitUntil([&] { return host->unsent() == 0; }));
}

TEST_F(LinkConnectionSending, KnowsHowMuchWaitsForAPeerThatDoesNotRead)
{
    open();
    EXPECT_EQ(link->unsent(), 0U);
    EXPECT_TRUE(link->hasRoom());
    sendUntilThereIsNoRoom();
    EXPECT_GE(link->unsent(), kLinkRoom);
    EXPECT_LT(link->unsent(), kLinkRoom + kPictureSize + kEncryptionTakes);
    EXPECT_TRUE(link->isOpen());
    EXPECT_EQ(seen->timesOfRoom, 0);
}

TEST_F(LinkConnectionSending, LeavesLittleToTheSystemThatItCannotSend)
{
    open();
    sendUntilThereIsNoRoom();
    int waitsInTheSystem = 0;
    ASSERT_EQ(::ioctl(static_cast<int>(socket->socketDescriptor()), SIOCOUTQNSD, &waitsInTheSystem),
              0);
    EXPECT_LE(waitsInTheSystem, 128 * 1024);
}

TEST_F(LinkConnectionSending, TellsOnceThatThereIsRoomAgain)
{
    open();
    sendUntilThereIsNoRoom();
    EXPECT_EQ(seen->timesOfRoom, 0);
    EXPECT_TRUE(readUntil([&] { return link->unsent() == 0 && seen->timesOfRoom > 0; }));
    EXPECT_TRUE(link->hasRoom());
    link->send(LinkOptions{});
    EXPECT_TRUE(readUntil([&] { return last == LinkFrame(LinkOptions{}); }));
    EXPECT_EQ(seen->timesOfRoom, 1) << "room was not missed again";
}

TEST_F(LinkConnectionSending, DoesNotHeapUpSignsOfLifeForAPeerThatDoesNotRead)
{
    open({.keepAlive = std::chrono::milliseconds(20)});
    sendUntilThereIsNoRoom();
    const std::size_t before = link->unsent();
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_LE(link->unsent(), before);
    EXPECT_TRUE(readUntil([&] { return last == LinkFrame(LinkKeepAlive{}); })) << "they go on";
}

TEST_F(LinkConnectionSending, SaysGoodbyeRightAfterWhatWaits)
{
    open({.farewell = std::chrono::seconds(20)});
    sendUntilThereIsNoRoom();
    const LinkGoodbye goodbye{LinkGoodbyeCode::quitting, "bye"};
    link->close(goodbye);
    EXPECT_TRUE(readUntil([&] { return last == LinkFrame(goodbye); }));
    EXPECT_EQ(seen->timesOfRoom, 0) << "nobody is to send more";
}

TEST_F(LinkConnectionSending, EndsWhenFarTooMuchWaits)
{
    open();
    for (int round = 0; round < 3; ++round)
        link->send(picture(kLinkScreenDataLimit));
    EXPECT_FALSE(seen->ended()) << "nothing is reported inside a call";
    EXPECT_FALSE(link->isOpen());
    ASSERT_TRUE(waitUntil([&] { return seen->ended(); }));
    EXPECT_EQ(seen->reason(), LinkEndReason::silent);
    EXPECT_EQ(link->unsent(), 0U);
}

TEST_F(LinkConnectionSending, MayBeDroppedWhileMuchWaits)
{
    open();
    sendUntilThereIsNoRoom();
    link.reset();
    stranger->setReadBufferSize(0);
    EXPECT_TRUE(waitUntil([&] {
        stranger->readAll();
        return stranger->state() == QAbstractSocket::UnconnectedState;
    }));
}

} // namespace
