// Attacks on the moment in which two people compare digits.

#include "Tests/Integration/LinkAttack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace farview
{
namespace
{

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Of somebody whom nobody knows.
const OwnKey& strangersKey()
{
    static const OwnKey key = makeOwnKey();
    return key;
}

/// One end of a connection that a stranger holds, with all that this program knows of pairing.
struct Stranger {
    std::shared_ptr<LinkRecorder> heard = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> link;

    Stranger() { heard->trust = false; }
    void begin(LinkSide side, std::unique_ptr<QSslSocket> socket)
    {
        link = LinkConnection::make(side, std::move(socket), heard, strangersKey(), ownGreeting(),
                                    LinkTimes{});
    }
    void beFoundBy(LinkListener& listener)
    {
        EXPECT_TRUE(waitUntil([&] { return listener.hasPendingConnections(); }));
        begin(LinkSide::device, listener.next());
    }
    bool showsDigits() const
    {
        return waitUntil([this] { return !heard->digits.empty(); });
    }
    bool hasEnded() const
    {
        return waitUntil([this] { return heard->ended(); });
    }
};

TEST_F(PairingAttack, AManWithKeysOfHisOwnMakesTheDigitsDiffer)
{
    startDevice({"--port", "0"});
    startServer();
    ASSERT_TRUE(deviceSays("Announced"));
    LinkListener place;
    place.listen(QHostAddress::LocalHost, 6001);
    ask();
    Stranger asDevice;
    Stranger asHost;
    asDevice.beFoundBy(place);
    asHost.begin(LinkSide::host, connectedSocket(portIn("device.log")));
    ASSERT_TRUE(asDevice.showsDigits() && asHost.showsDigits()) << serverLog() << deviceLog();
    ASSERT_TRUE(reports(State::comparing));
    EXPECT_EQ(panel->pairing.digits, asDevice.heard->digits);
    EXPECT_TRUE(deviceSays(groupedDigits(asHost.heard->digits)));
    EXPECT_NE(asDevice.heard->digits, asHost.heard->digits);

    // He says yes to both; the user, who compared, says no.
    asDevice.link->confirm();
    asHost.link->confirm();
    answer(kRefuseDevice);
    EXPECT_TRUE(asDevice.hasEnded());
    asHost.link->close({});
    EXPECT_TRUE(asHost.hasEnded());
    EXPECT_FALSE(asDevice.heard->opened || asHost.heard->opened);
    EXPECT_THAT(known(PairedPeers::devices), IsEmpty());
    EXPECT_THAT(known(PairedPeers::computers), IsEmpty());
}

TEST_F(PairingAttack, AYesAtTheComputerAloneOpensNothing)
{
    startAroundMan();
    ask();
    ASSERT_TRUE(reports(State::comparing)) << serverLog() << deviceLog();
    answer(kConfirmDevice);
    ASSERT_TRUE(reports(State::confirmed));
    runLoopFor(milliseconds(500));
    EXPECT_EQ(panel->last(kServerConnectedToDevice), nullptr);
    man->cut();
    EXPECT_EQ(failureOf(), State::notCompared);
    EXPECT_THAT(deviceLog(), Not(HasSubstr("Connected")));
    EXPECT_THAT(known(PairedPeers::devices), IsEmpty());
    EXPECT_THAT(known(PairedPeers::computers), IsEmpty());
}

TEST_F(PairingAttack, AYesAtTheDeviceAloneOpensNothing)
{
    startAroundMan();
    ask();
    ASSERT_TRUE(reports(State::comparing)) << serverLog() << deviceLog();
    EXPECT_FALSE(acceptsAtDevice(panel->pairing.digits == "123456" ? "654321" : "123456"));
    ASSERT_TRUE(acceptsAtDevice(panel->pairing.digits)) << deviceLog() << text("accept.log");
    runLoopFor(milliseconds(500));
    EXPECT_EQ(panel->last(kServerConnectedToDevice), nullptr);
    answer(kRefuseDevice);
    EXPECT_TRUE(deviceSays("Turned away")) << deviceLog();
    EXPECT_THAT(known(PairedPeers::devices), IsEmpty());
    EXPECT_THAT(known(PairedPeers::computers), IsEmpty());
}

TEST_F(PairingAttack, WhoeverGuessesDigitsHasThreeTriesAtTheComputer)
{
    LinkListener place;
    place.listen(QHostAddress::LocalHost, 6001);
    startServer();
    for (int attempt = 0; attempt < 3; ++attempt) {
        ask();
        Stranger guesser;
        guesser.beFoundBy(place);
        ASSERT_TRUE(reports(State::comparing)) << serverLog();
        answer(kRefuseDevice);
        EXPECT_TRUE(guesser.hasEnded());
    }
    ask();
    Stranger guesser;
    guesser.beFoundBy(place);
    EXPECT_EQ(failureOf(), State::tooManyTries) << serverLog();
    EXPECT_TRUE(guesser.hasEnded());
    EXPECT_EQ(guesser.heard->digits, "");

    PairedPeers(*stored, PairedPeers::devices)
        .add({hexadecimal(strangersKey().fingerprint), {}, {}, {}});
    ask();
    Stranger knownNow;
    knownNow.heard->trust = true;
    knownNow.beFoundBy(place);
    EXPECT_TRUE(panel->hears(kServerConnectedToDevice)) << "whom the user knows gets in";
}

TEST_F(LinkAttack, AGuessCountsThoughAKnownComputerPutsAnEndToIt)
{
    startBoth();
    for (int attempt = 0; attempt < 3; ++attempt) {
        Stranger guesser;
        guesser.begin(LinkSide::host, connectedSocket(6001));
        ASSERT_TRUE(guesser.showsDigits()) << deviceLog();
        anotherHost = std::make_shared<LinkRecorder>();
        const auto known = occupyDevice(6001);
        EXPECT_TRUE(guesser.hasEnded());
        known->close({});
        ASSERT_TRUE(waitUntil([this] { return anotherHost->ended(); }));
    }
    Stranger guesser;
    guesser.begin(LinkSide::host, connectedSocket(6001));
    EXPECT_TRUE(guesser.hasEnded());
    EXPECT_EQ(guesser.heard->digits, "");
}

TEST_F(LinkAttack, AStormOfStrangersAsksTheDevicesUserThreeTimes)
{
    startBoth();
    constexpr int atOnce = 4;
    for (int round = 0; round < 200 / atOnce; ++round) {
        std::vector<Stranger> strangers(atOnce);
        for (Stranger& stranger : strangers) {
            stranger.heard->onAsk = [](LinkConnection& link) { link.close({}); };
            stranger.begin(LinkSide::host, connectedSocket(6001));
        }
        for (const Stranger& stranger : strangers)
            ASSERT_TRUE(stranger.hasEnded()) << round << deviceLog();
    }
    EXPECT_EQ(timesDeviceSaid("unless somebody is in between"), 3U) << deviceLog();
    EXPECT_THAT(deviceLog(), HasSubstr("Too many computers were refused"));
    EXPECT_TRUE(connects()) << "whom the user knows gets in" << serverLog() << deviceLog();
}

} // namespace
} // namespace farview
