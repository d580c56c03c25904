#include "Platform/Desktop/Screens/Wayland/WaylandConnection.h"
#include "Tests/Support/PrivateSway.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>
#include <wayland-client.h>

#include <algorithm>
#include <csignal>
#include <optional>

namespace farview
{
namespace
{

/// What a connection told.
struct Told {
    int ready = 0;
    int lost = 0;
    std::vector<std::string> added;
    std::vector<std::uint32_t> removed;

    WaylandConnection::Events events()
    {
        return {.ready = [this] { ++ready; },
                .added = [this](const auto& global) { added.push_back(global.interface); },
                .removed = [this](auto name) { removed.push_back(name); },
                .lost = [this] { ++lost; }};
    }
};

int outputsOf(const WaylandConnection& connection)
{
    const auto& globals = connection.globals();
    return static_cast<int>(std::count_if(globals.begin(), globals.end(), [](const auto& global) {
        return global.interface == "wl_output";
    }));
}

TEST(WaylandConnection, WithoutACompositorIsLostOnALaterTurn)
{
    const ScopedEnvironment display("WAYLAND_DISPLAY", "/nowhere");
    Told told;
    const WaylandConnection connection(told.events());
    EXPECT_EQ(told.lost, 0);
    ASSERT_TRUE(waitUntil([&] { return told.lost > 0; }));
    EXPECT_EQ(told.ready, 0);
    EXPECT_TRUE(connection.globals().empty());
}

class WaylandConnectionToSway : public testing::Test
{
protected:
    void connect()
    {
        mConnection.emplace(mTold.events());
        ASSERT_TRUE(waitUntil([&] { return mTold.ready > 0; }));
    }

    PrivateSway mDesktop{{"1280x800", "640x480"}};
    Told mTold;
    std::optional<WaylandConnection> mConnection;
};

TEST_F(WaylandConnectionToSway, IsReadyOnALaterTurnWithAllGlobals)
{
    mConnection.emplace(mTold.events());
    EXPECT_EQ(mTold.ready, 0);
    ASSERT_TRUE(waitUntil([&] { return mTold.ready > 0; }));
    EXPECT_TRUE(mConnection->find(wl_compositor_interface));
    EXPECT_FALSE(mConnection->find(wl_pointer_interface));
    EXPECT_EQ(outputsOf(*mConnection), 2);
    EXPECT_TRUE(mTold.added.empty());
}

TEST_F(WaylandConnectionToSway, TellsOfGlobalsThatComeLater)
{
    connect();
    SwayArranger(mDesktop).run("create_output");
    ASSERT_TRUE(waitUntil([&] { return !mTold.added.empty(); }));
    EXPECT_EQ(mTold.added.front(), "wl_output");
    EXPECT_EQ(outputsOf(*mConnection), 3);
}

TEST_F(WaylandConnectionToSway, TellsOfGlobalsThatGo)
{
    if (!PrivateSway::canRemoveOutputs())
        GTEST_SKIP() << "this sway can remove no output";
    connect();
    SwayArranger(mDesktop).run("output HEADLESS-2 unplug");
    ASSERT_TRUE(waitUntil([&] { return !mTold.removed.empty(); }));
    EXPECT_EQ(outputsOf(*mConnection), 1);
}

TEST_F(WaylandConnectionToSway, BindsWhatIsThereAtMostInItsVersion)
{
    connect();
    const auto* global = mConnection->find(wl_output_interface);
    ASSERT_TRUE(global);
    auto* output = mConnection->bind<wl_output>(*global, wl_output_interface, 1000);
    EXPECT_EQ(wl_output_get_version(output), global->version);
    wl_output_destroy(output);
}

TEST_F(WaylandConnectionToSway, AnswersInOrderWhenEverythingIsDone)
{
    connect();
    std::vector<int> answers;
    mConnection->afterAll([&] { answers.push_back(1); });
    mConnection->afterAll([&] { answers.push_back(2); });
    EXPECT_TRUE(answers.empty());
    ASSERT_TRUE(waitUntil([&] { return answers.size() == 2; }));
    EXPECT_EQ(answers, (std::vector{1, 2}));
}

TEST_F(WaylandConnectionToSway, AnswersNothingOnceItIsGone)
{
    connect();
    bool isAnswered = false;
    mConnection->afterAll([&] { isAnswered = true; });
    mConnection.reset();
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_FALSE(isAnswered);
}

TEST_F(WaylandConnectionToSway, IsLostOnceWithTheCompositor)
{
    connect();
    mDesktop.process().kill();
    ASSERT_TRUE(waitUntil([&] { return mTold.lost > 0; }));
    mConnection->afterAll([] { FAIL() << "answered by nobody"; });
    mConnection->flush();
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(mTold.lost, 1);
}

TEST_F(WaylandConnectionToSway, MayEndItselfWhenItIsLost)
{
    auto events = mTold.events();
    events.lost = [this] {
        ++mTold.lost;
        mConnection.reset();
    };
    mConnection.emplace(events);
    mDesktop.process().kill();
    EXPECT_TRUE(waitUntil([&] { return mTold.lost > 0; }));
    EXPECT_FALSE(mConnection);
}

} // namespace
} // namespace farview
