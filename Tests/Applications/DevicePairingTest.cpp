#include "Applications/Device/DeviceServer.h"
#include "Link/Keys/PairingProof.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Applications/FakePublisher.h"
#include "Tests/Link/LinkPeers.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace farview;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

/// A computer that connects to the device and does not know it.
struct StrangeComputer {
    std::shared_ptr<LinkRecorder> seen = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> link;

    StrangeComputer(std::uint16_t port, const OwnKey& key, bool knowsDevice)
    {
        seen->trust = knowsDevice;
        link = LinkConnection::make(LinkSide::host, connectedSocket(port), seen, key, ownGreeting(),
                                    LinkTimes{});
    }
    bool isAsked() const { return !seen->digits.empty(); }
    std::optional<LinkGoodbyeCode> goodbye() const
    {
        return seen->ended() ? seen->ends.front().goodbye : std::nullopt;
    }
};

/// A device that knows the computer with `keyOfHost` and nobody else.
class DevicePairing : public testing::Test
{
protected:
    DevicePairing()
    {
        settings.name = "Desk";
        settings.port = 0;
        settings.address = QHostAddress(QHostAddress::LocalHost);
        settings.keyPath = folder.path("device.pem");
        computers.add({knownKey, "192.0.2.1", {1}, {1}});
    }
    void start()
    {
        server = std::make_shared<DeviceServer>(settings, publisher, fake.platform(), times);
        ASSERT_TRUE(server->start());
    }
    std::unique_ptr<StrangeComputer> computer(const OwnKey& key, bool knowsDevice = false)
    {
        return std::make_unique<StrangeComputer>(server->status().port, key, knowsDevice);
    }
    static const OwnKey& keyOfStranger()
    {
        static const OwnKey key = makeOwnKey();
        return key;
    }
    /// A stranger that shows its digits.
    std::unique_ptr<StrangeComputer> stranger()
    {
        auto asking = computer(keyOfStranger());
        EXPECT_TRUE(waitUntil([&] { return asking->isAsked() && toConfirm(); }));
        return asking;
    }
    void confirm() { ASSERT_TRUE(server->acceptDigits(toConfirm()->digits)); }
    bool isSentAway(const StrangeComputer& who)
    {
        return waitUntil([&] { return who.seen->ended() && !toConfirm(); });
    }
    void failToPair()
    {
        const auto asking = stranger();
        server->refuseComputer();
        ASSERT_TRUE(isSentAway(*asking));
    }
    const std::optional<ComputerToConfirm>& toConfirm() const { return server->status().toConfirm; }
    bool isUsed() const { return server->status().usedBy.has_value(); }
    std::vector<std::string> shownKeys() const
    {
        std::vector<std::string> keys;
        for (const auto& peer : server->status().computers)
            keys.push_back(peer.key);
        return keys;
    }

    const std::string knownKey = hexadecimal(keyOfHost().fingerprint);
    const std::string strangeKey = hexadecimal(keyOfStranger().fingerprint);
    DeviceSettings settings;
    LinkTimes times{};
    FakePublisher publisher;
    TemporaryFolder folder;
    FakePlatform fake;
    PairedPeers computers{fake.preferences, PairedPeers::computers};
    std::shared_ptr<DeviceServer> server;
};

TEST_F(DevicePairing, AsksItsUserAboutAStrangerAndStoresNothing)
{
    start();
    const auto asking = stranger();
    EXPECT_EQ(*toConfirm(), (ComputerToConfirm{asking->seen->digits, "127.0.0.1", false}));
    EXPECT_FALSE(isUsed());
    EXPECT_THAT(shownKeys(), ElementsAre(knownKey));
    EXPECT_TRUE(publisher.states.empty()) << "it is not in use";
}

TEST_F(DevicePairing, LetsAComputerInThatBothUsersConfirmed)
{
    start();
    const auto asking = stranger();
    confirm();
    EXPECT_TRUE(toConfirm()->isConfirmedHere);
    EXPECT_THAT(computers.all(), SizeIs(1)) << "the computer's user has not confirmed yet";
    asking->link->confirm();
    ASSERT_TRUE(waitUntil([&] { return asking->seen->opened && isUsed(); }));
    EXPECT_FALSE(toConfirm());
    EXPECT_THAT(shownKeys(), ElementsAre(knownKey, strangeKey));
    EXPECT_EQ(computers.all().back().name, "127.0.0.1");
    EXPECT_EQ(computers.all().back().since.secondsSince1970, 1767323045);
}

TEST_F(DevicePairing, AComputerThatWasConfirmedIsNotAskedAboutAgain)
{
    start();
    auto asking = stranger();
    confirm();
    asking->link->confirm();
    ASSERT_TRUE(waitUntil([&] { return asking->seen->opened && isUsed(); }));
    asking.reset();
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));
    const auto again = computer(keyOfStranger(), true);
    ASSERT_TRUE(waitUntil([&] { return isUsed(); }));
    EXPECT_FALSE(again->isAsked());
}

TEST_F(DevicePairing, SendsAComputerAwayThatItsUserRefuses)
{
    start();
    const auto asking = stranger();
    server->refuseComputer();
    ASSERT_TRUE(isSentAway(*asking));
    EXPECT_EQ(asking->goodbye(), LinkGoodbyeCode::notConfirmed);
    EXPECT_THAT(shownKeys(), ElementsAre(knownKey));
    EXPECT_FALSE(server->acceptDigits(asking->seen->digits)) << "there is nobody to confirm";
}

TEST_F(DevicePairing, AcceptsTheDigitsThatItShowsAndNoOthers)
{
    start();
    EXPECT_FALSE(server->acceptDigits(""));
    const auto asking = stranger();
    std::string other = toConfirm()->digits;
    other[5] = other[5] == '0' ? '1' : '0';
    EXPECT_FALSE(server->acceptDigits(other));
    EXPECT_FALSE(server->acceptDigits(""));
    EXPECT_FALSE(toConfirm()->isConfirmedHere);
    EXPECT_TRUE(server->acceptDigits(toConfirm()->digits));
    EXPECT_TRUE(toConfirm()->isConfirmedHere);
}

TEST_F(DevicePairing, ForgetsTheQuestionWhenTheComputerIsGone)
{
    start();
    auto asking = stranger();
    confirm();
    asking.reset();
    ASSERT_TRUE(waitUntil([&] { return !toConfirm(); }));
    EXPECT_THAT(computers.all(), SizeIs(1));
}

TEST_F(DevicePairing, ForgetsTheQuestionWhenNobodyAnswersInTime)
{
    times.comparing = std::chrono::milliseconds(200);
    start();
    const auto asking = computer(keyOfStranger());
    ASSERT_TRUE(waitUntil([&] { return asking->isAsked(); }));
    ASSERT_TRUE(isSentAway(*asking));
    EXPECT_THAT(computers.all(), SizeIs(1));
}

TEST_F(DevicePairing, AKnownComputerDoesNotWaitForAStranger)
{
    start();
    const auto asking = stranger();
    const auto known = computer(keyOfHost(), true);
    ASSERT_TRUE(waitUntil([&] { return known->seen->opened && isUsed(); }));
    ASSERT_TRUE(isSentAway(*asking));
    EXPECT_EQ(asking->goodbye(), LinkGoodbyeCode::inUse);
    EXPECT_FALSE(server->acceptDigits(asking->seen->digits));
    EXPECT_THAT(shownKeys(), ElementsAre(knownKey));
}

TEST_F(DevicePairing, AKnownComputerThatForgotTheDeviceTakesAStrangersPlaceToo)
{
    start();
    const auto asking = stranger();
    const auto known = computer(keyOfHost(), false);
    ASSERT_TRUE(waitUntil([&] { return known->isAsked() && toConfirm(); }));
    EXPECT_EQ(toConfirm()->digits, known->seen->digits);
    confirm();
    known->link->confirm();
    ASSERT_TRUE(waitUntil([&] { return known->seen->opened && isUsed(); }));
    EXPECT_THAT(shownKeys(), ElementsAre(knownKey));
}

TEST_F(DevicePairing, ASecondStrangerIsToldThatOneIsAskedAbout)
{
    start();
    const auto first = stranger();
    const OwnKey other = makeOwnKey();
    const auto second = computer(other);
    ASSERT_TRUE(waitUntil([&] { return second->seen->ended(); }));
    EXPECT_EQ(second->goodbye(), LinkGoodbyeCode::inUse);
    EXPECT_FALSE(second->isAsked());
    EXPECT_EQ(toConfirm()->digits, first->seen->digits);
}

TEST_F(DevicePairing, ThreeFailuresEndPairingForTenMinutesButNotForThoseWhoAreKnown)
{
    start();
    for (int count = 0; count < 3; ++count)
        failToPair();
    auto refused = computer(keyOfStranger());
    ASSERT_TRUE(waitUntil([&] { return refused->seen->ended(); }));
    EXPECT_EQ(refused->goodbye(), LinkGoodbyeCode::tooManyTries);
    EXPECT_FALSE(refused->isAsked());

    auto known = computer(keyOfHost(), true);
    ASSERT_TRUE(waitUntil([&] { return known->seen->opened && isUsed(); }));
    known.reset();
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));

    fake.runLoop.advance(PairingGuard::memory);
    stranger();
}

// Each was shown digits, so each had a guess.
TEST_F(DevicePairing, AStrangerWhomAKnownComputerSentAwayHadItsGuess)
{
    start();
    failToPair();
    failToPair();
    const auto asking = stranger();
    auto known = computer(keyOfHost(), true);
    ASSERT_TRUE(waitUntil([&] { return isUsed() && asking->seen->ended(); }));
    known.reset();
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));
    const auto refused = computer(keyOfStranger());
    ASSERT_TRUE(waitUntil([&] { return refused->seen->ended(); }));
    EXPECT_EQ(refused->goodbye(), LinkGoodbyeCode::tooManyTries);
}

TEST_F(DevicePairing, ForgettingAComputerSendsItAway)
{
    start();
    auto known = computer(keyOfHost(), true);
    ASSERT_TRUE(waitUntil([&] { return known->seen->opened && isUsed(); }));
    server->forgetComputer(strangeKey);
    EXPECT_TRUE(isUsed());
    server->forgetComputer(knownKey);
    ASSERT_TRUE(waitUntil([&] { return !isUsed() && known->seen->ended(); }));
    EXPECT_EQ(known->goodbye(), LinkGoodbyeCode::byUser);
    EXPECT_THAT(shownKeys(), IsEmpty());
    known = computer(keyOfHost(), true);
    EXPECT_TRUE(waitUntil([&] { return known->isAsked(); }));
}

TEST_F(DevicePairing, ForgettingAComputerThatIsStillIntroducingItselfSendsItAwayToo)
{
    start();
    QSslSocket socket;
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), server->status().port);
    ASSERT_TRUE(waitUntil([&] { return socket.state() == QAbstractSocket::ConnectedState; }));
    const Bytes greeting = encodeGreeting(ownGreeting());
    writeBytes(socket, greeting);
    Bytes agreed = readBytes(socket, 1);
    agreed.insert(agreed.begin(), greeting.begin(), greeting.end());
    ASSERT_TRUE(secure(socket, LinkSide::host, agreed, keyOfHost()));
    ASSERT_TRUE(waitUntil([&] { return socket.bytesAvailable() > 0; }));
    server->forgetComputer(knownKey);
    writeBytes(socket, encodeFrame(LinkStanding{true}));
    EXPECT_TRUE(
        waitUntil([&] { return isUsed() || socket.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_FALSE(isUsed());
}

TEST_F(DevicePairing, AComputerThatCannotBeStoredIsLetInAllTheSame)
{
    start();
    const auto asking = stranger();
    fake.preferences.setWritesFail(true);
    confirm();
    asking->link->confirm();
    ASSERT_TRUE(waitUntil([&] { return isUsed(); }));
    EXPECT_TRUE(fake.log.contains("cannot be remembered"));
}

TEST_F(DevicePairing, NotesWhereAndWhenAKnownComputerWasSeenLast)
{
    start();
    const auto known = computer(keyOfHost(), true);
    ASSERT_TRUE(waitUntil([&] { return isUsed(); }));
    const auto shown = server->status().computers;
    ASSERT_THAT(shown, SizeIs(1));
    EXPECT_EQ(shown.front().name, "127.0.0.1");
    EXPECT_EQ(shown.front().since.secondsSince1970, 1);
    EXPECT_EQ(shown.front().lastUsed.secondsSince1970, 1767323045);
}

TEST_F(DevicePairing, PairsOneComputerWithoutAPressWhenToldSo)
{
    settings.pairsOnce = true;
    start();
    auto asking = computer(keyOfStranger());
    ASSERT_TRUE(waitUntil([&] { return asking->isAsked(); }));
    asking->link->confirm();
    ASSERT_TRUE(waitUntil([&] { return isUsed(); }));
    asking.reset();
    ASSERT_TRUE(waitUntil([&] { return !isUsed(); }));

    const OwnKey other = makeOwnKey();
    const auto second = computer(other);
    ASSERT_TRUE(waitUntil([&] { return second->isAsked() && toConfirm(); }));
    EXPECT_FALSE(toConfirm()->isConfirmedHere) << "it was for one only";
}

TEST_F(DevicePairing, PairsNobodyWithoutAPressAfterTenMinutes)
{
    settings.pairsOnce = true;
    start();
    fake.runLoop.advance(PairingGuard::memory);
    stranger();
    EXPECT_FALSE(toConfirm()->isConfirmedHere);
}

TEST_F(DevicePairing, WithoutAUsableKeyItRefusesEverybodyUntilThatIsMended)
{
    folder.write("device.pem", "broken");
    std::filesystem::permissions(settings.keyPath, std::filesystem::perms::owner_read);
    start();
    EXPECT_THAT(server->status().keyTrouble, HasSubstr(settings.keyPath));
    auto known = computer(keyOfHost(), true);
    ASSERT_TRUE(waitUntil([&] { return known->seen->ended(); }));
    EXPECT_EQ(known->seen->reason(), LinkEndReason::refused);
    EXPECT_THAT(known->seen->ends.front().text, HasSubstr("key"));

    std::filesystem::remove(settings.keyPath);
    known = computer(keyOfHost(), true);
    ASSERT_TRUE(waitUntil([&] { return isUsed(); }));
    EXPECT_EQ(server->status().keyTrouble, "");
}

TEST_F(DevicePairing, StopsWhileItsUserIsAsked)
{
    start();
    const auto asking = stranger();
    bool stopped = false;
    server->stop([&] { stopped = true; });
    ASSERT_TRUE(waitUntil([&] { return stopped && asking->seen->ended(); }));
    EXPECT_EQ(asking->goodbye(), LinkGoodbyeCode::quitting);
    EXPECT_THAT(computers.all(), SizeIs(1));
}

} // namespace
