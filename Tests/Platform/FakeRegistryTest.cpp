#include "Platform/Fake/FakeRegistry.h"

#include "Tests/Support/Fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::FakeRegistry;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

TEST(FakeRegistry, KeepsChildrenInTheOrderOfTheirArrivalAndOfTheirPlane)
{
    FakeRegistry registry;
    const auto first = registry.add(registry.rootEntry(), {"First"});
    const auto second = registry.add(registry.rootEntry(), {"Second"});
    registry.add(registry.rootEntry(),
                 {.name = "Elsewhere", .className = "X", .location = "0", .plane = "Other"});
    EXPECT_THAT(registry.childEntries(registry.rootEntry(), "IOService"),
                ElementsAre(first, second));
    EXPECT_THAT(registry.childEntries(first, "IOService"), IsEmpty());
}

TEST(FakeRegistry, FindsAnEntryByItsPath)
{
    FakeRegistry registry;
    EXPECT_EQ(registry.entryFromPath("IOService:/IOResources/QLExGFX"), 0U);
    const auto entry = registry.publish("QLExGFX");
    EXPECT_EQ(registry.entryFromPath("IOService:/IOResources/QLExGFX"), entry);
    EXPECT_EQ(registry.entryFromPath("Other:/IOResources/QLExGFX"), 0U);
    EXPECT_EQ(registry.entryFromPath("nonsense"), 0U);
    registry.remove(entry);
    EXPECT_EQ(registry.entryFromPath("IOService:/IOResources/QLExGFX"), 0U);
}

TEST(FakeRegistry, TakesItsTreeAndItsClassesFromAFixture)
{
    FakeRegistry registry;
    const auto old = registry.publish("Old");
    ASSERT_EQ(registry.readFixture(fixtureText("Laptop.registry")), 0);
    EXPECT_EQ(registry.nameInPlane(old, "IOService"), "AppleACPIPlatformExpert")
        << "nothing stays of what was there";
    EXPECT_EQ(registry.className(registry.rootEntry()), "IORegistryEntry");
    const auto graphics =
        registry.entryFromPath("IOService:/MacBookPro5,3/AppleACPIPlatformExpert/PCI0/IGPU");
    ASSERT_NE(graphics, 0U);
    EXPECT_EQ(registry.locationInPlane(graphics, "IOService"), "0");
    EXPECT_EQ(registry.className(graphics), "IOPCIDevice");
    EXPECT_EQ(registry.superclassOf("IOPCIBridge"), "IOPCIDevice");
    EXPECT_EQ(registry.superclassOf("IORegistryEntry"), std::nullopt);
    EXPECT_NE(registry.entryFromPath("IOService:/IOResources/QLExGFX"), 0U);
}

TEST(FakeRegistry, TellsTheFirstLineOfAFixtureThatItCannotRead)
{
    FakeRegistry registry;
    EXPECT_EQ(registry.readFixture(""), 0);
    EXPECT_EQ(registry.readFixture("# remark\n\nRoot\n  Child\n"), 0);
    EXPECT_EQ(registry.readFixture("Root\n   Child"), 2) << "three blanks";
    EXPECT_EQ(registry.readFixture("Root\n    Child"), 2) << "two levels at once";
    EXPECT_EQ(registry.readFixture("Root\n  Child\nRoot"), 3) << "a second root";
    EXPECT_EQ(registry.readFixture("  Child"), 1) << "no root";
}

} // namespace
