#include "Common/CGGeometry_Additions.h"

#include "Tests/Support/GermanLocale.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

using farview::Point;

namespace
{

std::string printed(double value)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%g", value);
    return text.data();
}

TEST(CGGeometry, APointAndASizeArePairsInBracesAndARectangleIsAPairOfThem)
{
    EXPECT_EQ(NSStringFromCGPoint({1.5, -2}), "{ 1.5, -2 }");
    EXPECT_EQ(NSStringFromCGSize({1.5, 2}), "{ 1.5, 2 }");
    EXPECT_EQ(NSStringFromCGRect({{0, -1}, {2560, 0.25}}), "{ { 0, -1 }, { 2560, 0.25 } }");
}

TEST(CGGeometry, ATransformNamesItsSixNumbers)
{
    EXPECT_EQ(NSStringFromCGAffineTransform({}), "a=1 b=0 c=0 d=1 tx=0 ty=0");
    EXPECT_EQ(NSStringFromCGAffineTransform({1, 2.5, -3, 4, 1e10, 0.00001}),
              "a=1 b=2.5 c=-3 d=4 tx=1e+10 ty=1e-05");
}

TEST(CGGeometry, NumbersLookAsPrintfWritesThem)
{
    const std::vector<double> values = {0.0,
                                        -0.0,
                                        0.1,
                                        1.0 / 3,
                                        123456.0,
                                        1234567.0,
                                        999999.5,
                                        0.0001,
                                        0.00001234567,
                                        1e100,
                                        -1e-300,
                                        5e-324,
                                        std::numeric_limits<double>::max(),
                                        INFINITY,
                                        -INFINITY,
                                        NAN};
    for (const double value : values)
        EXPECT_EQ(NSStringFromCGPoint({value, 0}), "{ " + printed(value) + ", 0 }");
}

TEST(CGGeometry, NumbersHaveAPointWhateverTheLocale)
{
    const GermanLocale german;
    ASSERT_TRUE(german.isInForce()) << "localedef could not make it";
    ASSERT_EQ(printed(1.5), "1,5");
    EXPECT_EQ(NSStringFromCGPoint({1.5, 1234.5}), "{ 1.5, 1234.5 }");
    EXPECT_EQ(NSStringFromCGSize({1.5, 2}), "{ 1.5, 2 }");
    EXPECT_EQ(NSStringFromCGAffineTransform({0.5, 0, 0, 0.5, 0, 0}),
              "a=0.5 b=0 c=0 d=0.5 tx=0 ty=0");
}

TEST(CGGeometry, ADistanceIsThatOfTheStraightLine)
{
    EXPECT_EQ(CGPointDistance({0, 0}, {3, 4}), 5.0F);
    EXPECT_EQ(CGPointDistance({3, 4}, {0, 0}), 5.0F);
    EXPECT_EQ(CGPointDistance({-1, -1}, {-1, -1}), 0.0F);
}

TEST(CGGeometry, ADistanceHasThePrecisionOfAFloat)
{
    // In doubles this would be a little more than 16777216; a float has no such number.
    EXPECT_EQ(CGPointDistance({0, 0}, {16777217.0, 0}), 16777216.0F);
    // The squares are added as doubles: as floats they would give 4097.61475.
    EXPECT_EQ(CGPointDistance({0, 0}, {4097, 71}), 4097.61523F);
    // A sum beyond a float's range is not.
    EXPECT_EQ(CGPointDistance({0, 0}, {1e30, 0}), std::numeric_limits<float>::infinity());
    // The nearest float to a tenth is a little more than a tenth.
    EXPECT_FALSE(CGPointProximateWithin({0, 0}, {0.1, 0}, 0.1));
}

TEST(CGGeometry, ExactlyAsFarAsAllowedIsWithin)
{
    EXPECT_TRUE(CGPointProximateWithin({0, 0}, {3, 4}, 5));
    EXPECT_FALSE(CGPointProximateWithin({0, 0}, {3, 4}, 4.99));
    EXPECT_TRUE(CGPointProximateWithin({1, 1}, {1, 1}, 0));
    EXPECT_FALSE(CGPointProximateWithin({1, 1}, {1, 1}, -1));
}

TEST(CGGeometry, NothingIsWithinAnUnknownDistance)
{
    EXPECT_FALSE(CGPointProximateWithin({0, 0}, {3, 4}, NAN));
    EXPECT_FALSE(CGPointProximateWithin({NAN, 0}, {3, 4}, INFINITY));
}

} // namespace
