#include "Common/Registry/QLNRegistryExplorer.h"

#include "Platform/Fake/FakePlatform.h"
#include "Tests/Support/Fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::PropertyList;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// The registry of a laptop, built.
class RegistrySearch : public testing::Test
{
protected:
    RegistrySearch()
    {
        EXPECT_EQ(registry.readFixture(fixtureText("Laptop.registry")), 0);
        explorer.init();
        explorer.setCurrentPlane("IOService");
        explorer.buildFullRegistryDictionary();
    }
    std::vector<std::string> found(const std::string& text)
    {
        return explorer.searchResultsForText(text, true, false);
    }

    farview::FakeRegistry registry;
    farview::FakeText caseOfText;
    QLNRegistryExplorer explorer{registry, caseOfText};
};

TEST_F(RegistrySearch, FindsNamesWhateverTheirCaseAndLeadsToThemFromTheRoot)
{
    EXPECT_THAT(found("ioservice"), ElementsAre(":Root:MacBookPro5,3:IOServiceTree",
                                                ":Root:IOResources:IOHIDSystem:IOServiceClient"));
    EXPECT_EQ(found("IOSERVICE"), found("ioservice"));
}

TEST_F(RegistrySearch, ParentsComeBeforeTheirChildren)
{
    const std::string bridge = ":Root:MacBookPro5,3:AppleACPIPlatformExpert:PCI0@0";
    EXPECT_THAT(found("p"),
                ElementsAre(":Root:MacBookPro5,3", ":Root:MacBookPro5,3:AppleACPIPlatformExpert",
                            bridge, bridge + ":IGPU@0", bridge + ":IGPU@0:Display@0,1",
                            ":Root:MacBookPro5,3:AppleACPIPlatformExpert:PWRB"));
}

TEST_F(RegistrySearch, TheLocationTakesPart)
{
    const std::string bridge = ":Root:MacBookPro5,3:AppleACPIPlatformExpert:PCI0@0";
    EXPECT_THAT(found("gpu@0"), ElementsAre(bridge + ":IGPU@0"));
    EXPECT_THAT(found("@0,1"), ElementsAre(bridge + ":IGPU@0:Display@0,1"));
}

TEST_F(RegistrySearch, NamesOnlyAndOnlyWhenAskedTo)
{
    EXPECT_THAT(explorer.searchResultsForText("Root", false, true), IsEmpty());
    EXPECT_THAT(explorer.searchResultsForText("Root", false, false), IsEmpty());
    EXPECT_THAT(explorer.searchResultsForText("Root", true, true), ElementsAre(":Root"));
    EXPECT_THAT(found("IOPCIBridge"), IsEmpty()) << "a class is no name";
}

TEST_F(RegistrySearch, CaseIsUnicodes)
{
    registry.publish("Gerät");
    explorer.buildFullRegistryDictionary();
    EXPECT_THAT(found("GERÄT"), ElementsAre(":Root:IOResources:Gerät"));
}

TEST_F(RegistrySearch, GoesThroughAnyDictionaryFromAnyPath)
{
    const PropertyList tree = PropertyList::Dictionary{
        {"name", "a"},
        {"children", PropertyList::Array{PropertyList::Dictionary{{"name", "ab"}}, "no entry"}},
    };
    EXPECT_THAT(explorer.searchKeysResultsInDictionary(tree, "A", "path"),
                ElementsAre("path:a", "path:a:ab"));
    const PropertyList nameless = PropertyList::Dictionary{{"children", PropertyList::Array{tree}}};
    EXPECT_THAT(explorer.searchKeysResultsInDictionary(nameless, "b", ""),
                ElementsAre(":(null):a:ab"));
    EXPECT_THAT(explorer.searchKeysResultsInDictionary("no dictionary", "n", ""), IsEmpty());
}

} // namespace
