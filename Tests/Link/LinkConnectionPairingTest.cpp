#include "Link/Keys/PairingProof.h"
#include "Link/LinkConnection.h"

#include "Tests/Link/LinkPeers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::SizeIs;

namespace
{

/// Both sides are ours, and neither knows the other. Users are slow unless a test says otherwise.
class LinkPairing : public testing::Test
{
protected:
    LinkPairing()
    {
        timesOfHost.comparing = timesOfDevice.comparing = std::chrono::seconds(60);
        atHost->trust = atDevice->trust = false;
    }
    void begin()
    {
        SocketPair sockets;
        host = LinkConnection::make(LinkSide::host, std::move(sockets.host), atHost, keyOfHost(),
                                    ownGreeting(), timesOfHost);
        device = LinkConnection::make(LinkSide::device, std::move(sockets.device), atDevice,
                                      keyOfDevice(), ownGreeting(), timesOfDevice);
    }
    void compare()
    {
        begin();
        ASSERT_TRUE(
            waitUntil([&] { return !atHost->digits.empty() && !atDevice->digits.empty(); }));
    }
    bool bothOpen()
    {
        return waitUntil([&] { return atHost->opened && atDevice->opened; });
    }
    bool bothEnd()
    {
        return waitUntil([&] { return atHost->ended() && atDevice->ended(); });
    }
    void expectNobodyOpened() const { EXPECT_FALSE(atHost->opened || atDevice->opened); }

    LinkTimes timesOfHost{};
    LinkTimes timesOfDevice{};
    std::shared_ptr<LinkRecorder> atHost = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkRecorder> atDevice = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> host;
    std::shared_ptr<LinkConnection> device;
};

/// One side is ours, the other a scripted peer that has proved its key, and that we do not know.
class LinkPairingWithStranger : public testing::Test
{
protected:
    LinkPairingWithStranger()
    {
        seen->trust = false;
        times.comparing = std::chrono::seconds(60);
        times.farewell = std::chrono::milliseconds(100);
    }
    void begin(LinkSide ours)
    {
        const bool isHost = ours == LinkSide::host;
        link = LinkConnection::make(ours, std::move(isHost ? sockets.host : sockets.device), seen,
                                    keyOf(ours), ownGreeting(), times);
        stranger = isHost ? sockets.device.get() : sockets.host.get();
        ASSERT_TRUE(introduce(*stranger, isHost ? LinkSide::device : LinkSide::host,
                              {1, {kLinkEncryptionFeature, kLinkScreenFeature}}));
        ASSERT_TRUE(waitUntil([&] { return seen->proved; }));
    }
    /// Our device, until it shows digits.
    void beginDeviceAndCompare()
    {
        begin(LinkSide::device);
        say(LinkNonce{});
        ASSERT_TRUE(waitUntil([&] { return !seen->digits.empty(); }));
    }
    void say(const LinkFrame& frame) { writeBytes(*stranger, encodeFrame(frame)); }
    /// What the stranger heard so far.
    std::vector<LinkFrame> heard()
    {
        const QByteArray chunk = stranger->readAll();
        bytes.insert(bytes.end(), chunk.begin(), chunk.end());
        std::vector<LinkFrame> frames;
        for (std::size_t done = 0;;) {
            auto frame = decodeFrame(ByteView(bytes).subspan(done));
            if (frame.status != DecodeStatus::complete)
                return frames;
            done += frame.consumed;
            frames.push_back(std::move(frame.value));
        }
    }
    bool hears(const std::function<bool(const LinkFrame&)>& isIt)
    {
        return waitUntil([&] {
            const auto frames = heard();
            return std::any_of(frames.begin(), frames.end(), isIt);
        });
    }
    void expectEnd(LinkEndReason reason)
    {
        EXPECT_TRUE(waitUntil([&] { return seen->ended(); }));
        EXPECT_EQ(seen->reason(), reason);
        EXPECT_FALSE(seen->opened);
        EXPECT_THAT(seen->frames, SizeIs(0));
    }

    LinkTimes times{};
    SocketPair sockets;
    QSslSocket* stranger = nullptr;
    Bytes bytes;
    std::shared_ptr<LinkRecorder> seen = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> link;
};

TEST_F(LinkPairing, OpensOnceBothUsersConfirmedTheSameDigits)
{
    compare();
    EXPECT_THAT(atHost->digits, SizeIs(6));
    EXPECT_EQ(atHost->digits, atDevice->digits);
    host->confirm();
    runLoopFor(std::chrono::milliseconds(100));
    expectNobodyOpened();
    EXPECT_FALSE(host->wasPaired());
    device->confirm();
    EXPECT_FALSE(atDevice->opened) << "never inside the call";
    ASSERT_TRUE(bothOpen());
    EXPECT_TRUE(host->wasPaired() && device->wasPaired());
}

TEST_F(LinkPairing, EitherSideThatDoesNotKnowTheOtherMakesBothCompare)
{
    for (const bool isKnownToHost : {true, false}) {
        atHost->trust = isKnownToHost;
        atDevice->trust = !isKnownToHost;
        atHost->digits.clear();
        atDevice->digits.clear();
        compare();
        EXPECT_EQ(atHost->digits, atDevice->digits);
        expectNobodyOpened();
    }
}

TEST_F(LinkPairing, AsksNobodyWhenEachKnowsTheOther)
{
    atHost->trust = atDevice->trust = true;
    begin();
    ASSERT_TRUE(bothOpen());
    EXPECT_EQ(atHost->digits + atDevice->digits, "");
    EXPECT_FALSE(host->wasPaired() || device->wasPaired());
}

TEST_F(LinkPairing, TellsWhoseKeyWasProvedAndHowItIsEncrypted)
{
    EXPECT_TRUE(keyOfHost().fingerprint != keyOfDevice().fingerprint);
    begin();
    EXPECT_EQ(host->peerKey(), "");
    ASSERT_TRUE(waitUntil([&] { return atHost->proved && atDevice->proved; }));
    EXPECT_EQ(host->peerKey(), hexadecimal(keyOfDevice().fingerprint));
    EXPECT_EQ(device->peerKey(), hexadecimal(keyOfHost().fingerprint));
    EXPECT_THAT(host->cipher(), testing::StartsWith("TLS_"));
    EXPECT_EQ(host->cipher(), device->cipher());
}

TEST_F(LinkPairing, WhateverIsSentBeforeBothConfirmedStaysHere)
{
    compare();
    host->send(LinkOptions{});
    host->confirm();
    device->confirm();
    ASSERT_TRUE(bothOpen());
    EXPECT_THAT(atDevice->frames, SizeIs(0));
}

TEST_F(LinkPairing, AUserWhoSaysNoEndsItForBoth)
{
    compare();
    host->confirm();
    device->close({LinkGoodbyeCode::notConfirmed, "No"});
    ASSERT_TRUE(bothEnd());
    expectNobodyOpened();
    EXPECT_EQ(atHost->reason(), LinkEndReason::goodbye);
    EXPECT_EQ(atHost->ends.front().goodbye, LinkGoodbyeCode::notConfirmed);
}

TEST_F(LinkPairing, EveryGoodbyeReachesTheOtherSide)
{
    for (const auto code : {LinkGoodbyeCode::byUser, LinkGoodbyeCode::quitting,
                            LinkGoodbyeCode::inUse, LinkGoodbyeCode::tooManyTries}) {
        atHost->ends.clear();
        atDevice->ends.clear();
        atDevice->trust = LinkGoodbye{code, "because"};
        begin();
        ASSERT_TRUE(bothEnd());
        EXPECT_EQ(atHost->ends.front().goodbye, code);
        EXPECT_EQ(atHost->ends.front().text, "because");
        EXPECT_FALSE(atDevice->ends.front().goodbye) << "nobody said it to the device";
    }
    expectNobodyOpened();
}

TEST_F(LinkPairing, NobodyIsAskedWhereTheUserMayNotBe)
{
    atDevice->mayNotAsk = LinkGoodbye{LinkGoodbyeCode::tooManyTries, ""};
    begin();
    ASSERT_TRUE(bothEnd());
    EXPECT_EQ(atHost->ends.front().goodbye, LinkGoodbyeCode::tooManyTries);
    EXPECT_EQ(atHost->digits + atDevice->digits, "");
    expectNobodyOpened();
}

TEST_F(LinkPairing, EndsWhenNobodyConfirmsInTimeWhichIsNoRefusal)
{
    for (LinkTimes* const impatient : {&timesOfHost, &timesOfDevice}) {
        timesOfHost.comparing = timesOfDevice.comparing = std::chrono::seconds(60);
        impatient->comparing = std::chrono::milliseconds(100);
        atHost->ends.clear();
        atDevice->ends.clear();
        compare();
        ASSERT_TRUE(bothEnd());
        expectNobodyOpened();
        EXPECT_NE(atHost->ends.front().goodbye, LinkGoodbyeCode::notConfirmed);
        EXPECT_NE(atDevice->ends.front().goodbye, LinkGoodbyeCode::notConfirmed);
    }
}

TEST_F(LinkPairing, StaysWhileTheUsersCompareForLongerThanAnySilence)
{
    timesOfHost.keepAlive = std::chrono::milliseconds(50);
    timesOfHost.silence = std::chrono::milliseconds(600);
    timesOfHost.greeting = std::chrono::milliseconds(1000);
    timesOfDevice = timesOfHost;
    compare();
    runLoopFor(2 * timesOfHost.greeting);
    host->confirm();
    device->confirm();
    EXPECT_TRUE(bothOpen());
}

TEST_F(LinkPairing, MayBeDroppedFromInsideEachReport)
{
    const auto drop = [this] { device.reset(); };
    const std::vector<std::function<void()>> arrangements{
        [&] { atDevice->onProve = drop; },
        [&] { atDevice->onMayAsk = drop; },
        [&] { atDevice->onAsk = [drop](LinkConnection&) { drop(); }; },
    };
    for (const auto& arrange : arrangements) {
        atDevice = std::make_shared<LinkRecorder>();
        atHost = std::make_shared<LinkRecorder>();
        atHost->trust = atDevice->trust = false;
        arrange();
        begin();
        ASSERT_TRUE(waitUntil([&] { return !device && atHost->ended(); }));
        EXPECT_THAT(atDevice->ends, SizeIs(0)) << "nothing comes after the drop";
        EXPECT_EQ(atHost->reason(), LinkEndReason::lost);
        expectNobodyOpened();
    }
}

TEST_F(LinkPairingWithStranger, SaysNothingMoreOnceItIsClosedInsideAReport)
{
    const auto close = [this] { link->close({LinkGoodbyeCode::byUser, "bye"}); };
    for (const bool isProving : {true, false}) {
        sockets = SocketPair();
        bytes.clear();
        seen = std::make_shared<LinkRecorder>();
        seen->trust = false;
        (isProving ? seen->onProve : seen->onMayAsk) = close;
        begin(LinkSide::device);
        ASSERT_TRUE(waitUntil([&] { return seen->ended(); }));
        waitUntil([&] { return stranger->state() == QAbstractSocket::UnconnectedState; });
        const auto frames = heard();
        // Its standing is taken by the introduction.
        EXPECT_THAT(frames, SizeIs(isProving ? 0 : 1));
    }
}

TEST_F(LinkPairingWithStranger, NoticesOneThatFallsSilentWhileUsersCompare)
{
    times.silence = std::chrono::milliseconds(300);
    beginDeviceAndCompare();
    expectEnd(LinkEndReason::silent);
}

TEST_F(LinkPairingWithStranger, SendsSignsOfLifeWhileUsersCompare)
{
    times.keepAlive = std::chrono::milliseconds(50);
    beginDeviceAndCompare();
    EXPECT_TRUE(hears([](const auto& said) { return said == LinkFrame(LinkKeepAlive{}); }));
    EXPECT_FALSE(seen->ended());
}

TEST_F(LinkPairingWithStranger, WaitsNotForLongForOneThatDoesNotGoOn)
{
    times.greeting = std::chrono::milliseconds(600);
    begin(LinkSide::device);
    ASSERT_TRUE(
        hears([](const auto& said) { return std::holds_alternative<LinkCommitment>(said); }));
    for (int round = 0; round < 20 && !seen->ended(); ++round) {
        say(LinkKeepAlive{});
        runLoopFor(std::chrono::milliseconds(60));
    }
    expectEnd(LinkEndReason::notAnswered);
}

TEST_F(LinkPairingWithStranger, OneThatLeavesOnceItCouldKnowTheDigitsHadItsGuess)
{
    for (const bool isBound : {false, true}) {
        sockets = SocketPair();
        seen = std::make_shared<LinkRecorder>();
        seen->trust = false;
        begin(LinkSide::host);
        if (isBound) {
            say(LinkCommitment{});
            ASSERT_TRUE(
                hears([](const auto& said) { return std::holds_alternative<LinkNonce>(said); }));
        }
        stranger->abort();
        ASSERT_TRUE(waitUntil([&] { return seen->ended(); }));
        EXPECT_EQ(seen->digits, "");
        EXPECT_EQ(seen->ends.front().isGuessSpent, isBound);
    }
}

TEST_F(LinkPairingWithStranger, OneThatConfirmsAloneIsNotLetIn)
{
    beginDeviceAndCompare();
    say(LinkConfirmed{});
    say(LinkOptions{});
    expectEnd(LinkEndReason::brokenRule);
}

TEST_F(LinkPairingWithStranger, NothingOfAPictureTravelsBeforeBothConfirmed)
{
    const std::vector<LinkFrame> frames{LinkOptions{}, LinkPictureSize{8, 8}, LinkFrameEnd{1},
                                        LinkScreenRectangle{{0, 0, 1, 1}, 0, {1}}};
    for (const LinkFrame& frame : frames) {
        seen = std::make_shared<LinkRecorder>();
        seen->trust = false;
        sockets = SocketPair();
        beginDeviceAndCompare();
        say(frame);
        expectEnd(LinkEndReason::brokenRule);
    }
}

TEST_F(LinkPairingWithStranger, AHostTakesNothingOfAScreenBeforeBothConfirmed)
{
    for (const LinkFrame& frame : {LinkFrame(LinkDeviceScreen{}), LinkFrame(LinkShown{1, 1})}) {
        seen = std::make_shared<LinkRecorder>();
        seen->trust = false;
        sockets = SocketPair();
        begin(LinkSide::host);
        say(frame);
        expectEnd(LinkEndReason::brokenRule);
    }
}

TEST_F(LinkPairingWithStranger, KeepsLittleOfWhatOneSaysBeforeItIsKnown)
{
    begin(LinkSide::device);
    const Bytes large = encodeFrame(LinkScreenRectangle{{0, 0, 1, 1}, 0, Bytes(1 << 20, 7)});
    writeBytes(*stranger, {large.begin(), large.begin() + 24});
    expectEnd(LinkEndReason::brokenRule);
}

TEST_F(LinkPairingWithStranger, ANonceThatIsNotTheOneThatWasPromisedBreaksTheRules)
{
    begin(LinkSide::host);
    say(LinkCommitment{commitmentTo(LinkDigest{1})});
    ASSERT_TRUE(hears([](const auto& said) { return std::holds_alternative<LinkNonce>(said); }));
    say(LinkNonce{LinkDigest{2}});
    expectEnd(LinkEndReason::brokenRule);
    EXPECT_EQ(seen->digits, "");
}

TEST_F(LinkPairingWithStranger, TheIntroductionIsOverOnceItIsOpen)
{
    const std::vector<LinkFrame> frames{LinkStanding{true}, LinkNonce{}, LinkConfirmed{}};
    for (const LinkFrame& frame : frames) {
        seen = std::make_shared<LinkRecorder>();
        sockets = SocketPair();
        begin(LinkSide::device);
        ASSERT_TRUE(waitUntil([&] { return seen->opened; }));
        say(frame);
        ASSERT_TRUE(waitUntil([&] { return seen->ended(); }));
        EXPECT_EQ(seen->reason(), LinkEndReason::brokenRule);
    }
}

} // namespace
