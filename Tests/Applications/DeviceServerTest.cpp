#include "Applications/Device/DeviceServer.h"

#include "Link/Keys/PairingProof.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Applications/FakeGlass.h"
#include "Tests/Applications/FakePublisher.h"
#include "Tests/Link/LinkPeers.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

/// A host that connects to the device, with our own side of the link.
struct TestHost {
    std::shared_ptr<LinkRecorder> seen = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> link;

    explicit TestHost(std::uint16_t port)
    {
        link = LinkConnection::make(LinkSide::host, connectedSocket(port), seen, keyOfHost(),
                                    ownGreeting(), LinkTimes{});
    }
};

class DeviceServerTest : public testing::Test
{
protected:
    DeviceServerTest()
    {
        settings.name = "Desk";
        settings.hostName = "desk-1234";
        settings.port = 0;
        settings.address = QHostAddress(QHostAddress::LocalHost);
        settings.keyPath = folder.path("device.pem");
        const std::string key = hexadecimal(keyOfHost().fingerprint);
        PairedPeers(fake.preferences, PairedPeers::computers).add({key, "", {}, {}});
    }

    void start()
    {
        server =
            std::make_shared<DeviceServer>(settings, publisher, fake.platform(), times, shownOn);
        server->setObserver([this] { ++changes; });
        ASSERT_TRUE(server->start());
    }
    std::unique_ptr<TestHost> host() const
    {
        return std::make_unique<TestHost>(server->status().port);
    }
    std::unique_ptr<TestHost> startWithAHost()
    {
        start();
        auto guest = host();
        EXPECT_TRUE(waitUntil([&] { return isUsed(); }));
        return guest;
    }
    /// A host whose picture of that size has begun.
    std::unique_ptr<TestHost> startWithAPicture(LinkPictureSize size)
    {
        shownOn = &glass;
        auto guest = startWithAHost();
        EXPECT_TRUE(waitUntil([&] { return guest->seen->opened; }));
        guest->link->send(size);
        EXPECT_TRUE(waitUntil([&] { return glass.picture != nullptr || !isUsed(); }));
        return guest;
    }
    /// A connection that never says a word.
    std::unique_ptr<QSslSocket> silentSocket() const
    {
        return connectedSocket(server->status().port);
    }
    /// A host of known key that introduced itself, and says nothing after that.
    std::unique_ptr<QSslSocket> silentHost() const
    {
        auto socket = silentSocket();
        EXPECT_TRUE(introduce(*socket, LinkSide::host, agreed));
        EXPECT_TRUE(waitUntil([&] { return isUsed(); }));
        return socket;
    }
    bool isUsed() const { return server->status().usedBy.has_value(); }

    DeviceSettings settings;
    LinkTimes times{};
    FakePublisher publisher;
    TemporaryFolder folder;
    FakePlatform fake;
    FakeLog& log = fake.log;
    LinkAgreement agreed{1, {kLinkEncryptionFeature}};
    FakeGlass glass;
    Glass* shownOn = nullptr;
    int changes = 0;
    std::shared_ptr<DeviceServer> server;
};

TEST_F(DeviceServerTest, AnnouncesItselfAsFree)
{
    start();
    ASSERT_TRUE(publisher.service);
    EXPECT_EQ(publisher.service->name, "Desk");
    EXPECT_EQ(publisher.service->hostName, "desk-1234");
    EXPECT_EQ(publisher.service->type, "_qlexvscreen._udp");
    EXPECT_EQ(publisher.service->port, server->status().port);
    EXPECT_EQ(publisher.state(), "NotConnected");
}

TEST_F(DeviceServerTest, ShowsTheNameUnderWhichItWasAnnounced)
{
    start();
    EXPECT_EQ(server->status().announcedName, "");
    publisher.succeed("Desk #2");
    EXPECT_EQ(server->status().announcedName, "Desk #2");
}

TEST_F(DeviceServerTest, ShowsThatItCannotBeAnnounced)
{
    start();
    publisher.fail("no network");
    EXPECT_THAT(server->status().trouble, HasSubstr("no network"));
    EXPECT_TRUE(log.contains("no network"));
    publisher.succeed("Desk");
    EXPECT_EQ(server->status().trouble, "") << "it was tried again";
}

TEST_F(DeviceServerTest, TakesAFreePortAndWarnsWhenItsOwnIsTaken)
{
    QTcpServer other;
    ASSERT_TRUE(other.listen(settings.address, 0));
    settings.port = other.serverPort();
    start();
    EXPECT_NE(server->status().port, 0);
    EXPECT_NE(server->status().port, other.serverPort());
    EXPECT_EQ(publisher.service->port, server->status().port);
    EXPECT_TRUE(log.contains("needs port 6001"));
}

TEST_F(DeviceServerTest, LetsAHostInAndShowsItsAddress)
{
    start();
    const auto guest = host();
    ASSERT_TRUE(waitUntil([&] { return guest->seen->opened && isUsed(); }));
    EXPECT_EQ(server->status().usedBy, "127.0.0.1");
    EXPECT_EQ(publisher.state(), "Connected");
    EXPECT_GT(changes, 0);
}

TEST_F(DeviceServerTest, ShowsTheOptionsOfItsHost)
{
    const auto guest = startWithAPicture({64, 64});
    EXPECT_FALSE(server->status().options);
    guest->link->send(LinkOptions{true, false, true, false});
    ASSERT_TRUE(waitUntil([&] { return server->status().options.has_value(); }));
    EXPECT_EQ(*server->status().options, (LinkOptions{true, false, true, false}));
}

TEST_F(DeviceServerTest, RefusesASecondHostAndKeepsTheFirst)
{
    const auto first = startWithAHost();
    const auto second = host();
    ASSERT_TRUE(waitUntil([&] { return second->seen->ended(); }));
    EXPECT_EQ(second->seen->reason(), LinkEndReason::refused);
    EXPECT_THAT(second->seen->ends.front().text, HasSubstr("in use"));
    EXPECT_TRUE(first->link->isOpen());
    EXPECT_TRUE(isUsed());
    EXPECT_THAT(publisher.states, ElementsAre("Connected"));
}

TEST_F(DeviceServerTest, LetsOnlyOneOfTwoInThatComeTogether)
{
    start();
    const auto first = host();
    const auto second = host();
    ASSERT_TRUE(waitUntil([&] {
        return (first->seen->opened || first->seen->ended()) &&
               (second->seen->opened || second->seen->ended());
    }));
    EXPECT_NE(first->seen->opened, second->seen->opened);
}

TEST_F(DeviceServerTest, IsFreeAgainAfterAGoodbye)
{
    const auto guest = startWithAHost();
    guest->link->close({LinkGoodbyeCode::byUser, ""});
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));
    EXPECT_THAT(publisher.states, ElementsAre("Connected", "NotConnected"));
    EXPECT_FALSE(server->status().options);

    const auto next = host();
    EXPECT_TRUE(waitUntil([&] { return next->seen->opened; }));
}

TEST_F(DeviceServerTest, IsFreeAgainWhenItsHostVanishes)
{
    auto guest = startWithAHost();
    guest.reset();
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));
    EXPECT_EQ(publisher.state(), "NotConnected");
}

TEST_F(DeviceServerTest, IsFreeAgainWhenItsHostFallsSilent)
{
    times.silence = quickTimes().silence;
    start();
    const auto stranger = silentHost();
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));
    EXPECT_TRUE(log.contains("stopped answering"));
}

TEST_F(DeviceServerTest, RefusesEveryHostWithTheUsersReason)
{
    settings.refusal = "Being cleaned";
    start();
    const auto guest = host();
    ASSERT_TRUE(waitUntil([&] { return guest->seen->ended(); }));
    EXPECT_EQ(guest->seen->reason(), LinkEndReason::refused);
    EXPECT_EQ(guest->seen->ends.front().text, "Being cleaned");
    EXPECT_FALSE(isUsed());
    EXPECT_TRUE(publisher.states.empty());
}

TEST_F(DeviceServerTest, IsNotKeptFromAHostByConnectionsThatSayNothing)
{
    start();
    std::vector<std::unique_ptr<QSslSocket>> strangers;
    for (int count = 0; count < 12; ++count)
        strangers.push_back(silentSocket());
    const auto guest = host();
    ASSERT_TRUE(waitUntil([&] { return guest->seen->opened; }));
    // All but the last few were told why they had to go.
    ASSERT_TRUE(waitUntil([&] { return strangers.front()->bytesAvailable() > 0; }));
    const QByteArray bytes = strangers.front()->readAll();
    const auto answer = decodeAnswer(Bytes(bytes.begin(), bytes.end()));
    ASSERT_EQ(answer.status, DecodeStatus::complete);
    EXPECT_EQ(std::get<LinkRefusal>(answer.value).code, LinkRefusalCode::tooManyWaiting);
}

TEST_F(DeviceServerTest, SurvivesManyConnectionsThatComeAndGo)
{
    start();
    for (int count = 0; count < 60; ++count) {
        const auto socket = silentSocket();
        if (count % 3 == 0)
            writeBytes(*socket, {'x'});
        if (count % 3 == 1)
            writeBytes(*socket, encodeGreeting(ownGreeting()));
    }
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));
    const auto guest = host();
    EXPECT_TRUE(waitUntil([&] { return guest->seen->opened; }));
}

TEST_F(DeviceServerTest, SaysGoodbyeWhenItStops)
{
    start();
    const auto guest = host();
    const auto stranger = silentSocket();
    ASSERT_TRUE(waitUntil([&] { return isUsed() && guest->seen->opened; }));
    bool stopped = false;
    server->stop([&] { stopped = true; });
    EXPECT_FALSE(stopped) << "never inside the call";
    EXPECT_FALSE(publisher.service) << "the announcement goes first";
    ASSERT_TRUE(waitUntil([&] { return stopped && guest->seen->ended(); }));
    EXPECT_EQ(guest->seen->reason(), LinkEndReason::goodbye);
    EXPECT_FALSE(isUsed());
}

TEST_F(DeviceServerTest, StopsInTimeWhateverTheOthersDo)
{
    start();
    const auto stranger = silentHost();
    bool stopped = false;
    server->stop([&] { stopped = true; });
    EXPECT_TRUE(waitUntil([&] { return stopped; }));
}

TEST_F(DeviceServerTest, LetsNobodyInWhileItStops)
{
    start();
    const std::uint16_t port = server->status().port;
    bool stopped = false;
    server->stop([&] { stopped = true; });
    QSslSocket late;
    late.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    ASSERT_TRUE(waitUntil([&] { return stopped; }));
    waitUntil([&] { return late.state() == QAbstractSocket::UnconnectedState; });
    EXPECT_NE(late.state(), QAbstractSocket::ConnectedState);
}

// --- the picture -----------------------------------------------------------------------------

TEST_F(DeviceServerTest, WithoutAGlassItOffersNoPictures)
{
    const auto guest = startWithAHost();
    ASSERT_TRUE(waitUntil([&] { return guest->seen->opened; }));
    EXPECT_FALSE(guest->link->agreement().has(kLinkScreenFeature));
    EXPECT_FALSE(server->status().isPictureAgreed);
}

TEST_F(DeviceServerTest, TellsAHostItsScreenAndAgainWhenThatTurns)
{
    shownOn = &glass;
    const auto guest = startWithAHost();
    ASSERT_TRUE(waitUntil([&] { return guest->seen->frames.size() == 1; }));
    EXPECT_TRUE(guest->link->agreement().has(kLinkZstdFeature));
    EXPECT_TRUE(server->status().isPictureAgreed);
    EXPECT_EQ(guest->seen->frames.back(), LinkFrame(glass.deviceScreen));
    glass.deviceScreen = {800, 1280, 150, 60};
    glass.screenChanged();
    ASSERT_TRUE(waitUntil([&] { return guest->seen->frames.size() == 2; }));
    EXPECT_EQ(guest->seen->frames.back(), LinkFrame(glass.deviceScreen));
}

TEST_F(DeviceServerTest, TellsAHostThatItsFrameIsShown)
{
    const auto guest = startWithAPicture({64, 64});
    guest->link->send(LinkFrameEnd{1});
    ASSERT_TRUE(waitUntil([&] { return glass.isWaiting(); }));
    glass.draw();
    ASSERT_TRUE(waitUntil([&] { return guest->seen->frames.size() == 2; }));
    EXPECT_EQ(std::get<LinkShown>(guest->seen->frames.back()).number, 1u);
}

// --- what the user does with it --------------------------------------------------------------

TEST_F(DeviceServerTest, TellsAHostWhatTheUserDoesWhileThatOneWantsIt)
{
    const auto guest = startWithAPicture({64, 64});
    const auto sendOptions = [&](const LinkOptions& options) {
        guest->link->send(options);
        return waitUntil([&] { return server->status().options == options; });
    };
    const LinkTouch finger{.finger = 2, .place = {700, 900, 64, 64}};
    glass.input->touch(finger);
    ASSERT_TRUE(sendOptions({.touch = true}));
    glass.input->key({30, true});
    glass.input->touch(finger);
    ASSERT_TRUE(sendOptions({.touch = true, .typing = true}));
    glass.input->key({30, true});
    const auto& frames = guest->seen->frames;
    ASSERT_TRUE(waitUntil([&] { return frames.size() == 3; }));
    EXPECT_EQ(frames[1], LinkFrame(finger));
    EXPECT_EQ(frames[2], LinkFrame(LinkKey{30, true}));
    ASSERT_TRUE(sendOptions({}));
    ASSERT_TRUE(waitUntil([&] { return frames.size() == 5; })) << "what is down is lifted";
    EXPECT_EQ(std::get<LinkTouch>(frames[3]).phase, LinkTouchPhase::cancel);
    EXPECT_EQ(frames[4], LinkFrame(LinkKey{30, false}));
}

TEST_F(DeviceServerTest, DoesNotSayThatAnOlderHostTakesInput)
{
    shownOn = &glass;
    agreed.features.emplace_back(kLinkScreenFeature);
    start();
    const auto stranger = silentHost();
    writeBytes(*stranger, encodeFrame(LinkOptions{.touch = true, .retina = true}));
    ASSERT_TRUE(waitUntil([&] { return server->status().options.has_value(); }));
    EXPECT_EQ(*server->status().options, (LinkOptions{.touch = false, .retina = true}));
}

TEST_F(DeviceServerTest, AHostThatVanishesUnderAFingerIsSurvived)
{
    auto guest = startWithAPicture({64, 64});
    guest->link->send(LinkOptions{.touch = true});
    ASSERT_TRUE(waitUntil([&] { return server->status().options.has_value(); }));
    glass.input->touch({.place = {1, 1, 64, 64}});
    guest.reset();
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));
    EXPECT_EQ(glass.input, nullptr);
    fake.runLoop.advance(Duration(1));
}

TEST_F(DeviceServerTest, FollowsAHostThatGoesOnForLong)
{
    const auto guest = startWithAPicture({64, 64});
    for (int count = 0; count < 600; ++count) {
        const int before = glass.pictures;
        guest->link->send(LinkPictureSize{32, 32});
        ASSERT_TRUE(waitUntil([&] { return glass.pictures > before || !isUsed(); }));
    }
    EXPECT_TRUE(isUsed());
}

TEST_F(DeviceServerTest, SendsAHostAwayWhosePictureBreaksTheRules)
{
    const auto guest = startWithAPicture({64, 64});
    guest->link->send(LinkScreenRectangle{{60, 0, 8, 8}, QLScreenEncodingLibz, {1, 2, 3}});
    ASSERT_TRUE(waitUntil([&] { return !isUsed() && guest->seen->ended(); }));
    EXPECT_EQ(guest->seen->reason(), LinkEndReason::goodbye);
    EXPECT_THAT(guest->seen->ends.front().text, HasSubstr("breaks the rules"));
    EXPECT_EQ(glass.picture, nullptr);
    EXPECT_EQ(server->status().lastVerdict, HostPicture::Verdict::brokenRule);
    const auto next = host();
    ASSERT_TRUE(waitUntil([&] { return next->seen->opened && isUsed(); }));
    EXPECT_EQ(server->status().lastVerdict, HostPicture::Verdict::good);
}

TEST_F(DeviceServerTest, SaysThatAPictureIsTooLargeForIt)
{
    const auto guest = startWithAPicture({16384, 16384});
    ASSERT_TRUE(waitUntil([&] { return guest->seen->ended(); }));
    EXPECT_THAT(guest->seen->ends.front().text, HasSubstr("too large"));
    EXPECT_EQ(glass.pictures, 0);
}

TEST_F(DeviceServerTest, EndsThePictureOfAHostThatVanishesInTheMiddleOfAFrame)
{
    shownOn = &glass;
    start();
    agreed.features.emplace_back(kLinkScreenFeature);
    auto stranger = silentHost();
    Bytes bytes = encodeFrame(LinkPictureSize{64, 64});
    const auto packet =
        encodeFrame(LinkScreenRectangle{{0, 0, 64, 64}, QLScreenEncodingLibz, Bytes(5000, 1)});
    bytes.insert(bytes.end(), packet.begin(), packet.begin() + 2000);
    writeBytes(*stranger, bytes);
    ASSERT_TRUE(waitUntil([&] { return glass.picture != nullptr; }));
    stranger.reset();
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));
    EXPECT_EQ(glass.picture, nullptr);
    EXPECT_FALSE(glass.isWaiting());
}

TEST_F(DeviceServerTest, ItsUserCanSendTheHostAway)
{
    const auto guest = startWithAPicture({64, 64});
    server->sendHostAway();
    ASSERT_TRUE(waitUntil([&] { return !isUsed() && guest->seen->ended(); }));
    EXPECT_EQ(guest->seen->reason(), LinkEndReason::goodbye);
    EXPECT_EQ(glass.picture, nullptr);
    server->sendHostAway();
    EXPECT_FALSE(isUsed()) << "there is nobody to send away";
}

TEST_F(DeviceServerTest, StopsWhileAHostThatDoesNotReadHasAPicture)
{
    shownOn = &glass;
    agreed.features.emplace_back(kLinkScreenFeature);
    start();
    const auto stranger = silentHost();
    writeBytes(*stranger, encodeFrame(LinkPictureSize{8, 8}));
    ASSERT_TRUE(waitUntil([&] { return glass.picture != nullptr; }));
    bool stopped = false;
    server->stop([&] { stopped = true; });
    EXPECT_TRUE(waitUntil([&] { return stopped; }));
    EXPECT_EQ(glass.picture, nullptr);
}

} // namespace
