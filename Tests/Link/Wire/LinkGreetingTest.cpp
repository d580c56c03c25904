#include "Link/Wire/LinkGreeting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;

namespace
{

LinkAgreement agreed(const LinkGreeting& host, const LinkGreeting& device)
{
    const LinkAnswer answer = agreementBetween(host, device);
    EXPECT_TRUE(std::holds_alternative<LinkAgreement>(answer));
    return std::get<LinkAgreement>(answer);
}

LinkRefusalCode refusal(const LinkGreeting& host, const LinkGreeting& device)
{
    const LinkAnswer answer = agreementBetween(host, device);
    EXPECT_TRUE(std::holds_alternative<LinkRefusal>(answer));
    return std::get<LinkRefusal>(answer).code;
}

} // namespace

TEST(LinkGreeting, AgreesOnTheHighestCommonVersion)
{
    EXPECT_EQ(agreed({1, 3, {}}, {2, 5, {}}).version, 3);
    EXPECT_EQ(agreed({2, 5, {}}, {1, 2, {}}).version, 2);
    EXPECT_EQ(agreed(ownGreeting(), ownGreeting()).version, 1);
}

TEST(LinkGreeting, RefusesWithoutACommonVersion)
{
    EXPECT_EQ(refusal({1, 2, {}}, {3, 4, {}}), LinkRefusalCode::noAgreement);
    EXPECT_EQ(refusal({3, 4, {}}, {1, 2, {}}), LinkRefusalCode::noAgreement);
}

TEST(LinkGreeting, AgreesOnTheFeaturesThatBothOffer)
{
    const LinkGreeting host{1, 1, {{"audio", false}, {"encryption", true}, {"screen", false}}};
    const LinkGreeting device{1, 1, {{"encryption", false}, {"screen", true}, {"touch", false}}};
    EXPECT_THAT(agreed(host, device).features, ElementsAre("encryption", "screen"));
}

TEST(LinkGreeting, RefusesWhenARequiredFeatureIsMissingOnEitherSide)
{
    const LinkGreeting requiring{1, 1, {{"encryption", true}}};
    EXPECT_EQ(refusal(requiring, {1, 1, {}}), LinkRefusalCode::noAgreement);
    EXPECT_EQ(refusal({1, 1, {}}, requiring), LinkRefusalCode::noAgreement);
}

TEST(LinkGreeting, DoesNotAcceptAnAnswerFromWhichARequiredFeatureWasStripped)
{
    const LinkGreeting host{1, 2, {{"encryption", true}, {"screen", false}}};
    EXPECT_TRUE(agreementFits({2, {"encryption"}}, host));
    EXPECT_FALSE(agreementFits({2, {"screen"}}, host));
    EXPECT_FALSE(agreementFits({2, {}}, host));
}

TEST(LinkGreeting, DoesNotAcceptAnAnswerThatGoesBeyondTheOffer)
{
    const LinkGreeting host{2, 3, {{"screen", false}}};
    EXPECT_TRUE(agreementFits({3, {}}, host));
    EXPECT_FALSE(agreementFits({1, {}}, host));
    EXPECT_FALSE(agreementFits({4, {}}, host));
    EXPECT_FALSE(agreementFits({3, {"audio"}}, host));
}
