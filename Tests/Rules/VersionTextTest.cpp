#include "Common/Rules/VersionText.h"

#include "Common/Rules/FilledText.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(VersionText, IsTheVersionWithTheBuild)
{
    EXPECT_EQ(versionText("1.2"), "1.2 (15644)");
    EXPECT_EQ(versionText(std::nullopt), "(null) (15644)");
    EXPECT_EQ(versionText(""), " (15644)");
}

TEST(VersionText, TheToolTipHasALineForEachPieceAndNoneAfterTheLast)
{
    EXPECT_EQ(versionToolTip({{"Server", "1.2"}, {"Icon", std::nullopt}}),
              "Server: 1.2\nIcon: (null)");
    EXPECT_EQ(versionToolTip({}), "");
}

TEST(FilledText, TheValueTakesTheFirstPlace)
{
    EXPECT_EQ(filledText("to %@!", "Pad"), "to Pad!");
    EXPECT_EQ(filledText("to %@ and %@", "%@%@"), "to %@%@ and %@");
    EXPECT_EQ(filledText("to no one", "Pad"), "to no one");
    EXPECT_EQ(textOrNull(std::nullopt), "(null)");
    EXPECT_EQ(textOrNull("x"), "x");
}

TEST(FilledText, ValuesTakeThePlacesThatNameThem)
{
    EXPECT_EQ(filledPlaces("%2$@ of %1$@", {"a", "b"}), "b of a");
    EXPECT_EQ(filledPlaces("%1$@ %2$@", {"%2$@", "b"}), "%2$@ b");
    EXPECT_EQ(filledPlaces("%1$@ %3$@ %0$@", {"a", "b"}), "a %3$@ %0$@");
    EXPECT_EQ(filledPlaces("%1$@ %", {"200"}), "200 %");
    EXPECT_EQ(filledPlaces("%1$", {"200"}), "%1$");
}

} // namespace
} // namespace farview
