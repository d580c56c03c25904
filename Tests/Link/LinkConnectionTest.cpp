#include "Link/LinkConnection.h"

#include "Tests/Link/LinkPeers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;

namespace
{

/// Both sides are ours.
class LinkConnectionTest : public testing::Test
{
protected:
    void begin(const LinkGreeting& hostSpeaks = ownGreeting(),
               const LinkGreeting& deviceSpeaks = ownGreeting())
    {
        SocketPair sockets;
        host = LinkConnection::make(LinkSide::host, std::move(sockets.host), atHost, keyOfHost(),
                                    hostSpeaks, times);
        device = LinkConnection::make(LinkSide::device, std::move(sockets.device), atDevice,
                                      keyOfDevice(), deviceSpeaks, times);
    }
    void open(const LinkGreeting& hostSpeaks = ownGreeting())
    {
        begin(hostSpeaks);
        ASSERT_TRUE(waitUntil([&] { return atHost->opened && atDevice->opened; }));
    }
    bool bothEnd()
    {
        return waitUntil([&] { return atHost->ended() && atDevice->ended(); });
    }

    LinkTimes times = quickTimes();
    std::shared_ptr<LinkRecorder> atHost = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkRecorder> atDevice = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> host;
    std::shared_ptr<LinkConnection> device;
};

/// One side is ours, the other a scripted socket.
class LinkConnectionToStranger : public testing::Test
{
protected:
    void beginHost()
    {
        link = LinkConnection::make(LinkSide::host, std::move(sockets.host), seen, keyOfHost(),
                                    ownGreeting(), quickTimes());
        stranger = sockets.device.get();
    }
    void beginDevice(const LinkGreeting& speaks = ownGreeting(),
                     const LinkTimes& times = quickTimes())
    {
        link = LinkConnection::make(LinkSide::device, std::move(sockets.device), seen,
                                    keyOfDevice(), speaks, times);
        stranger = sockets.host.get();
    }
    void openDevice(const std::vector<std::string>& features = {kLinkEncryptionFeature})
    {
        beginDevice();
        ASSERT_TRUE(introduce(*stranger, LinkSide::host, {1, features}));
        ASSERT_TRUE(waitUntil([&] { return seen->opened; }));
    }
    void openHost()
    {
        beginHost();
        ASSERT_TRUE(introduce(*stranger, LinkSide::device, {1, {kLinkEncryptionFeature}}));
        ASSERT_TRUE(waitUntil([&] { return seen->opened; }));
    }
    Bytes received()
    {
        const QByteArray bytes = stranger->readAll();
        return {bytes.begin(), bytes.end()};
    }
    void expectEnd(LinkEndReason reason)
    {
        EXPECT_TRUE(waitUntil([&] { return seen->ended(); }));
        EXPECT_EQ(seen->reason(), reason);
    }
    bool strangerWasClosed()
    {
        return waitUntil([&] { return stranger->state() == QAbstractSocket::UnconnectedState; });
    }

    SocketPair sockets;
    QSslSocket* stranger = nullptr;
    std::shared_ptr<LinkRecorder> seen = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> link;
};

TEST_F(LinkConnectionTest, OpensOnBothSidesOnceTheDeviceAccepts)
{
    open();
    EXPECT_TRUE(host->isOpen());
    EXPECT_TRUE(device->isOpen());
    EXPECT_EQ(device->peerAddress(), "127.0.0.1");
}

TEST_F(LinkConnectionTest, ReportsNothingInsideACall)
{
    begin();
    EXPECT_FALSE(atHost->opened || atHost->ended() || atDevice->greeted);
    host->close({});
    EXPECT_FALSE(atHost->ended());
    ASSERT_TRUE(waitUntil([&] { return atHost->ended(); }));
}

TEST_F(LinkConnectionTest, CarriesTheOptionsToTheDeviceInOrder)
{
    open();
    host->send(LinkOptions{true, false, false, false});
    host->send(LinkOptions{false, true, true, true});
    ASSERT_TRUE(waitUntil([&] { return atDevice->frames.size() == 2; }));
    EXPECT_THAT(atDevice->frames, ElementsAre(LinkFrame(LinkOptions{true, false, false, false}),
                                              LinkFrame(LinkOptions{false, true, true, true})));
}

TEST_F(LinkConnectionTest, StaysOpenWhileNobodyHasAnythingToSay)
{
    open();
    runLoopFor(4 * quickTimes().silence);
    EXPECT_TRUE(host->isOpen());
    EXPECT_TRUE(device->isOpen());
}

TEST_F(LinkConnectionTest, HandsTheDevicesRefusalToTheHost)
{
    atDevice->onGreet = [](LinkConnection& link) {
        link.refuse({LinkRefusalCode::inUse, "In use by 192.0.2.1"});
    };
    begin();
    ASSERT_TRUE(bothEnd());
    EXPECT_EQ(atHost->reason(), LinkEndReason::refused);
    EXPECT_EQ(atHost->ends.front().text, "In use by 192.0.2.1");
    EXPECT_EQ(atDevice->reason(), LinkEndReason::closedHere);
    EXPECT_FALSE(atHost->opened);
}

TEST_F(LinkConnectionTest, CutsALongRefusalToItsLimit)
{
    atDevice->onGreet = [](LinkConnection& link) {
        link.refuse({LinkRefusalCode::byUser, std::string(5000, 'x')});
    };
    begin();
    ASSERT_TRUE(waitUntil([&] { return atHost->ended(); }));
    EXPECT_EQ(atHost->ends.front().text.size(), kLinkTextLimit);
}

TEST_F(LinkConnectionTest, EndsOnBothSidesWithoutACommonVersion)
{
    begin({2, 3, {}}, {1, 1, {}});
    ASSERT_TRUE(bothEnd());
    EXPECT_EQ(atHost->reason(), LinkEndReason::noAgreement);
    EXPECT_EQ(atDevice->reason(), LinkEndReason::noAgreement);
    EXPECT_FALSE(atDevice->greeted);
}

TEST_F(LinkConnectionTest, SaysGoodbyeToThePeer)
{
    open();
    host->close({LinkGoodbyeCode::quitting, "Until tomorrow"});
    ASSERT_TRUE(bothEnd());
    EXPECT_EQ(atHost->reason(), LinkEndReason::closedHere);
    EXPECT_EQ(atDevice->reason(), LinkEndReason::goodbye);
    EXPECT_EQ(atDevice->ends.front().text, "Until tomorrow");
}

TEST_F(LinkConnectionTest, ReportsItsEndOnce)
{
    open();
    host->close({});
    host->close({});
    device->close({});
    ASSERT_TRUE(bothEnd());
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_EQ(atHost->ends.size(), 1U);
    EXPECT_EQ(atDevice->ends.size(), 1U);
}

TEST_F(LinkConnectionTest, SendsNothingAfterItsGoodbye)
{
    open();
    host->close({});
    host->send(LinkOptions{true, true, true, true});
    ASSERT_TRUE(waitUntil([&] { return atDevice->ended(); }));
    EXPECT_TRUE(atDevice->frames.empty());
}

TEST_F(LinkConnectionTest, NoticesAPeerThatIsDropped)
{
    open();
    device.reset();
    ASSERT_TRUE(waitUntil([&] { return atHost->ended(); }));
    EXPECT_EQ(atHost->reason(), LinkEndReason::lost);
}

TEST_F(LinkConnectionTest, MayBeDroppedFromInsideEachReport)
{
    atDevice->onOpen = [&] { device.reset(); };
    begin();
    ASSERT_TRUE(waitUntil([&] { return atHost->ended() && !device; }));

    atDevice->onOpen = [] {};
    atDevice->onReceive = [&] { device.reset(); };
    open();
    host->send(LinkOptions{});
    host->send(LinkOptions{});
    ASSERT_TRUE(waitUntil([&] { return !device; }));
    EXPECT_EQ(atDevice->frames.size(), 1U) << "nothing comes after the drop";

    atHost->onEnd = [&] { host.reset(); };
    ASSERT_TRUE(waitUntil([&] { return !host; }));
}

TEST_F(LinkConnectionTest, MayBeClosedFromInsideAReport)
{
    atHost->onOpen = [&] { host->close({LinkGoodbyeCode::byUser, ""}); };
    begin();
    ASSERT_TRUE(bothEnd());
    EXPECT_EQ(atDevice->reason(), LinkEndReason::goodbye);
}

TEST_F(LinkConnectionTest, DoesNotSendAScreenRectangleThatWasNotAgreed)
{
    open(ownGreeting(false));
    host->send(LinkScreenRectangle{});
    host->send(LinkOptions{});
    ASSERT_TRUE(waitUntil([&] { return !atDevice->frames.empty(); }));
    EXPECT_EQ(atDevice->frames.front(), LinkFrame(LinkOptions{}));
    EXPECT_TRUE(device->isOpen());
}

TEST_F(LinkConnectionToStranger, GreetsFirstAndAtOnce)
{
    beginHost();
    ASSERT_TRUE(waitUntil([&] { return stranger->bytesAvailable() > 0; }));
    EXPECT_EQ(received(), encodeGreeting(ownGreeting()));
}

TEST_F(LinkConnectionToStranger, GivesUpOnADeviceThatNeverAnswers)
{
    beginHost();
    expectEnd(LinkEndReason::notAnswered);
    EXPECT_TRUE(strangerWasClosed());
}

TEST_F(LinkConnectionToStranger, GivesUpOnAHostThatNeverGreets)
{
    beginDevice();
    expectEnd(LinkEndReason::notAnswered);
}

TEST_F(LinkConnectionToStranger, GivesUpOnAHostThatGreetsTooSlowly)
{
    beginDevice();
    const Bytes greeting = encodeGreeting(ownGreeting());
    for (std::size_t index = 0; index + 1 < greeting.size() && !seen->ended(); ++index) {
        writeBytes(*stranger, {greeting[index]});
        runLoopFor(quickTimes().greeting / 8);
    }
    expectEnd(LinkEndReason::notAnswered);
}

TEST_F(LinkConnectionToStranger, UnderstandsAHostThatSendsByteByByte)
{
    beginDevice(ownGreeting(), LinkTimes{});
    const Bytes greeting = encodeGreeting(ownGreeting());
    for (const std::uint8_t byte : greeting) {
        writeBytes(*stranger, {byte});
        runLoopFor(std::chrono::milliseconds(1));
    }
    Bytes agreed = readBytes(*stranger, 1);
    agreed.insert(agreed.begin(), greeting.begin(), greeting.end());
    ASSERT_TRUE(secure(*stranger, LinkSide::host, agreed, keyOfHost()));
    writeBytes(*stranger, encodeFrame(LinkStanding{true}));
    ASSERT_TRUE(waitUntil([&] { return seen->opened; }));
    for (const std::uint8_t byte : encodeFrame(LinkOptions{true, true, false, false})) {
        writeBytes(*stranger, {byte});
        runLoopFor(std::chrono::milliseconds(1));
    }
    ASSERT_TRUE(waitUntil([&] { return seen->frames.size() == 1; }));
    EXPECT_EQ(seen->frames.front(), LinkFrame(LinkOptions{true, true, false, false}));
}

TEST_F(LinkConnectionToStranger, EndsAtADeviceThatAnswersWithGarbage)
{
    beginHost();
    stranger->write("HTTP/1.1 400 Bad Request\r\n\r\n");
    expectEnd(LinkEndReason::brokenRule);
}

TEST_F(LinkConnectionToStranger, TellsAStrangerThatThisIsNoGreeting)
{
    beginDevice();
    stranger->write("GET / HTTP/1.1\r\nHost: device\r\n\r\n");
    ASSERT_TRUE(waitUntil([&] { return stranger->bytesAvailable() > 0; }));
    const auto answer = decodeAnswer(received());
    ASSERT_EQ(answer.status, DecodeStatus::complete);
    EXPECT_EQ(std::get<LinkRefusal>(answer.value).code, LinkRefusalCode::notAGreeting);
    expectEnd(LinkEndReason::brokenRule);
    EXPECT_TRUE(strangerWasClosed());
}

TEST_F(LinkConnectionToStranger, DoesNotKeepWhatAStrangerPoursIn)
{
    beginDevice();
    stranger->write(QByteArray(8 << 20, 'x'));
    expectEnd(LinkEndReason::brokenRule);
    EXPECT_FALSE(seen->greeted);
}

TEST_F(LinkConnectionToStranger, RefusesAnAnswerFromWhichItsRequiredFeatureIsMissing)
{
    beginHost();
    writeBytes(*stranger, encodeAnswer(LinkAgreement{}));
    expectEnd(LinkEndReason::noAgreement);
    EXPECT_FALSE(seen->opened);
}

TEST_F(LinkConnectionToStranger, DoesNotListenToAHostBeforeItAcceptedIt)
{
    seen->onGreet = [](LinkConnection&) {};
    beginDevice();
    Bytes bytes = encodeGreeting(ownGreeting());
    const Bytes options = encodeFrame(LinkOptions{});
    bytes.insert(bytes.end(), options.begin(), options.end());
    writeBytes(*stranger, bytes);
    expectEnd(LinkEndReason::brokenRule);
    EXPECT_TRUE(seen->frames.empty());
}

TEST_F(LinkConnectionToStranger, NoticesThatThePeerFellSilent)
{
    openDevice();
    expectEnd(LinkEndReason::silent);
}

TEST_F(LinkConnectionToStranger, SendsSignsOfLifeWhileIdle)
{
    openDevice();
    ASSERT_TRUE(waitUntil([&] { return stranger->bytesAvailable() >= 16; }));
    EXPECT_EQ(decodeFrame(received()).value, LinkFrame(LinkKeepAlive{}));
}

TEST_F(LinkConnectionToStranger, TakesAnyFrameForASignOfLife)
{
    openDevice();
    for (int round = 0; round < 8; ++round) {
        writeBytes(*stranger, encodeFrame(LinkKeepAlive{}));
        runLoopFor(quickTimes().silence / 4);
    }
    EXPECT_TRUE(link->isOpen());
}

TEST_F(LinkConnectionToStranger, TakesThePiecesOfALargePictureForSignsOfLife)
{
    openDevice({kLinkEncryptionFeature, kLinkScreenFeature});
    const LinkFrame picture = LinkScreenRectangle{{0, 0, 1, 1}, 0, Bytes(80000, 7)};
    const Bytes bytes = encodeFrame(picture);
    for (std::size_t done = 0; done < bytes.size(); done += 10000) {
        const auto piece = ByteView(bytes).subspan(done, std::min(bytes.size() - done, 10000UL));
        writeBytes(*stranger, {piece.begin(), piece.end()});
        runLoopFor(quickTimes().silence / 4);
    }
    ASSERT_TRUE(waitUntil([&] { return !seen->frames.empty(); }));
    EXPECT_TRUE(seen->frames.front() == picture);
    EXPECT_TRUE(link->isOpen());
}

TEST_F(LinkConnectionToStranger, SaysGoodbyeToAPeerThatBreaksARule)
{
    openDevice();
    writeBytes(*stranger, {99, 0, 0, 0, 0, 0, 0, 0});
    ASSERT_TRUE(waitUntil([&] { return stranger->bytesAvailable() > 0; }));
    const auto frame = decodeFrame(received());
    ASSERT_EQ(frame.status, DecodeStatus::complete);
    EXPECT_EQ(std::get<LinkGoodbye>(frame.value).code, LinkGoodbyeCode::brokenRule);
    expectEnd(LinkEndReason::brokenRule);
}

TEST_F(LinkConnectionToStranger, DoesNotTakeAScreenRectangleThatWasNotAgreed)
{
    openDevice();
    writeBytes(*stranger, encodeFrame(LinkScreenRectangle{}));
    expectEnd(LinkEndReason::brokenRule);
}

TEST_F(LinkConnectionToStranger, DoesNotTakeOptionsFromADevice)
{
    openHost();
    writeBytes(*stranger, encodeFrame(LinkOptions{}));
    expectEnd(LinkEndReason::brokenRule);
}

TEST_F(LinkConnectionToStranger, EndsAfterTheFarewellTimeWhenThePeerIsSilent)
{
    openHost();
    link->close({LinkGoodbyeCode::quitting, ""});
    const auto limit = quickTimes().farewell + std::chrono::milliseconds(300);
    ASSERT_TRUE(waitUntil([&] { return seen->ended(); }, limit));
    EXPECT_EQ(seen->reason(), LinkEndReason::closedHere);
}

TEST_F(LinkConnectionToStranger, IsHeardSayingGoodbyeOverBytesItDidNotRead)
{
    openDevice();
    // Our side closes while the stranger's bytes wait unread: a hasty close would reset the
    // connection and take the goodbye with it.
    writeBytes(*stranger, encodeFrame(LinkKeepAlive{}));
    link->close({LinkGoodbyeCode::quitting, "bye"});
    ASSERT_TRUE(waitUntil([&] { return seen->ended(); }));
    const auto frame = decodeFrame(received());
    ASSERT_EQ(frame.status, DecodeStatus::complete);
    EXPECT_EQ(frame.value, LinkFrame(LinkGoodbye{LinkGoodbyeCode::quitting, "bye"}));
}

TEST_F(LinkConnectionToStranger, NoticesAPeerThatCloses)
{
    openHost();
    stranger->abort();
    expectEnd(LinkEndReason::lost);
}

TEST_F(LinkConnectionToStranger, HearsTheGoodbyeThatCameWithTheClose)
{
    openHost();
    writeBytes(*stranger, encodeFrame(LinkGoodbye{LinkGoodbyeCode::byUser, "switched off"}));
    stranger->disconnectFromHost();
    expectEnd(LinkEndReason::goodbye);
    EXPECT_EQ(seen->ends.front().text, "switched off");
}

} // namespace
