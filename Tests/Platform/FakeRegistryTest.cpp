#include "Platform/Fake/FakeRegistry.h"

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

} // namespace
