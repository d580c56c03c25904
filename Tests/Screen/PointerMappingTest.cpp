#include "Screen/PointerMapping.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

LinkPlace at(double x, double y, std::uint16_t width, std::uint16_t height)
{
    return {static_cast<std::uint32_t>(x * 256), static_cast<std::uint32_t>(y * 256), width,
            height};
}

struct OnMonitor {
    const char* what;
    LinkPlace place;
    MonitorPlace monitor;
    MappedPlace expected;
};

TEST(MappedPlace, IsThePlaceThatTheUserSaw)
{
    const std::vector<OnMonitor> table{
        {"its corner", at(0, 0, 800, 600), {{1920, 0, 800, 600}, 800, 600}, {0, 0, 1920, 0}},
        {"its last pixel",
         at(799, 599, 800, 600),
         {{1920, 0, 800, 600}, 800, 600},
         {799, 599, 2719, 599}},
        {"between pixels",
         at(10.5, 0.25, 800, 600),
         {{0, 0, 800, 600}, 800, 600},
         {10.5, 0.25, 10.5, 0.25}},
        {"left of the main screen",
         at(5, 7, 800, 600),
         {{-800, 40, 800, 600}, 800, 600},
         {5, 7, -795, 47}},
        {"above the main screen",
         at(5, 7, 800, 600),
         {{0, -600, 800, 600}, 800, 600},
         {5, 7, 5, -593}},
        {"scale 2",
         at(800, 100, 1600, 1200),
         {{100, 0, 800, 600}, 1600, 1200},
         {800, 100, 500, 50}},
        {"scale 1.5",
         at(150, 300, 1500, 1200),
         {{0, 10, 1000, 800}, 1500, 1200},
         {150, 300, 100, 210}},
        {"upright", at(3, 1900, 1200, 1920), {{0, 0, 1200, 1920}, 1200, 1920}, {3, 1900, 3, 1900}},
    };
    for (const auto& row : table)
        EXPECT_EQ(mappedPlace(row.place, row.monitor), row.expected) << row.what;
}

TEST(MappedPlace, IsNoneWhereThePictureWasAnother)
{
    const MonitorPlace upright{{0, 0, 600, 800}, 600, 800};
    EXPECT_FALSE(mappedPlace(at(10, 10, 800, 600), upright)) << "the device was turned meanwhile";
    EXPECT_FALSE(mappedPlace(at(10, 10, 1200, 1600), upright)) << "it was twice as sharp";
    EXPECT_FALSE(mappedPlace(at(600, 10, 600, 800), upright)) << "right of the picture";
    EXPECT_FALSE(mappedPlace(at(10, 800, 600, 800), upright)) << "below the picture";
    EXPECT_FALSE(mappedPlace(LinkPlace{}, MonitorPlace{})) << "no monitor";
}

struct OnGlass {
    const char* what;
    double x;
    double y;
    PictureOnGlass picture;
    LinkPlace expected;
};

TEST(PicturePlace, IsThePixelUnderTheFinger)
{
    const std::vector<OnGlass> table{
        {"pixel for pixel", 10, 20, {0, 0, 800, 600, 800, 600}, at(10, 20, 800, 600)},
        {"black to the left and right",
         110,
         20,
         {100, 0, 800, 600, 800, 600},
         at(10, 20, 800, 600)},
        {"black above and below", 10, 70, {0, 50, 800, 600, 800, 600}, at(10, 20, 800, 600)},
        {"drawn at half size", 10, 20, {0, 0, 400, 300, 800, 600}, at(20, 40, 800, 600)},
        {"drawn at twice the size", 11, 20, {0, 0, 1600, 1200, 800, 600}, at(5.5, 10, 800, 600)},
        {"larger than the glass", 0, 0, {-100, -50, 800, 600, 800, 600}, at(100, 50, 800, 600)},
        {"the last of it",
         799.999,
         599.999,
         {0, 0, 800, 600, 800, 600},
         {800 * 256 - 1, 600 * 256 - 1, 800, 600}},
    };
    for (const auto& row : table)
        EXPECT_EQ(picturePlace(row.x, row.y, row.picture, false), row.expected) << row.what;
}

TEST(PicturePlace, IsNoneBesideThePictureButItsEdgeForWhoeverBeganOnIt)
{
    const PictureOnGlass picture{100, 50, 800, 600, 800, 600};
    EXPECT_FALSE(picturePlace(99.9, 60, picture, false));
    EXPECT_FALSE(picturePlace(110, 49.9, picture, false));
    EXPECT_FALSE(picturePlace(900, 60, picture, false));
    EXPECT_FALSE(picturePlace(110, 650, picture, false));
    EXPECT_EQ(picturePlace(-5, 60, picture, true), at(0, 10, 800, 600));
    EXPECT_EQ(picturePlace(2000, 2000, picture, true),
              (LinkPlace{800 * 256 - 1, 600 * 256 - 1, 800, 600}));
}

TEST(PicturePlace, LeadsBackToTheMonitorsPixel)
{
    const MonitorPlace monitor{{1920, 100, 800, 600}, 800, 600};
    const auto place = picturePlace(223, 172, {100, 50, 400, 300, 800, 600}, false);
    ASSERT_TRUE(place);
    EXPECT_EQ(mappedPlace(*place, monitor), (MappedPlace{246, 244, 2166, 344}));
}

} // namespace
