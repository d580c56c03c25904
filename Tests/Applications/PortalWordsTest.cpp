#include "Applications/ScreenCapture/PortalWords.h"

#include "Common/PairedPeers.h"
#include "Platform/Fake/FakePlatform.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

class PortalWords : public testing::Test
{
protected:
    FakePlatform fake;
    PortalMemory memory = portalWordsIn(fake.preferences);
};

TEST_F(PortalWords, AreKeptForEachDevice)
{
    EXPECT_EQ(memory.word("Tablet"), "");
    memory.keep("Tablet", "one");
    memory.keep("Old laptop", "two");
    memory.keep("Tablet", "three");
    const auto another = portalWordsIn(fake.preferences);
    EXPECT_EQ(another.word("Tablet"), "three");
    EXPECT_EQ(another.word("Old laptop"), "two");
    another.keep("Tablet", "");
    EXPECT_EQ(memory.word("Tablet"), "");
    EXPECT_EQ(memory.word("Old laptop"), "two");
}

TEST_F(PortalWords, WhatIsNoWordIsNone)
{
    for (const auto& nonsense :
         {PropertyList(7), PropertyList(PropertyList::Dictionary{{"Tablet", PropertyList(7)}})}) {
        fake.preferences.setAppValue(kPortalWords, nonsense, PairedPeers::devices);
        EXPECT_EQ(memory.word("Tablet"), "");
        memory.keep("Tablet", "one");
        EXPECT_EQ(memory.word("Tablet"), "one");
    }
}

} // namespace
} // namespace farview
