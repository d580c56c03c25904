#include "Platform/Fake/FakeGraphicsControl.h"
#include "Platform/Posix/Registry/VgaSwitcheroo.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace farview
{
namespace
{

/// Each scene is a machine without the service, until it gets one with processors 0, in use, and 1.
struct ScriptedMachine {
    FakeGraphicsControl body;

    void addService() { body.addService(); }
    void removeService() { body.removeService(); }
    bool isSwitched() const { return body.activeProcessor() == 1; }
};

struct MachineInAFolder {
    TemporaryFolder folder;
    VgaSwitcheroo body{folder.path()};

    void addService()
    {
        folder.write("vgaswitcheroo/switch", "0:IGD:+:Pwr:0000:00:02.0\n"
                                             "1:DIS: :Off:0000:01:00.0\n"
                                             "2:DIS-Audio: :Off:0000:01:00.1\n");
    }
    void removeService() { std::filesystem::remove_all(folder.path("vgaswitcheroo")); }
    /// What was written is the order to the kernel.
    bool isSwitched() const
    {
        std::ifstream file(folder.path("vgaswitcheroo/switch"));
        const std::string order(std::istreambuf_iterator<char>(file), {});
        return order == "DIS" || order == "DDIS";
    }
};

template <typename Scene> class GraphicsControlContract : public testing::Test
{
protected:
    using Object = GraphicsControl::Object;

    GraphicsControl& control() { return mScene.body; }
    Object service()
    {
        Object port = 0;
        EXPECT_EQ(control().masterPort(port), GraphicsControl::success);
        return firstOf("AppleGraphicsControl", port);
    }
    Object firstOf(const std::string& className, Object port)
    {
        const auto matching = control().serviceMatching(className);
        EXPECT_TRUE(matching);
        Object iterator = 0;
        EXPECT_EQ(control().getMatchingServices(port, *matching, iterator),
                  GraphicsControl::success);
        EXPECT_NE(iterator, 0U);
        const auto first = control().iteratorNext(iterator);
        EXPECT_EQ(control().iteratorNext(iterator), 0U);
        control().release(iterator);
        return first;
    }
    /// A connection to the service, which is added.
    Object connection()
    {
        mScene.addService();
        Object opened = 0;
        EXPECT_EQ(control().serviceOpen(service(), 0, opened), GraphicsControl::success);
        EXPECT_NE(opened, 0U);
        return opened;
    }
    bool call(Object connection, std::uint32_t selector, std::vector<std::uint64_t> input)
    {
        std::span<std::uint64_t> nothing;
        return control().callScalarMethod(connection, selector, input, nothing) ==
               GraphicsControl::success;
    }

    Scene mScene;
};

using Scenes = testing::Types<ScriptedMachine, MachineInAFolder>;
TYPED_TEST_SUITE(GraphicsControlContract, Scenes);

TYPED_TEST(GraphicsControlContract, AMachineWithoutTheServiceHasNoMatch)
{
    EXPECT_EQ(this->service(), 0U);
}

TYPED_TEST(GraphicsControlContract, TheServiceIsFoundByItsClassOnly)
{
    this->mScene.addService();
    EXPECT_NE(this->service(), 0U);
    GraphicsControl::Object port = 0;
    this->control().masterPort(port);
    EXPECT_EQ(this->firstOf("OtherControl", port), 0U);
}

TYPED_TEST(GraphicsControlContract, AnIteratorThatWasReleasedIsAtItsEnd)
{
    this->mScene.addService();
    GraphicsControl::Object port = 0;
    GraphicsControl::Object iterator = 0;
    this->control().masterPort(port);
    const auto matching = this->control().serviceMatching("AppleGraphicsControl");
    this->control().getMatchingServices(port, *matching, iterator);
    this->control().release(iterator);
    EXPECT_EQ(this->control().iteratorNext(iterator), 0U);
}

TYPED_TEST(GraphicsControlContract, TheNumberOfAConnectionIsNeverUsedAgain)
{
    const auto first = this->connection();
    EXPECT_EQ(this->control().serviceClose(first), GraphicsControl::success);
    const auto second = this->connection();
    EXPECT_NE(second, first);
    EXPECT_FALSE(this->call(first, 0, {})) << "a late call reaches nobody else's connection";
    EXPECT_TRUE(this->call(second, 0, {}));
}

TYPED_TEST(GraphicsControlContract, AConnectionIsClosedOnce)
{
    const auto connection = this->connection();
    EXPECT_EQ(this->control().serviceClose(connection), GraphicsControl::success);
    EXPECT_NE(this->control().serviceClose(connection), GraphicsControl::success);
    EXPECT_FALSE(this->call(connection, 1, {}));
}

TYPED_TEST(GraphicsControlContract, OnlyTheServiceCanBeOpened)
{
    this->mScene.addService();
    GraphicsControl::Object connection = 7;
    EXPECT_NE(this->control().serviceOpen(999, 0, connection), GraphicsControl::success);
    const auto service = this->service();
    this->mScene.removeService();
    EXPECT_NE(this->control().serviceOpen(service, 0, connection), GraphicsControl::success);
    EXPECT_EQ(connection, 7U);
}

TYPED_TEST(GraphicsControlContract, TheMuxSaysThatItCanSwitch)
{
    const auto connection = this->connection();
    const std::array<std::uint64_t, 2> input = {1, 0};
    std::array<std::uint64_t, 2> room = {7, 7};
    std::span<std::uint64_t> output(room);
    EXPECT_EQ(this->control().callScalarMethod(connection, 3, input, output),
              GraphicsControl::success);
    ASSERT_EQ(output.size(), 1U);
    EXPECT_EQ(output[0], 4U);
}

TYPED_TEST(GraphicsControlContract, AProcessorIsSelectedByItsNumber)
{
    const auto connection = this->connection();
    EXPECT_TRUE(this->call(connection, 2, {1, 4, 0}));
    EXPECT_FALSE(this->mScene.isSwitched());
    EXPECT_TRUE(this->call(connection, 2, {1, 4, 1}));
    EXPECT_TRUE(this->mScene.isSwitched());
}

TYPED_TEST(GraphicsControlContract, AForcedSwitchGoesToTheOtherProcessor)
{
    EXPECT_TRUE(this->call(this->connection(), 2, {1, 2, 0}));
    EXPECT_TRUE(this->mScene.isSwitched());
}

TYPED_TEST(GraphicsControlContract, WhatItDoesNotKnowFailsAndSwitchesNothing)
{
    const auto connection = this->connection();
    const std::vector<std::vector<std::uint64_t>> wrong = {
        {}, {1, 4}, {2, 4, 1}, {1, 3, 1}, {1, 4, 2}, {1, 4, 1, 0}, {1, 4, ~0ULL}};
    for (const auto& input : wrong)
        EXPECT_FALSE(this->call(connection, 2, input)) << testing::PrintToString(input);
    EXPECT_FALSE(this->call(connection, 3, {1, 0})) << "no room for the answer";
    EXPECT_FALSE(this->call(connection, 99, {}));
    EXPECT_FALSE(this->mScene.isSwitched());
}

TYPED_TEST(GraphicsControlContract, NothingWorksOnceTheServiceHasGone)
{
    const auto connection = this->connection();
    this->mScene.removeService();
    EXPECT_FALSE(this->call(connection, 0, {}));
    EXPECT_FALSE(this->call(connection, 2, {1, 4, 1}));
    EXPECT_EQ(this->control().serviceClose(connection), GraphicsControl::success);
}

} // namespace
} // namespace farview
