#include "Platform/Desktop/Screens/X11/RandrDisplays.h"

#include "Platform/Platform.h"
#include "Source/FVEDisplay.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/PrivateXServer.h"

#include <gtest/gtest.h>

#include <csignal>

namespace farview
{
namespace
{

using Area = ScreenArranger::Area;
using Error = DisplayConfiguration::Error;

TEST(RandrDisplaysWithoutAServer, EverythingFailsTheSameWay)
{
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", nullptr);
    for (const char* display :
         {(const char*)nullptr, "", ":98765", "nonsense", "/dev/null", "unix:/nowhere/at/all"}) {
        const ScopedEnvironment variable("DISPLAY", display);
        RandrDisplays displays;
        std::array<DisplayConfiguration::Display, 4> room{};
        std::uint32_t count = 7;
        EXPECT_EQ(displays.onlineDisplayList(room, count), Error{1002});
        EXPECT_EQ(displays.displayAliasList(1, room, count), Error{1002});
        EXPECT_EQ(count, 7U);
        EXPECT_EQ(displays.mainDisplay(), 0U);
        DisplayConfiguration::Transaction transaction = 0;
        EXPECT_EQ(displays.beginConfiguration(transaction), 0);
        EXPECT_EQ(displays.configureMirrorOfDisplay(transaction, 1, 0), Error{1002});
        EXPECT_EQ(displays.completeConfiguration(transaction, 1), Error{1002});
    }
}

class RandrDisplaysTest : public testing::Test
{
protected:
    RandrDisplaysTest() { platform.displayConfiguration = &displays; }

    /// The first `count` outputs show the same.
    void mirror(std::size_t count)
    {
        for (std::size_t index = 1; index < count; ++index)
            arranger.show(index, 0, 0);
    }
    DisplayConfiguration::Display output(std::size_t index) { return arranger.outputs()[index]; }

    PrivateXServer server;
    ScreenArranger arranger{server.display()};
    RandrDisplays displays;
    Platform platform;
    Platform::Scope installed{platform};
};

TEST_F(RandrDisplaysTest, AMirrorEndsByTheToolkitsCall)
{
    mirror(2);
    arranger.makePrimary(0);
    ASSERT_EQ(arranger.screen(), (Area{0, 0, 1920, 1080}));
    EXPECT_EQ(turnOffDisplayMirroringForSession(1), 0);
    EXPECT_EQ(arranger.area(0), (Area{0, 0, 1920, 1080}));
    EXPECT_EQ(arranger.area(1), (Area{1920, 0, 1920, 1080}));
    EXPECT_EQ(arranger.screen(), (Area{0, 0, 3840, 1080}));
}

TEST_F(RandrDisplaysTest, MirroredDisplaysCountAsASwitchingComputer)
{
    mirror(2);
    inItsOwnProcess([] { EXPECT_TRUE(computerHasXMuxGPUCapability()); });
    arranger.hide(1);
    inItsOwnProcess([] { EXPECT_FALSE(computerHasXMuxGPUCapability()); });
}

TEST_F(RandrDisplaysTest, WithEveryDisplayOffThereIsNoMainOne)
{
    arranger.hide(0);
    std::uint32_t count = 7;
    EXPECT_EQ(displays.onlineDisplayList({}, count), 0);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(displays.mainDisplay(), 0U);
    EXPECT_EQ(turnOffDisplayMirroringForSession(1), DisplayConfiguration::illegalArgument);
}

TEST_F(RandrDisplaysTest, InASessionOfAnotherKindTheServerIsNotAsked)
{
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_EQ(displays.mainDisplay(), 0U);
    EXPECT_EQ(turnOffDisplayMirroringForSession(1), DisplayConfiguration::invalidConnection);
}

TEST_F(RandrDisplaysTest, AServerThatDiesInTheMiddleOfAChangeIsAnError)
{
    mirror(2);
    DisplayConfiguration::Transaction transaction = 0;
    EXPECT_EQ(displays.beginConfiguration(transaction), 0);
    EXPECT_EQ(displays.configureMirrorOfDisplay(transaction, output(0), 0), 0);
    server.process().kill();
    EXPECT_EQ(displays.completeConfiguration(transaction, 1),
              DisplayConfiguration::invalidConnection);
    EXPECT_EQ(turnOffDisplayMirroringForSession(1), DisplayConfiguration::invalidConnection);
}

} // namespace
} // namespace farview
