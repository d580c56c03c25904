#include "Platform/Posix/Registry/VgaSwitcheroo.h"
#include "Tests/Posix/PreferencesFixture.h"

namespace farview
{
namespace
{

class VgaSwitcherooTest : public testing::Test
{
protected:
    /// A connection to a switch that reads so; 0 when there is none.
    GraphicsControl::Object connectionTo(const std::string& text)
    {
        mFolder.write("vgaswitcheroo/switch", text);
        GraphicsControl::Object connection = 0;
        mControl.serviceOpen(2, 0, connection);
        return connection;
    }
    bool canSwitch(const std::string& text)
    {
        const std::array<std::uint64_t, 2> input = {1, 0};
        std::uint64_t features = 0;
        std::span<std::uint64_t> output(&features, 1);
        return mControl.callScalarMethod(connectionTo(text), 3, input, output) == 0 &&
               features == 4;
    }
    bool set(GraphicsControl::Object connection, std::uint64_t state, std::uint64_t value)
    {
        const std::array<std::uint64_t, 3> input = {1, state, value};
        std::span<std::uint64_t> nothing;
        return mControl.callScalarMethod(connection, 2, input, nothing) == 0;
    }
    std::string order() const { return contentsOf(mFolder.path("vgaswitcheroo/switch")); }

    TemporaryFolder mFolder;
    VgaSwitcheroo mControl{mFolder.path()};
    const std::string mBoth = "0:DIS:+:DynPwr:0000:01:00.0\n1:IGD: :DynOff:0000:00:02.0\n";
};

TEST_F(VgaSwitcherooTest, SwitchesOnlyBetweenTwoKindsOfProcessors)
{
    EXPECT_TRUE(canSwitch(mBoth));
    EXPECT_FALSE(canSwitch("0:IGD:+:Pwr:0000:00:02.0\n"));
    EXPECT_FALSE(canSwitch("0:DIS:+:Pwr:0000:00:02.0\n1:DIS-Audio: :Off:0000:01:00.1\n"));
}

TEST_F(VgaSwitcherooTest, ASelectionWaitsForTheProgramsThatHoldTheOtherProcessor)
{
    EXPECT_TRUE(set(connectionTo(mBoth), 4, 1));
    EXPECT_EQ(order(), "DIGD");
}

TEST_F(VgaSwitcherooTest, AForcedSwitchDoesNotWait)
{
    EXPECT_TRUE(set(connectionTo(mBoth), 2, 0));
    EXPECT_EQ(order(), "IGD");
}

TEST_F(VgaSwitcherooTest, WithOneProcessorThereIsNothingToSwitchTo)
{
    const std::string alone = "0:IGD:+:Pwr:0000:00:02.0\n";
    EXPECT_FALSE(set(connectionTo(alone), 2, 0));
    EXPECT_EQ(order(), alone);
}

TEST_F(VgaSwitcherooTest, AFileThatSaysNothingKnownIsNoService)
{
    for (const char* text :
         {"", "\n", "0", "0:", ":IGD:+:Pwr:x", "x:IGD:+:Pwr:x", "0:ABC:+:Pwr:x", "0:IGD", "0:IGD:+",
          "99999999999999999999999:IGD:+:Pwr:x", "0:DIS-Audio: :Off:x", "IGD\n"})
        EXPECT_EQ(connectionTo(text), 0U) << text;
    EXPECT_EQ(connectionTo(std::string(100000, 'x')), 0U);
    EXPECT_EQ(connectionTo(std::string("0:IGD\0+:", 8)), 0U);
}

TEST_F(VgaSwitcherooTest, APipeInItsPlaceIsNoServiceAndIsNotWaitedFor)
{
    std::filesystem::create_directories(mFolder.path("vgaswitcheroo"));
    ASSERT_EQ(::mkfifo(mFolder.path("vgaswitcheroo/switch").c_str(), 0600), 0);
    GraphicsControl::Object connection = 0;
    EXPECT_NE(mControl.serviceOpen(2, 0, connection), GraphicsControl::success);
}

TEST_F(VgaSwitcherooTest, NobodyIsToldOfChanges)
{
    connectionTo(mBoth);
    EXPECT_EQ(mControl.addInterestNotification(1, 2, "IOGeneralInterest", nullptr, nullptr),
              GraphicsControl::unsupported);
}

} // namespace
} // namespace farview
