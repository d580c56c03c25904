#include "Common/PairedPeers.h"

#include "Platform/Fake/FakePreferences.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

std::string keyOf(char digit) { return std::string(64, digit); }

PairedPeer peer(char digit, const std::string& name, double lastUsed = 1000)
{
    return {keyOf(digit), name, {500}, {lastUsed}};
}

TEST(MayBeTrue, IsWhatAClockThatWasSetCanTell)
{
    for (const double moment : {946'684'800.0, 1'700'000'000.0, 253'402'300'799.0})
        EXPECT_TRUE(mayBeTrue({moment})) << moment;
    for (const double moment :
         {0.0, 300.0, -1e9, 946'684'799.0, 253'402'300'800.0, 1e300, HUGE_VAL, std::nan("")})
        EXPECT_FALSE(mayBeTrue({moment})) << moment;
}

TEST(TrustIn, IsGivenToAKeyUnderTheNameItWasConfirmedWith)
{
    const std::vector<PairedPeer> peers{peer('a', "Pad"), peer('b', "Slab"), peer('c', "")};
    const struct {
        char key;
        const char* name;
        PeerTrust trust;
    } cases[] = {
        {'a', "Pad", PeerTrust::known},    {'b', "Pad", PeerTrust::changed},
        {'c', "Pad", PeerTrust::changed},  {'d', "Pad", PeerTrust::changed},
        {'a', "Slab", PeerTrust::changed}, {'a', "Other", PeerTrust::stranger},
        {'a', "pad", PeerTrust::stranger}, {'d', "Other", PeerTrust::stranger},
        {'c', "Other", PeerTrust::known},  {'a', "", PeerTrust::known},
        {'c', "", PeerTrust::known},       {'d', "", PeerTrust::stranger},
    };
    for (const auto& each : cases)
        EXPECT_EQ(trustIn(peers, keyOf(each.key), each.name), each.trust)
            << each.key << " as " << each.name;
    EXPECT_EQ(trustIn(peers, "", "Pad"), PeerTrust::changed);
    EXPECT_EQ(trustIn(peers, "", ""), PeerTrust::stranger);
    EXPECT_EQ(trustIn({}, keyOf('a'), "Pad"), PeerTrust::stranger);
}

TEST(TrustIn, IsGivenToADeviceThatTheNetworkNumbered)
{
    const std::vector<PairedPeer> peers{peer('a', "Pad"), peer('b', "Slab #3")};
    EXPECT_EQ(trustIn(peers, keyOf('a'), "Pad #2"), PeerTrust::known);
    EXPECT_EQ(trustIn(peers, keyOf('b'), "Slab"), PeerTrust::known);
    EXPECT_EQ(trustIn(peers, keyOf('c'), "Pad #2"), PeerTrust::stranger);
    for (const char* name : {"Pad#2", "Pad #", "Pad 2", "Pad #2 ", "#2", " #2", "2"})
        EXPECT_EQ(trustIn(peers, keyOf('a'), name), PeerTrust::stranger) << name;
}

TEST(TrustIn, IsGivenToEachOfTwoDevicesOfOneNameThatWereStored)
{
    const std::vector<PairedPeer> peers{peer('a', "Pad"), peer('b', "Pad")};
    EXPECT_EQ(trustIn(peers, keyOf('a'), "Pad"), PeerTrust::known);
    EXPECT_EQ(trustIn(peers, keyOf('b'), "Pad"), PeerTrust::known);
    EXPECT_EQ(trustIn(peers, keyOf('c'), "Pad"), PeerTrust::changed);
}

class PairedPeersTest : public testing::Test
{
protected:
    /// What another program finds.
    std::vector<PairedPeer> stored() const
    {
        FakePreferences others;
        if (const auto value = preferences.storedValue(PairedPeers::key, domain))
            others.writeAsAnotherProcess(PairedPeers::key, *value, domain);
        return PairedPeers(others, domain).all();
    }
    void write(PropertyList value)
    {
        preferences.writeAsAnotherProcess(PairedPeers::key, std::move(value), domain);
    }

    const std::string domain = PairedPeers::devices;
    FakePreferences preferences;
    PairedPeers peers{preferences, domain};
};

TEST_F(PairedPeersTest, AreStoredAtOnceTheNewestLast)
{
    EXPECT_THAT(peers.all(), IsEmpty());
    EXPECT_TRUE(peers.add(peer('a', "Pad")));
    EXPECT_TRUE(peers.add(peer('b', "Slab")));
    EXPECT_THAT(stored(), ElementsAre(peer('a', "Pad"), peer('b', "Slab")));
    EXPECT_THAT(peers.all(), stored());
    EXPECT_THAT(PairedPeers(preferences, PairedPeers::computers).all(), IsEmpty());
}

TEST_F(PairedPeersTest, ANewKeyTakesThePlaceOfTheOneThatHadItsName)
{
    peers.add(peer('a', "Pad"));
    peers.add(peer('b', "Pad"));
    EXPECT_THAT(stored(), ElementsAre(peer('b', "Pad")));
}

TEST_F(PairedPeersTest, ADeviceThatGetsANameLosesItsEntryWithoutOneAndTheOtherWayRound)
{
    peers.add(peer('a', ""));
    peers.add(peer('b', ""));
    peers.add(peer('a', "Pad"));
    EXPECT_THAT(stored(), ElementsAre(peer('b', ""), peer('a', "Pad")));
    peers.add(peer('a', ""));
    EXPECT_THAT(stored(), ElementsAre(peer('b', ""), peer('a', "")));
}

TEST_F(PairedPeersTest, OneKeyMayHaveTwoNames)
{
    peers.add(peer('a', "Pad"));
    peers.add(peer('a', "Slab"));
    EXPECT_THAT(stored(), ElementsAre(peer('a', "Pad"), peer('a', "Slab")));
}

TEST_F(PairedPeersTest, UseIsNotedForTheOneThatIsMeant)
{
    peers.add(peer('a', "Pad"));
    peers.add(peer('a', "Slab"));
    peers.add(peer('b', "Pad"));
    peers.add(peer('a', "Pad"));
    peers.used(keyOf('a'), "Slab", {2000});
    EXPECT_THAT(stored(), ElementsAre(peer('a', "Slab", 2000), peer('a', "Pad")));
    peers.used(keyOf('a'), "", {3000});
    EXPECT_THAT(stored(), ElementsAre(peer('a', "Slab", 3000), peer('a', "Pad", 3000)));
}

TEST_F(PairedPeersTest, ADeviceThatWasReachedByItsAddressGetsItsNameAtTheFirstUseUnderOne)
{
    peers.add(peer('a', ""));
    peers.used(keyOf('a'), "Pad", {2000});
    EXPECT_THAT(stored(), ElementsAre(peer('a', "Pad", 2000)));
    peers.used(keyOf('a'), "Slab", {3000});
    EXPECT_THAT(stored(), ElementsAre(peer('a', "Pad", 2000))) << "it keeps its name";
}

// Addresses go from one computer to another, and all the users of one share its address.
TEST_F(PairedPeersTest, ComputersWithoutANameFollowTheirAddressAndMayShareIt)
{
    peers.add(peer('a', ""));
    peers.used(keyOf('a'), "10.0.0.5", {2000}, true);
    peers.add(peer('b', ""));
    peers.used(keyOf('b'), "10.0.0.5", {2000}, true);
    peers.used(keyOf('a'), "10.0.0.6", {3000}, true);
    EXPECT_THAT(stored(), ElementsAre(peer('a', "10.0.0.6", 3000), peer('b', "10.0.0.5", 2000)));
}

TEST_F(PairedPeersTest, UseOfAStrangerIsNotNoted)
{
    peers.used(keyOf('a'), "Pad", {2000});
    EXPECT_EQ(preferences.setCount(), 0);
}

TEST_F(PairedPeersTest, AreForgottenByNameOrByKeyAndNobodyElse)
{
    peers.add(peer('a', "Pad"));
    peers.add(peer('b', "Slab"));
    peers.add(peer('c', ""));
    peers.forget("Pad");
    peers.forget("Sla");
    peers.forget("");
    EXPECT_THAT(stored(), ElementsAre(peer('b', "Slab"), peer('c', "")));
    peers.forget(keyOf('c'));
    EXPECT_THAT(stored(), ElementsAre(peer('b', "Slab")));
    peers.forget("Slab");
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(PairedPeersTest, MayTypeOnceTheUserSaysSoByNameOrByKeyAndNobodyElse)
{
    peers.add(peer('a', "Pad"));
    peers.add(peer('b', ""));
    peers.add(peer('c', "Slab"));
    peers.letType("Pad", true);
    peers.letType(keyOf('b'), true);
    peers.letType("", true);
    peers.letType("Nobody", true);
    const auto all = stored();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_TRUE(all[0].mayType);
    EXPECT_TRUE(all[1].mayType);
    EXPECT_FALSE(all[2].mayType);
    peers.letType(keyOf('a'), false);
    EXPECT_FALSE(stored()[0].mayType);
    EXPECT_EQ(stored()[0], peer('a', "Pad")) << "nothing else has changed";
}

TEST_F(PairedPeersTest, MayTypeNoMoreWhenTheyAreConfirmedAnew)
{
    for (const char key : {'a', 'b'}) {
        peers.add(peer('a', "Pad"));
        peers.letType("Pad", true);
        ASSERT_TRUE(stored()[0].mayType);
        peers.add(peer(key, "Pad"));
        EXPECT_FALSE(stored()[0].mayType) << key;
    }
}

TEST_F(PairedPeersTest, MayTypeAlsoAfterTheyWereUsed)
{
    peers.add(peer('a', "Pad"));
    peers.letType("Pad", true);
    peers.used(keyOf('a'), "Pad", {2000});
    EXPECT_TRUE(stored()[0].mayType);
}

TEST_F(PairedPeersTest, AreForgottenAlsoWhenTheAdministratorHasPresetThem)
{
    peers.add(peer('a', "Pad"));
    const auto preset = preferences.storedValue(PairedPeers::key, domain);
    preferences.writeAsAnotherProcess(PairedPeers::key, std::nullopt, domain);
    preferences.writeAsAnotherProcess(PairedPeers::key, preset, domain, PreferencesUser::any);
    ASSERT_THAT(peers.all(), ElementsAre(peer('a', "Pad")));
    peers.forget("Pad");
    EXPECT_THAT(peers.all(), IsEmpty());
}

TEST_F(PairedPeersTest, ComeBackAfterForgettingAsTheyWere)
{
    peers.add(peer('a', "Pad", 1234.5));
    const auto before = peers.all();
    peers.forget("Pad");
    for (const auto& each : before)
        peers.add(each);
    EXPECT_EQ(stored(), before);
}

TEST_F(PairedPeersTest, AreAtMostSoManyAndTheOneUnusedForTheLongestTimeGoes)
{
    for (std::size_t number = 0; number < PairedPeers::mostPeers; ++number)
        peers.add(peer('a', std::to_string(number), number == 100 ? 1 : 1000));
    EXPECT_EQ(stored().size(), PairedPeers::mostPeers);
    peers.add(peer('b', "Pad"));
    EXPECT_EQ(stored().size(), PairedPeers::mostPeers);
    EXPECT_EQ(trustIn(stored(), keyOf('a'), "100"), PeerTrust::stranger);
    EXPECT_EQ(trustIn(stored(), keyOf('a'), "99"), PeerTrust::known);
    EXPECT_EQ(trustIn(stored(), keyOf('b'), "Pad"), PeerTrust::known);
}

PropertyList::Dictionary entry(char digit, double lastUsed)
{
    return {{"Key", keyOf(digit)}, {"LastUsed", Date{lastUsed}}, {"Name", "x"}};
}

TEST_F(PairedPeersTest, AreBoundedAlsoWhenSomebodyElseStoredMore)
{
    write(PropertyList::Array(1000, entry('a', std::nan(""))));
    peers.add(peer('b', "Pad"));
    EXPECT_EQ(stored().size(), PairedPeers::mostPeers);
    EXPECT_EQ(trustIn(stored(), keyOf('b'), "Pad"), PeerTrust::known);
}

TEST_F(PairedPeersTest, WhatIsNotStoredSoundlyIsNobody)
{
    for (const PropertyList& value :
         {PropertyList("text"), PropertyList(7), PropertyList(PropertyList::Dictionary{})}) {
        write(value);
        EXPECT_THAT(peers.all(), IsEmpty());
    }
    const std::string short63(63, 'a');
    write(PropertyList::Array{
        "text", PropertyList::Dictionary{}, PropertyList::Dictionary{{"Key", 7}},
        PropertyList::Dictionary{{"Key", short63}},
        PropertyList::Dictionary{{"Key", short63 + "A"}},
        PropertyList::Dictionary{{"Key", short63 + "g"}},
        PropertyList::Dictionary{{"Key", short63 + std::string("\0", 1)}},
        PropertyList::Dictionary{{"Key", keyOf('a') + "a"}},
        PropertyList::Dictionary{
            {"Key", keyOf('b')}, {"Name", 5}, {"Since", "x"}, {"LastUsed", 7}}});
    EXPECT_THAT(peers.all(), ElementsAre(PairedPeer{keyOf('b'), "", {}, {}}));
}

TEST_F(PairedPeersTest, NothingIsWrittenWhereNothingChanges)
{
    write(PropertyList("what a later version may store"));
    peers.used(keyOf('a'), "Pad", {2000});
    peers.forget("Pad");
    EXPECT_EQ(preferences.setCount(), 0);
}

TEST_F(PairedPeersTest, AFullDiskIsToldAndWhatWasAddedIsStoredLater)
{
    preferences.setWritesFail(true);
    EXPECT_FALSE(peers.add(peer('a', "Pad")));
    EXPECT_THAT(peers.all(), ElementsAre(peer('a', "Pad")));
    EXPECT_THAT(stored(), IsEmpty());
    preferences.setWritesFail(false);
    EXPECT_TRUE(peers.add(peer('b', "Slab")));
    EXPECT_THAT(stored(), ElementsAre(peer('a', "Pad"), peer('b', "Slab")));
}

TEST_F(PairedPeersTest, WhatAnotherProgramStoresIsSeenAtOnce)
{
    peers.add(peer('a', "Pad"));
    write(PropertyList::Array{entry('b', 7)});
    ASSERT_EQ(peers.all().size(), 1U);
    EXPECT_EQ(peers.all().front().key, keyOf('b'));
}

} // namespace
