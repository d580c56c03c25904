#include "Applications/Device/GlassGeometry.h"

#include <gtest/gtest.h>

#include <limits>

using namespace farview;

namespace
{

struct Placing {
    const char* what;
    QSize glass;
    QSize picture;
    bool isFitted;
    QPoint pointer;
    QRect area;
};

class PlacedPicture : public testing::TestWithParam<Placing>
{
};

TEST_P(PlacedPicture, LiesThere)
{
    const auto& each = GetParam();
    EXPECT_EQ(placedPicture(each.glass, each.picture, each.isFitted, each.pointer).area, each.area)
        << each.what;
}

INSTANTIATE_TEST_SUITE_P(
    Glass, PlacedPicture,
    testing::Values(
        Placing{"as large as the glass", {800, 600}, {800, 600}, true, {}, {0, 0, 800, 600}},
        Placing{"half of it", {800, 600}, {400, 300}, true, {}, {0, 0, 800, 600}},
        Placing{"twice as large", {800, 600}, {1600, 1200}, true, {}, {0, 0, 800, 600}},
        Placing{
            "wider: bars above and below", {800, 600}, {800, 400}, true, {}, {0, 100, 800, 400}},
        Placing{"higher: bars at the sides", {800, 600}, {300, 600}, true, {}, {250, 0, 300, 600}},
        Placing{"one pixel", {800, 600}, {1, 1}, true, {}, {100, 0, 600, 600}},
        Placing{"a line stays to be seen", {800, 600}, {16384, 1}, true, {}, {0, 299, 800, 1}},
        Placing{"smaller, unscaled", {800, 600}, {400, 300}, false, {}, {200, 150, 400, 300}},
        Placing{"larger, the pointer in its corner",
                {800, 600},
                {1600, 1200},
                false,
                {0, 0},
                {0, 0, 1600, 1200}},
        Placing{"larger, the pointer in the middle",
                {800, 600},
                {1600, 1200},
                false,
                {800, 600},
                {-400, -300, 1600, 1200}},
        Placing{"larger, the pointer outside",
                {800, 600},
                {1600, 1200},
                false,
                {32767, 32767},
                {-800, -600, 1600, 1200}}));

TEST(PicturePlace, TouchesAllPixelsThatAPartHasToDoWith)
{
    const PicturePlace same{{100, 0, 800, 600}, {800, 600}};
    EXPECT_EQ(same.touched({10, 20, 30, 40}), QRect(110, 20, 30, 40));
    const PicturePlace twice{{0, 0, 800, 600}, {400, 300}};
    EXPECT_EQ(twice.touched({10, 20, 30, 40}), QRect(18, 38, 64, 84)) << "neighbours are mixed in";
    EXPECT_EQ(twice.touched({0, 0, 400, 300}), QRect(0, 0, 800, 600)) << "but none outside";
    const PicturePlace third{{0, 0, 100, 100}, {300, 300}};
    EXPECT_EQ(third.touched({3, 3, 1, 1}), QRect(0, 0, 2, 2));
}

TEST(ExactRatio, IsWhatTheCompositorRoundedUp)
{
    struct Case {
        QSize pixels;
        QSize points;
        double rounded;
        double exact;
    };
    const Case cases[] = {
        {{1920, 1080}, {1280, 720}, 2, 1.5},
        {{1080, 1920}, {720, 1280}, 2, 1.5},
        {{1366, 768}, {910, 512}, 2, 1.5}, // the 910.67 points were cut off
        {{1920, 1080}, {1097, 617}, 2, 1.75},
        {{2560, 1600}, {1024, 640}, 3, 2.5},
        {{1920, 1080}, {1920, 1080}, 1, 1},
        {{1920, 1080}, {3840, 2160}, 1, 0.5},
        {{1920, 1080}, {1280, 720}, 1.5, 1.5}, // Qt knows it
        {{1920, 1080}, {960, 540}, 3, 3},      // one of them is already changed
        {{}, {1280, 720}, 2, 2},
        {{1920, 1080}, {}, 2, 2},
    };
    for (const auto& [pixels, points, rounded, exact] : cases)
        EXPECT_EQ(exactRatio(pixels, points, rounded), exact)
            << pixels.width() << " to " << points.width();
}

TEST(ScreenToTell, IsInPixelsAndWithinTheBoundsOfTheLink)
{
    EXPECT_EQ(screenToTell({1920, 1200}, 1, 59.94), (LinkDeviceScreen{1920, 1200, 100, 60}));
    EXPECT_EQ(screenToTell({800, 1280}, 2, 60), (LinkDeviceScreen{1600, 2560, 200, 60}));
    EXPECT_EQ(screenToTell({1536, 864}, 1.25, 144), (LinkDeviceScreen{1920, 1080, 125, 144}));
    EXPECT_EQ(screenToTell({0, 99999}, 20, 0), (LinkDeviceScreen{1, 16384, 800, 1}));
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(screenToTell({800, 600}, 0.1, none), (LinkDeviceScreen{80, 60, 50, 1}));
}

} // namespace
