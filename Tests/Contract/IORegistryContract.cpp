#include "Tests/Contract/RegistryScenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace farview
{
namespace
{

template <typename Scene> class IORegistryContract : public testing::Test
{
protected:
    IORegistry& registry() { return mScene.body; }
    std::vector<std::string> namesBelow(IORegistry::Entry entry)
    {
        std::vector<std::string> names;
        for (const auto each : registry().childEntries(entry, plane))
            names.push_back(registry().nameInPlane(each, plane));
        return names;
    }

    Scene mScene;
};

TYPED_TEST_SUITE(IORegistryContract, RegistryScenes);
using Names = std::vector<std::string>;

TYPED_TEST(IORegistryContract, TheRootsFirstChildBearsTheModelsName)
{
    const auto root = this->registry().rootEntry();
    ASSERT_NE(root, 0u);
    EXPECT_EQ(this->registry().nameInPlane(root, plane), "Root");
    EXPECT_EQ(this->namesBelow(root), (Names{"Model", "IOResources"}));
}

TYPED_TEST(IORegistryContract, DevicesLieBelowTheMachine)
{
    const auto bridge = this->registry().entryFromPath("IOService:/Model/bridge");
    ASSERT_NE(bridge, 0u);
    EXPECT_EQ(this->registry().nameInPlane(bridge, plane), "bridge");
    EXPECT_EQ(this->namesBelow(bridge), (Names{"device1", "device2"}));
    EXPECT_EQ(this->registry().className(bridge), "IOService");
    EXPECT_EQ(this->registry().locationInPlane(bridge, plane), std::nullopt);
}

TYPED_TEST(IORegistryContract, AnEntryThatIsNamedByItsPlaceHasALocation)
{
    const auto system = this->registry().entryFromPath("IOService:/Model/LNXSYSTM@00");
    ASSERT_NE(system, 0u);
    EXPECT_EQ(this->registry().entryFromPath("IOService:/Model/LNXSYSTM"), system);
    EXPECT_EQ(this->registry().nameInPlane(system, plane), "LNXSYSTM");
    EXPECT_EQ(this->registry().locationInPlane(system, plane), "00");
    EXPECT_EQ(this->registry().locationInPlane(system, "IOUSB"), std::nullopt);
    EXPECT_NE(this->registry().entryFromPath("IOService:/Model/LNXSYSTM@00/PNP0C0F@02"), 0u);
}

TYPED_TEST(IORegistryContract, AWalkAndAPathLeadToTheSameEntry)
{
    const auto machine = this->registry().childEntries(this->registry().rootEntry(), plane).at(0);
    const auto bridges = this->registry().childEntries(machine, plane);
    const auto bridge = this->registry().entryFromPath("IOService:/Model/bridge");
    EXPECT_NE(std::find(bridges.begin(), bridges.end(), bridge), bridges.end());
    EXPECT_EQ(this->registry().entryFromPath("IOService:/Model"), machine);
}

TYPED_TEST(IORegistryContract, EveryEntryHasAHandleOfItsOwn)
{
    std::set<IORegistry::Entry> seen;
    std::vector<IORegistry::Entry> open{this->registry().rootEntry()};
    while (!open.empty()) {
        const auto entry = open.back();
        open.pop_back();
        EXPECT_NE(entry, 0u);
        EXPECT_TRUE(seen.insert(entry).second);
        for (const auto child : this->registry().childEntries(entry, plane))
            open.push_back(child);
    }
    EXPECT_GE(seen.size(), 7u);
}

TYPED_TEST(IORegistryContract, AWrongPathLeadsNowhere)
{
    for (const char* path : {"", "IOService", "IOService:/IOResources/None", "IOService:/None",
                             "IOUSB:/IOResources/QLExGFX", "IOService:/IOResources/QLExGFX/below",
                             "IOService:/Model/LNXSYSTM@01", "IOService:/Model/bridge@"})
        EXPECT_EQ(this->registry().entryFromPath(path), 0u) << path;
}

TYPED_TEST(IORegistryContract, AnotherPlaneHasNoEntriesBelowTheRoot)
{
    EXPECT_TRUE(this->registry().childEntries(this->registry().rootEntry(), "IOUSB").empty());
}

TYPED_TEST(IORegistryContract, ClassesHaveAChainThatEnds)
{
    EXPECT_EQ(this->registry().superclassOf("IOService"), "IORegistryEntry");
    EXPECT_EQ(this->registry().superclassOf("IORegistryEntry"), std::nullopt);
}

} // namespace
} // namespace farview
