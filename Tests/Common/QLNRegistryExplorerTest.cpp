#include "Common/Registry/QLNRegistryExplorer.h"

#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::PropertyList;
using testing::ElementsAre;
using testing::SizeIs;

namespace
{

class QLNRegistryExplorerTest : public testing::Test
{
protected:
    QLNRegistryExplorerTest() { explorer.setCurrentPlane("IOService"); }

    static std::string text(const PropertyList& dictionary, const char* key)
    {
        return *dictionary.get<PropertyList::Dictionary>()->at(key).get<std::string>();
    }
    static std::vector<std::string> childNames(const PropertyList& dictionary)
    {
        std::vector<std::string> names;
        const auto& children = dictionary.get<PropertyList::Dictionary>()->at("children");
        for (const auto& child : *children.get<PropertyList::Array>())
            names.push_back(text(child, "name"));
        return names;
    }
    std::string nameOf(const farview::FakeRegistry::Node& node)
    {
        return text(explorer.dictForIterated(registry.add(registry.rootEntry(), node)), "name");
    }

    farview::FakeRegistry registry;
    farview::FakeText caseOfText;
    QLNRegistryExplorer explorer{registry, caseOfText};
};

TEST_F(QLNRegistryExplorerTest, HasNoPlaneUntilOneIsSet)
{
    EXPECT_EQ(QLNRegistryExplorer(registry, caseOfText).currentPlane(), std::nullopt);
    EXPECT_EQ(explorer.currentPlane(), "IOService");
}

TEST_F(QLNRegistryExplorerTest, AServiceThatIsPublishedIsFound)
{
    const auto entry = registry.publish("QLExGFX", "QLDriver");
    const auto found = explorer.findNamedIORegistryService("QLExGFX");
    ASSERT_TRUE(found);
    EXPECT_EQ(text(*found, "name"), "QLExGFX");
    EXPECT_EQ(text(*found, "className"), "QLDriver");
    EXPECT_EQ(text(*found, "state"), "");
    EXPECT_EQ(text(*found, "inheritance"), "QLDriver");
    const auto& dictionary = *found->get<PropertyList::Dictionary>();
    EXPECT_EQ(dictionary.at("regEntry"), PropertyList(static_cast<int>(entry)));
    EXPECT_THAT(dictionary, SizeIs(6));
}

TEST_F(QLNRegistryExplorerTest, AServiceIsLookedUpInItsOwnPlaneWhateverTheCurrentOne)
{
    const auto service = registry.publish("QLExGFX");
    registry.add(service, {"Child"});
    explorer.setCurrentPlane("Other");
    const auto found = explorer.findNamedIORegistryService("QLExGFX");
    ASSERT_TRUE(found);
    EXPECT_THAT(childNames(*found), ElementsAre()) << "the walk follows the current plane";
}

TEST_F(QLNRegistryExplorerTest, WalksTheWholeTreeBelowInOrder)
{
    const auto service = registry.publish("QLExGFX");
    const auto first = registry.add(service, {"First"});
    registry.add(service, {"Second"});
    registry.add(first, {"Grandchild"});
    const auto found = explorer.dictForIterated(service);
    EXPECT_THAT(childNames(found), ElementsAre("First", "Second"));
    const auto& children = found.get<PropertyList::Dictionary>()->at("children");
    EXPECT_THAT(childNames(children.get<PropertyList::Array>()->front()),
                ElementsAre("Grandchild"));
}

TEST_F(QLNRegistryExplorerTest, ALocationIsPartOfTheName)
{
    EXPECT_EQ(nameOf({.name = "PCI", .className = "X", .location = "1F,3"}), "PCI@1F,3");
    EXPECT_EQ(nameOf({.name = "PCI", .className = "X", .location = ""}), "PCI@");
    EXPECT_EQ(nameOf({.name = "PCI"}), "PCI");
}

TEST_F(QLNRegistryExplorerTest, ANameIsCutToItsBuffer)
{
    const std::string longName(126, 'n');
    EXPECT_EQ(nameOf({.name = longName, .className = "X", .location = "12"}), longName + "@");
    EXPECT_EQ(nameOf({.name = std::string(300, 'n')}), std::string(127, 'n'));
    EXPECT_EQ(nameOf({.name = std::string(126, 'n') + "ä"}), std::string(126, 'n'))
        << "never in the middle of a character";
    EXPECT_EQ(nameOf({.name = std::string(300, '\x80')}), std::string(127, '\x80')) << "no text";
}

TEST_F(QLNRegistryExplorerTest, InheritanceIsTheChainOfClassesRootFirst)
{
    registry.setSuperclass("C", "B");
    registry.setSuperclass("B", "A");
    EXPECT_EQ(explorer.createInheritanceStringForIORegistryClassName("C"), "A : B : C");
    EXPECT_EQ(explorer.createInheritanceStringForIORegistryClassName("A"), "A");
}

TEST_F(QLNRegistryExplorerTest, AChainOfClassesThatNeverEndsIsCut)
{
    registry.setSuperclass("A", "B");
    registry.setSuperclass("B", "A");
    EXPECT_LT(explorer.createInheritanceStringForIORegistryClassName("A").size(), 1000u);
}

TEST_F(QLNRegistryExplorerTest, ThePlaneIsGivenInASCIIOnly)
{
    EXPECT_STREQ(explorer.currentPlaneCString(), "IOService");
    explorer.setCurrentPlane("Ebene-Ä");
    EXPECT_EQ(explorer.currentPlaneCString(), nullptr);
    registry.add(registry.rootEntry(), {"Child"});
    EXPECT_THAT(childNames(explorer.dictForIterated(registry.rootEntry())), ElementsAre());
    explorer.setCurrentPlane(std::nullopt);
    EXPECT_EQ(explorer.currentPlaneCString(), nullptr);
    EXPECT_THAT(childNames(explorer.dictForIterated(registry.rootEntry())), ElementsAre());
}

TEST_F(QLNRegistryExplorerTest, AServicesNameIsASCIIAndEndsWithItsFirstNUL)
{
    registry.publish("nö");
    registry.publish("QLExGFX");
    EXPECT_EQ(explorer.findNamedIORegistryService("nö"), std::nullopt);
    EXPECT_TRUE(explorer.findNamedIORegistryService(std::string("QLExGFX\0more", 12)));
}

TEST_F(QLNRegistryExplorerTest, NothingIsThereBeforeTheFirstBuild)
{
    explorer.init();
    EXPECT_EQ(explorer.registryDictionary(), PropertyList(PropertyList::Dictionary{}));
    EXPECT_THAT(explorer.searchResultsForText("root", true, true), ElementsAre());
}

TEST_F(QLNRegistryExplorerTest, AFullBuildReplacesWhatWasBuiltBefore)
{
    explorer.init();
    const auto first = registry.add(registry.rootEntry(), {"First"});
    explorer.buildFullRegistryDictionary();
    EXPECT_EQ(text(explorer.registryDictionary(), "name"), "Root");
    EXPECT_THAT(childNames(explorer.registryDictionary()), ElementsAre("First"));
    registry.remove(first);
    registry.add(registry.rootEntry(), {"Second"});
    EXPECT_THAT(childNames(explorer.registryDictionary()), ElementsAre("First"));
    explorer.buildFullRegistryDictionary();
    EXPECT_THAT(childNames(explorer.registryDictionary()), ElementsAre("Second"));
    explorer.setRegistryDictionary(PropertyList::Dictionary{{"name", "Mine"}});
    EXPECT_EQ(text(explorer.registryDictionary(), "name"), "Mine");
}

/// A registry whose every entry has itself, its parent and two others below it.
class EndlessRegistry final : public farview::IORegistry
{
public:
    Entry rootEntry() override { return 1; }
    std::vector<Entry> childEntries(Entry entry, const std::string& /*plane*/) override
    {
        ++questions;
        return isBranching ? std::vector<Entry>{entry, 1, entry % 4 + 1}
                           : std::vector<Entry>{entry + 1};
    }
    std::string nameInPlane(Entry /*entry*/, const std::string& /*plane*/) override { return "x"; }
    std::optional<std::string> locationInPlane(Entry, const std::string&) override { return {}; }
    std::string className(Entry /*entry*/) override { return "X"; }
    std::optional<std::string> superclassOf(const std::string& className) override
    {
        return className;
    }
    Entry entryFromPath(const std::string& /*path*/) override { return 1; }

    bool isBranching = false;
    int questions = 0;
};

class QLNRegistryExplorerOnAnEndlessRegistry : public testing::Test
{
protected:
    void build()
    {
        explorer.init();
        explorer.setCurrentPlane("IOService");
        explorer.buildFullRegistryDictionary();
    }

    EndlessRegistry endless;
    farview::FakeText caseOfText;
    QLNRegistryExplorer explorer{endless, caseOfText};
};

TEST_F(QLNRegistryExplorerOnAnEndlessRegistry, LeavesOutAnEntryThatIsBelowItself)
{
    endless.isBranching = true;
    build();
    EXPECT_EQ(endless.questions, 4) << "1, 2, 3 and 4, each once";
}

TEST_F(QLNRegistryExplorerOnAnEndlessRegistry, GoesDownAsFarAsAMachineCanGo)
{
    build();
    EXPECT_GT(endless.questions, 100);
    EXPECT_LT(endless.questions, 1000);
    EXPECT_EQ(explorer.searchResultsForText("X", true, false).size(),
              static_cast<std::size_t>(endless.questions + 1));
}

TEST(ComputerModel, IsTheNameOfTheRootsFirstChildWhateverTheExplorersPlane)
{
    farview::FakePlatform fake;
    const farview::Platform::Scope scope(fake.platform());
    EXPECT_EQ(QLNRegistryExplorer::computerModel(), "") << "the root has no child";
    fake.registry.add(fake.registry.rootEntry(), {.name = "Elsewhere", .plane = "IOUSB"});
    fake.registry.add(fake.registry.rootEntry(), {.name = "MacBookPro6,2", .location = "0"});
    fake.registry.publish("QLExGFX");
    QLNRegistryExplorer::sharedExplorer().setCurrentPlane("IOUSB");
    EXPECT_EQ(QLNRegistryExplorer::computerModel(), "MacBookPro6,2");
    EXPECT_EQ(QLNRegistryExplorer::sharedExplorer().currentPlane(), "IOUSB");
}

TEST(SharedExplorer, IsOneForAsLongAsThePlatformStaysAndFollowsIt)
{
    farview::FakePlatform first;
    farview::FakePlatform second;
    first.registry.publish("QLExGFX");
    const farview::Platform::Scope outer(first.platform());
    auto& explorer = QLNRegistryExplorer::sharedExplorer();
    explorer.setCurrentPlane("IOService");
    EXPECT_EQ(&explorer, &QLNRegistryExplorer::sharedExplorer());
    EXPECT_TRUE(explorer.findNamedIORegistryService("QLExGFX"));
    const farview::Platform::Scope inner(second.platform());
    EXPECT_EQ(QLNRegistryExplorer::sharedExplorer().currentPlane(), std::nullopt);
    EXPECT_FALSE(QLNRegistryExplorer::sharedExplorer().findNamedIORegistryService("QLExGFX"));
}

} // namespace
