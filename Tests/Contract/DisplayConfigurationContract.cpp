#include "Platform/Desktop/Screens/X11/RandrDisplays.h"
#include "Platform/Fake/FakeDisplayConfiguration.h"
#include "Tests/Support/PrivateXServer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace farview
{
namespace
{

using Display = DisplayConfiguration::Display;
using List = std::vector<Display>;

/// Each scene has three displays beside one another, of which the second is the main one.
struct ScriptedDisplays {
    FakeDisplayConfiguration body;

    ScriptedDisplays() { body.setDisplays({{2, 1}, {1, 0}, {3, 2}}); }
};

struct DisplaysOfAnXServer {
    PrivateXServer server;
    ScreenArranger arranger{server.display()};
    RandrDisplays body;

    DisplaysOfAnXServer()
    {
        arranger.setScreenSize(5760, 1080);
        arranger.show(1, 1920, 0);
        arranger.show(2, 3840, 0);
        arranger.makePrimary(1);
    }
};

template <typename Scene> class DisplayConfigurationContract : public testing::Test
{
protected:
    DisplayConfiguration& displays() { return mScene.body; }
    List online()
    {
        List found(10);
        std::uint32_t count = 0;
        EXPECT_EQ(displays().onlineDisplayList(found, count), DisplayConfiguration::success);
        found.resize(count);
        return found;
    }
    List aliases(Display display)
    {
        List found(10);
        std::uint32_t count = 0;
        EXPECT_EQ(displays().displayAliasList(display, found, count),
                  DisplayConfiguration::success);
        found.resize(count);
        return found;
    }
    DisplayConfiguration::Transaction begun()
    {
        DisplayConfiguration::Transaction transaction = 0;
        EXPECT_EQ(displays().beginConfiguration(transaction), DisplayConfiguration::success);
        EXPECT_NE(transaction, 0U);
        return transaction;
    }
    DisplayConfiguration::Error mirror(Display display, Display master)
    {
        const auto transaction = begun();
        displays().configureMirrorOfDisplay(transaction, display, master);
        return displays().completeConfiguration(transaction, 1);
    }

    Scene mScene;
};

using Scenes = testing::Types<ScriptedDisplays, DisplaysOfAnXServer>;
TYPED_TEST_SUITE(DisplayConfigurationContract, Scenes);

TYPED_TEST(DisplayConfigurationContract, TheMainDisplayComesFirst)
{
    const auto online = this->online();
    ASSERT_EQ(online.size(), 3U);
    EXPECT_EQ(online.front(), this->displays().mainDisplay());
    EXPECT_EQ(std::count(online.begin(), online.end(), 0U), 0);
}

TYPED_TEST(DisplayConfigurationContract, AListIsAsLongAsThereIsRoom)
{
    List room(2, 99);
    std::uint32_t count = 0;
    EXPECT_EQ(this->displays().onlineDisplayList(room, count), DisplayConfiguration::success);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(this->displays().displayAliasList(room[0], {}, count), DisplayConfiguration::success);
    EXPECT_EQ(count, 0U);
}

TYPED_TEST(DisplayConfigurationContract, DisplaysBesideOneAnotherShowDifferentThings)
{
    for (const auto display : this->online())
        EXPECT_EQ(this->aliases(display), List{display});
}

TYPED_TEST(DisplayConfigurationContract, AMirrorShowsTheSameAndEndsWithNoMaster)
{
    const auto online = this->online();
    EXPECT_EQ(this->mirror(online[1], online[0]), DisplayConfiguration::success);
    EXPECT_EQ(this->aliases(online[0]), (List{online[0], online[1]}));
    EXPECT_EQ(this->aliases(online[1]), (List{online[1], online[0]}));
    EXPECT_EQ(this->aliases(online[2]), List{online[2]});
    EXPECT_EQ(this->mirror(online[0], 0), DisplayConfiguration::success);
    for (const auto display : online)
        EXPECT_EQ(this->aliases(display), List{display});
    EXPECT_EQ(this->displays().mainDisplay(), online[0]);
}

TYPED_TEST(DisplayConfigurationContract, SeveralMirrorsEndAtOnce)
{
    const auto online = this->online();
    const auto transaction = this->begun();
    for (const auto display : {online[1], online[2]})
        this->displays().configureMirrorOfDisplay(transaction, display, online[0]);
    EXPECT_EQ(this->displays().completeConfiguration(transaction, 1),
              DisplayConfiguration::success);
    EXPECT_EQ(this->aliases(online[0]).size(), 3U);
    EXPECT_EQ(this->mirror(online[0], 0), DisplayConfiguration::success);
    for (const auto display : online)
        EXPECT_EQ(this->aliases(display), List{display});
}

TYPED_TEST(DisplayConfigurationContract, NothingHappensBeforeAChangeIsCompleted)
{
    const auto online = this->online();
    const auto transaction = this->begun();
    EXPECT_EQ(this->displays().configureMirrorOfDisplay(transaction, online[1], online[0]),
              DisplayConfiguration::success);
    EXPECT_EQ(this->aliases(online[0]), List{online[0]});
}

TYPED_TEST(DisplayConfigurationContract, EndingAMirrorThatIsNoneChangesNothing)
{
    const auto online = this->online();
    EXPECT_EQ(this->mirror(online[0], 0), DisplayConfiguration::success);
    EXPECT_EQ(this->online(), online);
}

TYPED_TEST(DisplayConfigurationContract, AStepThatFailsFailsTheWholeChange)
{
    const auto online = this->online();
    const auto transaction = this->begun();
    EXPECT_EQ(this->displays().configureMirrorOfDisplay(transaction, online[1], online[0]),
              DisplayConfiguration::success);
    EXPECT_EQ(this->displays().configureMirrorOfDisplay(transaction, 0xABCDEF, online[0]),
              DisplayConfiguration::illegalArgument);
    EXPECT_EQ(this->displays().completeConfiguration(transaction, 1),
              DisplayConfiguration::illegalArgument);
    EXPECT_EQ(this->aliases(online[0]), List{online[0]});
}

TYPED_TEST(DisplayConfigurationContract, ADisplayThatIsNotThereHasNoAliases)
{
    std::uint32_t count = 7;
    for (const Display none : {0U, 0xABCDEFU})
        EXPECT_EQ(this->displays().displayAliasList(none, {}, count),
                  DisplayConfiguration::illegalArgument);
    EXPECT_EQ(count, 7U);
}

TYPED_TEST(DisplayConfigurationContract, AChangeIsCompletedOnce)
{
    const auto transaction = this->begun();
    EXPECT_EQ(this->displays().completeConfiguration(transaction, 2),
              DisplayConfiguration::success);
    EXPECT_EQ(this->displays().completeConfiguration(transaction, 2),
              DisplayConfiguration::invalidContext);
    EXPECT_EQ(this->displays().configureMirrorOfDisplay(transaction, this->online()[0], 0),
              DisplayConfiguration::invalidContext);
    EXPECT_EQ(this->displays().completeConfiguration(0, 1), DisplayConfiguration::invalidContext);
}

} // namespace
} // namespace farview
