#include "Applications/Doctor/PairingProbe.h"

#include "Common/FVEDistributedNotifications.h"
#include "Link/Keys/OwnKey.h"
#include "Link/Keys/PairingProof.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Applications/DoctorNames.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace farview;
using testing::ElementsAre;
using testing::HasSubstr;
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
    Findings examine() { return findingsAboutPairing(trustFacts(fake.platform())); }
    std::string keyPath() const
    {
        return home.path("config/farview/com.quillon.ScreenCapture.pem");
    }

    TemporaryFolder home;
    ScopedEnvironment config{"XDG_CONFIG_HOME", home.path("config").c_str()};
    FakePlatform fake;
    PairedPeers devices{fake.preferences, PairedPeers::devices};
};

TEST_F(PairingProbe, ShowsThisComputersKeyAndMakesNone)
{
    EXPECT_THAT(names(examine()), ElementsAre("key-missing", "none"));
    EXPECT_FALSE(std::filesystem::exists(home.path("config")));
    const auto own = ownKey(keyPath());
    ASSERT_TRUE(own.key);
    const auto findings = examine();
    EXPECT_THAT(names(findings), ElementsAre("key", "none"));
    EXPECT_EQ(findings.front().details.at("path"), keyPath());
    EXPECT_EQ(findings.front().details.at("key"), shownKey(hexadecimal(own.key->fingerprint)));
}

TEST_F(PairingProbe, SaysWhyThisComputersKeyCannotBeUsedAndLeavesItAlone)
{
    ASSERT_TRUE(ownKey(keyPath()).key);
    std::filesystem::permissions(keyPath(), std::filesystem::perms{0644});
    const auto findings = examine();
    EXPECT_THAT(troubles(findings), ElementsAre("key-unusable"));
    EXPECT_THAT(findings.front().details.at("fault"), HasSubstr("other users may read"));
    EXPECT_FALSE(ownKey(keyPath()).key) << "it is still the same";
}

TEST_F(PairingProbe, NamesEachDeviceThatIsConfirmed)
{
    devices.add({key, "Desk", march, {march.secondsSince1970 + 3600}});
    const auto findings = examine();
    EXPECT_THAT(names(findings), ElementsAre("key-missing", "device"));
    EXPECT_EQ(findings.back().details,
              (std::map<std::string, std::string>{{"name", "Desk"},
                                                  {"key", "a1b2 c3d4"},
                                                  {"since", "2026-03-01T12:00:00Z"},
                                                  {"lastUsed", "2026-03-01T13:00:00Z"}}));
}

TEST_F(PairingProbe, ADeviceWithoutANameIsOneThatWasChosenByItsAddress)
{
    devices.add({key, "", march, march});
    const auto findings = examine();
    EXPECT_THAT(names(findings), ElementsAre("key-missing", "device"));
    EXPECT_EQ(findings.back().text.key,
              "A device chosen by its address, key %@: confirmed %@, used last %@.");
    EXPECT_EQ(findings.back().text.values.front(), "a1b2 c3d4");
}

TEST_F(PairingProbe, TellsNoDateThatNobodyKnows)
{
    devices.add({key, "Desk", {}, {300}});
    const auto device = examine().back();
    EXPECT_THAT(device.text.values, ElementsAre("Desk", "a1b2 c3d4", "?", "?"));
    EXPECT_EQ(device.details.at("since"), "");
    EXPECT_EQ(device.details.at("lastUsed"), "");
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
    TrustFacts facts;
    facts.ownKey = OwnKeyFact{"/home/anna/key.pem", key, ""};
    const auto findings = findingsAboutPairing(facts);
    EXPECT_THAT(names(findings), ElementsAre("key", "none"));
    EXPECT_EQ(findings.front().text.values, std::vector<std::string>{"a1b2 c3d4"});
}

TEST(PairingFindings, SayWhatEncryptsTheConnection)
{
    TrustFacts facts;
    facts.connection = ConnectionFact{"desk.local", "TLS_AES_256_GCM_SHA384"};
    const auto findings = findingsAboutPairing(facts);
    EXPECT_THAT(names(findings), ElementsAre("key-missing", "none", "encrypted"));
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
