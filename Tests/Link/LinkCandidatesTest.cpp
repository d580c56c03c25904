#include "Link/LinkCandidates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

std::vector<std::string> texts(const std::vector<Endpoint>& endpoints)
{
    std::vector<std::string> result;
    for (const LinkCandidate& candidate : linkCandidates(endpoints, {2, 5}))
        result.push_back(candidate.address.toString().toStdString() + " " +
                         std::to_string(candidate.port));
    return result;
}

} // namespace

TEST(LinkCandidates, KeepTheOrderOfTheEndpoints)
{
    EXPECT_THAT(texts({{"192.0.2.7", 6001, 3}, {"2001:db8::7", 7001, 0}}),
                ElementsAre("192.0.2.7 6001", "2001:db8::7 7001"));
}

TEST(LinkCandidates, NameEachAddressOnce)
{
    EXPECT_THAT(texts({{"192.0.2.7", 6001, 2}, {"192.0.2.7", 6001, 5}, {"192.0.2.7", 6002, 5}}),
                ElementsAre("192.0.2.7 6001", "192.0.2.7 6002"));
}

TEST(LinkCandidates, TryALinkLocalAddressOnTheInterfaceWhereItWasSeen)
{
    EXPECT_THAT(texts({{"fe80::1", 6001, 3}}), ElementsAre("fe80::1%3 6001"));
    EXPECT_THAT(texts({{"fe80::1%eth7", 6001, 3}}), ElementsAre("fe80::1%eth7 6001"));
}

TEST(LinkCandidates, TryALinkLocalAddressWithoutAZoneOnEveryInterface)
{
    EXPECT_THAT(texts({{"fe80::1", 6001, 0}}), ElementsAre("fe80::1%2 6001", "fe80::1%5 6001"));
}

TEST(LinkCandidates, GiveIPv4LinkLocalAddressesNoZone)
{
    EXPECT_THAT(texts({{"169.254.3.4", 6001, 0}}), ElementsAre("169.254.3.4 6001"));
}

TEST(LinkCandidates, LeaveOutWhatIsNoAddressAndWhatHasNoPort)
{
    EXPECT_THAT(texts({{"device.local", 6001, 0},
                       {"", 6001, 0},
                       {"127.1", 6001, 0},
                       {"192.0.2.7", 0, 0},
                       {"fe80::1%" + std::string(100, 'x'), 6001, 0}}),
                IsEmpty());
}

TEST(LinkCandidates, AreBounded)
{
    std::vector<Endpoint> many;
    for (int index = 0; index < 1000; ++index)
        many.push_back({"192.0.2.1", static_cast<std::uint16_t>(1000 + index), 0});
    EXPECT_EQ(linkCandidates(many, {}).size(), 32U);
}
