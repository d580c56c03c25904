#include "Applications/Doctor/PairingProbe.h"

#include "Common/FVEDistributedNotifications.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Applications/DoctorNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const std::string key = "a1b2c3d4" + std::string(56, '0');
const Date march{1772366400}; // 2026-03-01 12:00:00 UTC

PropertyList confirmedByHostName(const std::string& name)
{
    return PropertyList::Dictionary{{"DeviceName", name}, {"HostName", name + ".local"}};
}

std::optional<ConnectionFact> factOf(const UserInfo& answer)
{
    return connectionFact(Notification(kQueryResultForConnectedHost, nullptr, answer));
}

class PairingProbe : public testing::Test
{
protected:
    Findings examine() { return findingsAboutPairing(pairingFacts(fake.platform())); }

    FakePlatform fake;
    PairedPeers devices{fake.preferences, PairedPeers::devices};
};

TEST_F(PairingProbe, NamesEachDeviceThatIsConfirmed)
{
    EXPECT_THAT(names(examine()), ElementsAre("none"));
    devices.add({key, "Desk", march, {march.secondsSince1970 + 3600}});
    const auto findings = examine();
    EXPECT_THAT(names(findings), ElementsAre("device"));
    EXPECT_EQ(findings.front().details,
              (std::map<std::string, std::string>{{"name", "Desk"},
                                                  {"key", "a1b2 c3d4"},
                                                  {"since", "2026-03-01T12:00:00Z"},
                                                  {"lastUsed", "2026-03-01T13:00:00Z"}}));
}

TEST_F(PairingProbe, ADeviceWithoutANameIsOneThatWasChosenByItsAddress)
{
    devices.add({key, "", march, march});
    const auto findings = examine();
    EXPECT_THAT(names(findings), ElementsAre("device"));
    EXPECT_EQ(findings.front().text.key,
              "A device chosen by its address, key %@: confirmed %@, used last %@.");
    EXPECT_EQ(findings.front().text.values.front(), "a1b2 c3d4");
}

TEST_F(PairingProbe, CountsWhatWasConfirmedWithoutAKeyAndNotSince)
{
    fake.preferences.writeAsAnotherProcess(
        "confirmedDevices",
        PropertyList::Array{confirmedByHostName("Desk"), confirmedByHostName("Slab"), "rubbish",
                            PropertyList::Dictionary{{"DeviceName", 7}}},
        PairedPeers::devices);
    devices.add({key, "Desk", march, march});
    const auto findings = examine();
    EXPECT_THAT(troubles(findings), ElementsAre("without-key"));
    EXPECT_EQ(findings.back().text.values, std::vector<std::string>{"1"});
    devices.add({key, "Slab", march, march});
    EXPECT_THAT(troubles(examine()), IsEmpty());
}

TEST(PairingFindings, ShowThisComputersKeyAsTheDeviceDoes)
{
    PairingFacts facts;
    facts.ownKey = OwnKeyFact{"/home/anna/key.pem", key, ""};
    const auto findings = findingsAboutPairing(facts);
    EXPECT_THAT(names(findings), ElementsAre("key", "none"));
    EXPECT_EQ(findings.front().text.values, std::vector<std::string>{"a1b2 c3d4"});
}

TEST(PairingFindings, SayWhyTheKeyCannotBeUsedAndThatOneIsStillToCome)
{
    PairingFacts facts;
    facts.ownKey = OwnKeyFact{"/home/anna/key.pem", "", ""};
    EXPECT_THAT(names(findingsAboutPairing(facts)), ElementsAre("key-missing", "none"));
    EXPECT_THAT(troubles(findingsAboutPairing(facts)), IsEmpty());
    facts.ownKey->fault = "others can read it";
    const auto findings = findingsAboutPairing(facts);
    EXPECT_THAT(troubles(findings), ElementsAre("key-unusable"));
    EXPECT_EQ(findings.front().severity, Severity::problem);
    EXPECT_EQ(findings.front().details.at("path"), "/home/anna/key.pem");
}

TEST(PairingFindings, SayWhatEncryptsTheConnection)
{
    PairingFacts facts;
    facts.connection = ConnectionFact{"desk.local", "TLS_AES_256_GCM_SHA384"};
    const auto findings = findingsAboutPairing(facts);
    EXPECT_THAT(names(findings), ElementsAre("none", "encrypted"));
    EXPECT_EQ(findings.back().details.at("cipher"), "TLS_AES_256_GCM_SHA384");
}

TEST(ConnectionFact, IsReadFromTheServersAnswer)
{
    const UserInfo byName{{kDeviceNameKey, "desk.local"},
                          {kDeviceAddressKey, "192.0.2.7"},
                          {kCipherKey, "TLS_AES_256_GCM_SHA384"}};
    ASSERT_TRUE(factOf(byName));
    EXPECT_EQ(factOf(byName)->device, "desk.local");
    EXPECT_EQ(factOf(byName)->cipher, "TLS_AES_256_GCM_SHA384");
    auto byAddress = byName;
    byAddress[kDeviceNameKey] = kOtherDeviceName;
    EXPECT_EQ(factOf(byAddress)->device, "192.0.2.7");
}

TEST(ConnectionFact, IsNoneWithoutACipherAndWithTextsThatAreNone)
{
    UserInfo answer{{kDeviceNameKey, "desk.local"}};
    EXPECT_FALSE(factOf(answer));
    answer[kCipherKey] = std::string(100000, 'x');
    EXPECT_FALSE(factOf(answer));
    EXPECT_FALSE(factOf({{kCipherKey, "TLS_AES_256_GCM_SHA384"}}));
}

} // namespace
