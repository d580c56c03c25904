#include "Applications/Doctor/DeviceProbe.h"

#include "Applications/Device/DeviceServer.h"
#include "Link/Keys/PairingProof.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Applications/FakePublisher.h"
#include "Tests/Link/LinkPeers.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace farview;
using std::chrono::milliseconds;
using Kind = DeviceAnswer::Kind;

namespace
{

struct ListeningServer : QTcpServer {
    ListeningServer() { EXPECT_TRUE(listen(QHostAddress::LocalHost, 0)); }
};

class DeviceProbeTest : public testing::Test
{
protected:
    std::uint16_t startDevice()
    {
        settings.address = QHostAddress(QHostAddress::LocalHost);
        settings.port = 0;
        settings.keyPath = folder.path("device.pem");
        const std::string key = hexadecimal(keyOfHost().fingerprint);
        PairedPeers(fake.preferences, PairedPeers::computers).add({key, "", {}, {}});
        server = std::make_shared<DeviceServer>(settings, publisher, fake.platform(), quickTimes());
        server->setObserver([this] { ++changes; });
        EXPECT_TRUE(server->start());
        changes = 0;
        return server->status().port;
    }
    DeviceAnswer ask(const std::vector<Endpoint>& endpoints)
    {
        std::optional<DeviceAnswer> answer;
        probe =
            std::make_shared<DeviceProbe>(DeviceProbeTimes{milliseconds(400), milliseconds(400)});
        probe->ask(endpoints, [&](const DeviceAnswer& heard) { answer = heard; });
        EXPECT_FALSE(answer) << "never inside the call";
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
        return answer.value_or(DeviceAnswer{});
    }
    DeviceAnswer ask(std::uint16_t port) { return ask({{"127.0.0.1", port, 0}}); }

    DeviceSettings settings{"Desk", "desk-1234"};
    FakePublisher publisher;
    TemporaryFolder folder;
    FakePlatform fake;
    int changes = 0;
    std::shared_ptr<DeviceServer> server;
    std::shared_ptr<DeviceProbe> probe;
};

TEST_F(DeviceProbeTest, FindsADeviceReadyWithoutUsingIt)
{
    const auto port = startDevice();
    EXPECT_EQ(ask(port).kind, Kind::ready);
    runLoopFor(milliseconds(300));
    EXPECT_FALSE(server->status().usedBy);
    EXPECT_EQ(changes, 0) << "its window shows nothing of it";
    EXPECT_TRUE(publisher.states.empty()) << "nobody hears that it were in use";
}

TEST_F(DeviceProbeTest, HearsThatADeviceIsInUseAndDoesNotDisturbItsUser)
{
    const auto port = startDevice();
    const auto user = std::make_shared<LinkRecorder>();
    const auto link = LinkConnection::make(LinkSide::host, connectedSocket(port), user, keyOfHost(),
                                           ownGreeting(), quickTimes());
    ASSERT_TRUE(waitUntil([&] { return user->opened && server->status().usedBy; }));
    const auto answer = ask(port);
    EXPECT_EQ(answer.kind, Kind::refuses);
    EXPECT_EQ(answer.code, LinkRefusalCode::inUse);
    EXPECT_TRUE(link->isOpen());
}

TEST_F(DeviceProbeTest, HearsTheDevicesReasonToRefuse)
{
    settings.refusal = "Under maintenance.";
    const auto answer = ask(startDevice());
    EXPECT_EQ(answer.kind, Kind::refuses);
    EXPECT_EQ(answer.code, LinkRefusalCode::byUser);
    EXPECT_EQ(answer.words, "Under maintenance.");
}

TEST_F(DeviceProbeTest, TellsADeviceWithoutAnAddress)
{
    EXPECT_EQ(ask(std::vector<Endpoint>{}).kind, Kind::noAddress);
    EXPECT_EQ(ask({{"not-an-address", 6001, 0}}).kind, Kind::noAddress);
}

TEST_F(DeviceProbeTest, TellsAPortOnWhichNothingListens)
{
    ListeningServer taken;
    const auto port = taken.serverPort();
    taken.close();
    EXPECT_EQ(ask(port).kind, Kind::portClosed);
}

TEST_F(DeviceProbeTest, TellsADeviceThatNeverGreets)
{
    ListeningServer mute;
    EXPECT_EQ(ask(mute.serverPort()).kind, Kind::silent);
}

TEST_F(DeviceProbeTest, TellsADeviceThatHangsUp)
{
    ListeningServer rude;
    QObject::connect(&rude, &QTcpServer::newConnection,
                     [&] { delete rude.nextPendingConnection(); });
    EXPECT_EQ(ask(rude.serverPort()).kind, Kind::silent);
}

TEST_F(DeviceProbeTest, TellsSomethingThatIsNoDevice)
{
    ListeningServer web;
    QObject::connect(&web, &QTcpServer::newConnection, [&] {
        web.nextPendingConnection()->write("HTTP/1.0 400 Bad Request\r\n\r\n");
    });
    EXPECT_EQ(ask(web.serverPort()).kind, Kind::strange);
}

TEST_F(DeviceProbeTest, TellsSomethingThatAcceptsWhatItCannotServe)
{
    ListeningServer eager;
    QObject::connect(&eager, &QTcpServer::newConnection, [&] {
        const Bytes yes = encodeAnswer(LinkAgreement{});
        eager.nextPendingConnection()->write(reinterpret_cast<const char*>(yes.data()),
                                             static_cast<qint64>(yes.size()));
    });
    EXPECT_EQ(ask(eager.serverPort()).kind, Kind::strange);
}

TEST_F(DeviceProbeTest, TellsADeviceThatMissesMoreThanAQuestionAsTooOld)
{
    const std::string words = "The device does not offer \"encryption\".";
    ListeningServer old;
    QObject::connect(&old, &QTcpServer::newConnection, [&] {
        const Bytes no = encodeAnswer(LinkRefusal{LinkRefusalCode::noAgreement, words});
        old.nextPendingConnection()->write(reinterpret_cast<const char*>(no.data()),
                                           static_cast<qint64>(no.size()));
    });
    const auto answer = ask(old.serverPort());
    EXPECT_EQ(answer.kind, Kind::tooOld);
    EXPECT_EQ(answer.words, words);
}

TEST_F(DeviceProbeTest, MayBeDroppedWhileItAsks)
{
    ListeningServer mute;
    bool answered = false;
    auto dropped = std::make_shared<DeviceProbe>(DeviceProbeTimes{});
    dropped->ask({{"127.0.0.1", mute.serverPort(), 0}}, [&](const auto&) { answered = true; });
    ASSERT_TRUE(waitUntil([&] { return mute.hasPendingConnections(); }));
    dropped.reset();
    runLoopFor(milliseconds(100));
    EXPECT_FALSE(answered);
}

TEST(ProbingGreeting, IsRefusedByEveryDevice)
{
    const auto answer = agreementBetween(probingGreeting(), ownGreeting());
    const auto* refusal = std::get_if<LinkRefusal>(&answer);
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->code, LinkRefusalCode::noAgreement);
}

TEST(ProbingGreeting, IsKnownOnlyWhereTheFeatureIsRequired)
{
    EXPECT_TRUE(isProbing(probingGreeting()));
    EXPECT_FALSE(isProbing(ownGreeting()));
    EXPECT_FALSE(isProbing({1, 1, {{kLinkProbeFeature, false}}}));
    EXPECT_EQ(decodeGreeting(encodeGreeting(probingGreeting())).value, probingGreeting());
}

} // namespace
