#include "Platform/Desktop/Screens/KWin/KWinOutputs.h"

#include "Tests/Support/PrivatePlasma.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <sstream>

namespace farview
{
namespace
{

/// With KWin's own outputs.
class KWinOutputsTest : public testing::Test
{
protected:
    KWinOutputsTest()
    {
        EXPECT_TRUE(waitUntil([this] { return mOutputs.shown().size() == 2; }));
    }
    bool become(const std::string& words)
    {
        return waitUntil([&] { return !mOutputs.isApplying() && described() == words; });
    }
    std::string described()
    {
        std::ostringstream text;
        for (const auto& output : mOutputs.shown())
            text << output.name << " " << output.area.x << "," << output.area.y << " "
                 << output.area.width << "x" << output.area.height << " x" << output.scale << "\n";
        return text.str();
    }

    PrivatePlasma mDesktop;
    WaylandConnection mConnection{{.ready =
                                       [this] {
                                           for (const auto& global : mConnection.globals())
                                               mOutputs.add(global);
                                       },
                                   .lost = [] {}}};
    KWinOutputs mOutputs{mConnection, [] {}};
};

TEST_F(KWinOutputsTest, AreToldWithTheMainOneFirst)
{
    EXPECT_EQ(described(), "Virtual-0 0,0 1280x720 x1\nVirtual-1 1280,0 1280x720 x1\n");
    EXPECT_EQ(mOutputs.shown().front().rate, 60);
}

TEST_F(KWinOutputsTest, OneGetsAnotherPlaceAndScaleAndTheOtherStays)
{
    mOutputs.apply({{"Virtual-1", PixelPoint{0, 720}, 2.0}});
    EXPECT_TRUE(become("Virtual-0 0,0 1280x720 x1\nVirtual-1 0,720 640x360 x2\n")) << described();
    mOutputs.apply({{"Virtual-1", std::nullopt, 1.25}});
    EXPECT_TRUE(become("Virtual-0 0,0 1280x720 x1\nVirtual-1 0,720 1024x576 x1.25\n"))
        << described();
}

TEST_F(KWinOutputsTest, AChangeOfWhatIsNotThereChangesNothing)
{
    mOutputs.apply({{"Virtual-7", PixelPoint{0, 720}, 2.0}});
    EXPECT_TRUE(become("Virtual-0 0,0 1280x720 x1\nVirtual-1 1280,0 1280x720 x1\n"));
}

KWinOutput output(const std::string& name, const PixelRect& area)
{
    return {name, area, area.width, area.height, 60, 1};
}

TEST(UndoneRow, BringsBackWhatKWinHasMovedAndPutsTheNewOneBeside)
{
    const std::vector<KWinOutput> before{output("A", pixelRect(0, 600, 1920, 1080)),
                                         output("B", pixelRect(0, 0, 800, 600))};
    const std::vector<KWinOutput> now{output("A", pixelRect(0, 0, 1920, 1080)),
                                      output("B", pixelRect(1920, 0, 800, 600)),
                                      output("New", pixelRect(2720, 0, 640, 480))};
    const auto changes = undoneRow(before, now, "New");
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_EQ(changes[0].name + changes[1].name + changes[2].name, "ABNew");
    EXPECT_EQ(changes[0].corner, pixelPoint(0, 600));
    EXPECT_EQ(changes[1].corner, pixelPoint(0, 0));
    EXPECT_EQ(changes[2].corner, pixelPoint(1920, 600));
}

TEST(UndoneRow, LeavesWhatTheUserHasArranged)
{
    const std::vector<KWinOutput> before{output("A", pixelRect(0, 0, 1920, 1080))};
    // Not moved; moved, but not to a row; gone.
    EXPECT_TRUE(
        undoneRow(before, {before[0], output("New", pixelRect(1920, 0, 640, 480))}, "New").empty());
    EXPECT_TRUE(undoneRow(before,
                          {output("A", pixelRect(640, 100, 1920, 1080)),
                           output("New", pixelRect(0, 0, 640, 480))},
                          "New")
                    .empty());
    EXPECT_TRUE(undoneRow(before, {output("New", pixelRect(0, 0, 640, 480))}, "New").empty());
}

} // namespace
} // namespace farview
