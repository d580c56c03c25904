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
    QLNRegistryExplorer explorer{registry};
};

TEST_F(QLNRegistryExplorerTest, HasNoPlaneUntilOneIsSet)
{
    EXPECT_EQ(QLNRegistryExplorer(registry).currentPlane(), std::nullopt);
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

TEST_F(QLNRegistryExplorerTest, AServiceThatIsNotPublishedIsNot)
{
    EXPECT_EQ(explorer.findNamedIORegistryService("QLExGFX"), std::nullopt);
    registry.publish("Other");
    EXPECT_EQ(explorer.findNamedIORegistryService("QLExGFX"), std::nullopt);
    EXPECT_EQ(explorer.findNamedIORegistryService("nö"), std::nullopt);
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
}

TEST_F(QLNRegistryExplorerTest, InheritanceIsTheChainOfClassesRootFirst)
{
    registry.setSuperclass("C", "B");
    registry.setSuperclass("B", "A");
    EXPECT_EQ(explorer.createInheritanceStringForIORegistryClassName("C"), "A : B : C");
    EXPECT_EQ(explorer.createInheritanceStringForIORegistryClassName("A"), "A");
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
