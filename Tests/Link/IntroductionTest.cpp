#include "Link/Introduction.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Step = Introduction::Step;

namespace
{

LinkDigest filled(std::uint8_t byte)
{
    LinkDigest digest{};
    digest.fill(byte);
    return digest;
}

/// One side, and what it said last.
struct IntroducedSide {
    Introduction introduction;
    std::vector<LinkFrame> said = {};

    Step take(const LinkFrame& frame)
    {
        said.clear();
        return introduction.take(frame, said);
    }
    void beginPairing()
    {
        said.clear();
        introduction.beginPairing(said);
    }
    Step confirm()
    {
        said.clear();
        return introduction.confirm(said);
    }
    LinkFrame lastSaid() const { return said.at(0); }
};

PairingFacts factsOf(std::uint8_t hostKey = 1, std::uint8_t deviceKey = 2,
                     const Bytes& agreement = {3})
{
    return {.hostKey = filled(hostKey), .deviceKey = filled(deviceKey), .agreement = agreement};
}

class IntroductionTest : public testing::Test
{
protected:
    void knows(bool host, bool device)
    {
        atHost = {{LinkSide::host, host, hostFacts}};
        atDevice = {{LinkSide::device, device, deviceFacts}};
    }
    void bothStandAsStrangers()
    {
        knows(false, false);
        ASSERT_EQ(atHost.take(atDevice.introduction.standing()), Step::strange);
        ASSERT_EQ(atDevice.take(atHost.introduction.standing()), Step::strange);
    }
    /// Until the device is to reveal its nonce.
    void exchangeUntilTheHostsNonce()
    {
        bothStandAsStrangers();
        atHost.beginPairing();
        atDevice.beginPairing();
        ASSERT_EQ(atHost.take(atDevice.lastSaid()), Step::goesOn);
    }
    void exchangeNonces()
    {
        exchangeUntilTheHostsNonce();
        ASSERT_EQ(atDevice.take(atHost.lastSaid()), Step::compare);
        ASSERT_EQ(atHost.take(atDevice.lastSaid()), Step::compare);
    }

    PairingFacts hostFacts = factsOf();
    PairingFacts deviceFacts = factsOf();
    IntroducedSide atHost{{LinkSide::host, false, hostFacts}};
    IntroducedSide atDevice{{LinkSide::device, false, deviceFacts}};
};

TEST_F(IntroductionTest, IsDoneAtOnceWhenEachKnowsTheOther)
{
    knows(true, true);
    EXPECT_EQ(atHost.take(atDevice.introduction.standing()), Step::done);
    EXPECT_EQ(atDevice.take(atHost.introduction.standing()), Step::done);
    EXPECT_THAT(atHost.said, IsEmpty());
    EXPECT_EQ(atHost.introduction.digits(), "");
}

TEST_F(IntroductionTest, EitherSideThatDoesNotKnowTheOtherMakesBothCompare)
{
    for (const bool isKnownToHost : {true, false}) {
        knows(isKnownToHost, !isKnownToHost);
        EXPECT_EQ(atHost.take(atDevice.introduction.standing()), Step::strange);
        EXPECT_EQ(atDevice.take(atHost.introduction.standing()), Step::strange);
    }
}

TEST_F(IntroductionTest, BothShowTheSameSixDigits)
{
    exchangeNonces();
    EXPECT_THAT(atHost.introduction.digits(), SizeIs(6));
    EXPECT_EQ(atHost.introduction.digits(), atDevice.introduction.digits());
}

TEST_F(IntroductionTest, EachPairingHasDigitsOfItsOwn)
{
    exchangeNonces();
    const std::string first = atHost.introduction.digits();
    exchangeNonces();
    const std::string second = atHost.introduction.digits();
    exchangeNonces();
    const std::string third = atHost.introduction.digits();
    EXPECT_FALSE(first == second && second == third);
}

// Two of the three, because one time in a million the digits are the same by chance.
TEST_F(IntroductionTest, SidesThatSawDifferentKeysOrWordsShowDifferentDigits)
{
    for (const auto& seen : {factsOf(9), factsOf(1, 9), factsOf(1, 2, {3, 0})}) {
        deviceFacts = seen;
        int equal = 0;
        for (int round = 0; round < 3; ++round) {
            exchangeNonces();
            equal += atHost.introduction.digits() == atDevice.introduction.digits() ? 1 : 0;
        }
        EXPECT_LT(equal, 2);
    }
}

TEST_F(IntroductionTest, TheDeviceShowsItsNonceOnlyAfterTheHosts)
{
    bothStandAsStrangers();
    atDevice.beginPairing();
    ASSERT_THAT(atDevice.said, SizeIs(1));
    const auto commitment = std::get<LinkCommitment>(atDevice.lastSaid());
    ASSERT_EQ(atDevice.take(LinkNonce{filled(7)}), Step::compare);
    EXPECT_EQ(commitmentTo(std::get<LinkNonce>(atDevice.lastSaid()).value), commitment.value);
}

TEST_F(IntroductionTest, TheHostSaysNothingBeforeTheDeviceIsBound)
{
    bothStandAsStrangers();
    atHost.beginPairing();
    EXPECT_THAT(atHost.said, IsEmpty());
}

TEST_F(IntroductionTest, ANonceThatDoesNotOpenTheCommitmentShowsNoDigits)
{
    exchangeUntilTheHostsNonce();
    EXPECT_EQ(atHost.take(LinkNonce{filled(7)}), Step::broken);
    EXPECT_EQ(atHost.introduction.digits(), "");
}

TEST_F(IntroductionTest, IsDoneOnceBothUsersConfirmed)
{
    exchangeNonces();
    EXPECT_EQ(atHost.confirm(), Step::goesOn);
    EXPECT_EQ(atDevice.take(atHost.lastSaid()), Step::goesOn);
    EXPECT_EQ(atDevice.confirm(), Step::done);
    EXPECT_EQ(atHost.take(atDevice.lastSaid()), Step::done);
}

TEST_F(IntroductionTest, AUserConfirmsNothingBeforeThereAreDigits)
{
    EXPECT_EQ(atHost.confirm(), Step::goesOn);
    EXPECT_THAT(atHost.said, IsEmpty());
    exchangeUntilTheHostsNonce();
    EXPECT_EQ(atHost.confirm(), Step::goesOn);
    EXPECT_THAT(atHost.said, IsEmpty());
}

TEST_F(IntroductionTest, AUserConfirmsOnce)
{
    exchangeNonces();
    atHost.confirm();
    EXPECT_THAT(atHost.said, ElementsAre(LinkFrame(LinkConfirmed{})));
    EXPECT_EQ(atHost.confirm(), Step::goesOn);
    EXPECT_THAT(atHost.said, IsEmpty());
}

TEST_F(IntroductionTest, ThePeerConfirmsOnceAndNotForOurUser)
{
    exchangeNonces();
    EXPECT_EQ(atHost.take(LinkConfirmed{}), Step::goesOn);
    EXPECT_EQ(atHost.take(LinkConfirmed{}), Step::broken);
}

TEST_F(IntroductionTest, StandingIsSaidOnce)
{
    bothStandAsStrangers();
    EXPECT_EQ(atHost.take(LinkStanding{true}), Step::broken);
    exchangeNonces();
    EXPECT_EQ(atDevice.take(LinkStanding{true}), Step::broken);
}

TEST_F(IntroductionTest, EverythingBeforeTheOthersStandingBreaksTheRules)
{
    const std::vector<LinkFrame> frames{LinkCommitment{}, LinkNonce{}, LinkConfirmed{}};
    for (const LinkFrame& frame : frames) {
        knows(true, true);
        EXPECT_EQ(atHost.take(frame), Step::broken);
        EXPECT_EQ(atDevice.take(frame), Step::broken);
    }
}

TEST_F(IntroductionTest, NobodyPairsUntilTheUserMayBeAsked)
{
    bothStandAsStrangers();
    EXPECT_EQ(atHost.take(LinkCommitment{}), Step::broken);
    EXPECT_EQ(atDevice.take(LinkNonce{}), Step::broken);
}

TEST_F(IntroductionTest, FramesOutOfOrderBreakTheRules)
{
    bothStandAsStrangers();
    atHost.beginPairing();
    EXPECT_EQ(atHost.take(LinkNonce{}), Step::broken) << "before the commitment";
    EXPECT_EQ(atHost.take(LinkConfirmed{}), Step::broken) << "before there are digits";
    atDevice.beginPairing();
    EXPECT_EQ(atDevice.take(LinkConfirmed{}), Step::broken) << "before there are digits";
}

TEST_F(IntroductionTest, ADeviceTakesNoCommitment)
{
    bothStandAsStrangers();
    atDevice.beginPairing();
    EXPECT_EQ(atDevice.take(LinkCommitment{}), Step::broken);
}

TEST_F(IntroductionTest, CommitmentsAndNoncesAreToldOnce)
{
    exchangeNonces();
    EXPECT_EQ(atHost.take(LinkCommitment{}), Step::broken);
    EXPECT_EQ(atHost.take(LinkNonce{}), Step::broken);
    const std::string digits = atDevice.introduction.digits();
    EXPECT_EQ(atDevice.take(LinkNonce{filled(7)}), Step::broken);
    EXPECT_EQ(atDevice.introduction.digits(), digits);
}

TEST_F(IntroductionTest, FramesThatBelongElsewhereBreakTheRules)
{
    EXPECT_EQ(atHost.take(LinkKeepAlive{}), Step::broken);
    EXPECT_EQ(atDevice.take(LinkOptions{}), Step::broken);
}

} // namespace
