#include "Applications/Device/AwakeScreen.h"

#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/ScriptedScreenSaver.h"
#include "Tests/Support/TestBus.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

class AwakeScreenTest : public testing::Test
{
protected:
    PrivateBus bus;
    SessionBusScope session{bus.address()};
    FakeLog log;
    std::unique_ptr<ScriptedScreenSaver> desktop =
        std::make_unique<ScriptedScreenSaver>(bus.address());
    TestBus ours{log};
    AwakeScreen awake{ours, QStringLiteral("Shows a picture")};
};

TEST_F(AwakeScreenTest, IsKeptAwakeForAsLongAsThatIsWanted)
{
    awake.keep(true);
    ASSERT_TRUE(waitUntil([&] { return desktop->cookies.size() == 1; }));
    EXPECT_EQ(desktop->reason, "Shows a picture");
    runLoopFor(std::chrono::milliseconds(50));
    awake.keep(true);
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(desktop->cookies.size(), 1u) << "once is enough";
    awake.keep(false);
    EXPECT_TRUE(waitUntil([&] { return desktop->cookies.empty(); }));
}

TEST_F(AwakeScreenTest, MaySleepAgainThoughTheAnswerCameLate)
{
    awake.keep(true);
    awake.keep(false);
    ASSERT_TRUE(waitUntil([&] { return !desktop->reason.empty() && desktop->cookies.empty(); }));
}

TEST_F(AwakeScreenTest, IsKeptAwakeOnTheBusThatComesAfter)
{
    awake.keep(true);
    ASSERT_TRUE(waitUntil([&] { return desktop->cookies.size() == 1; }));
    desktop.reset();
    bus.stop();
    ASSERT_TRUE(waitUntil([&] { return !ours.isConnected(); }));
    bus.start();
    desktop = std::make_unique<ScriptedScreenSaver>(bus.address());
    EXPECT_TRUE(waitUntil([&] { return desktop->cookies.size() == 1; }));
}

TEST_F(AwakeScreenTest, ADesktopThatCannotIsLeftAlone)
{
    desktop->isBroken = true;
    awake.keep(true);
    ASSERT_TRUE(waitUntil([&] { return !desktop->reason.empty(); }));
    runLoopFor(std::chrono::milliseconds(50));
    awake.keep(false);
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(desktop->cookies.size(), 1u) << "there is nothing to give back";
}

TEST_F(AwakeScreenTest, WithoutAnybodyToAskNothingHappens)
{
    desktop.reset();
    awake.keep(true);
    runLoopFor(std::chrono::milliseconds(50));
    awake.keep(false);
    EXPECT_TRUE(ours.isConnected());
}

} // namespace
} // namespace farview
