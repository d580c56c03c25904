#include "Applications/Device/OtherDevices.h"

#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class OtherDevicesTest : public testing::Test
{
protected:
    void look()
    {
        others->look(
            Duration(3), [this](const std::string& name) { seen.push_back(name); },
            [this] { ++noneSeen; });
    }

    FakePlatform fake;
    std::shared_ptr<OtherDevices> others =
        std::make_shared<OtherDevices>(fake.discovery, fake.runLoop);
    std::vector<std::string> seen;
    int noneSeen = 0;
};

TEST_F(OtherDevicesTest, AreSeenOnce)
{
    look();
    fake.discovery.announce(std::vector{FakeDevice{"Desk", "desk.local"}, FakeDevice{"Sofa", "s"}});
    fake.runLoop.advance(Duration(10));
    EXPECT_THAT(seen, ElementsAre("Desk"));
    EXPECT_EQ(noneSeen, 0);
}

TEST_F(OtherDevicesTest, AreNotSeenAfterTheTimeIsOver)
{
    look();
    fake.runLoop.advance(Duration(2.9));
    EXPECT_EQ(noneSeen, 0);
    fake.runLoop.advance(Duration(0.2));
    EXPECT_EQ(noneSeen, 1);
    fake.discovery.announce(std::vector{FakeDevice{"Desk", "desk.local"}});
    fake.runLoop.advance(Duration(10));
    EXPECT_THAT(seen, IsEmpty());
    EXPECT_EQ(noneSeen, 1);
}

} // namespace
