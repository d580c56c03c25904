#include "Common/Rules/Appearance.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

TEST(ColorScheme, OwnDarkColorsAreForThoseWhoWantThemAndHaveNone)
{
    struct Row {
        ColorPreference preference;
        bool themeIsDark;
        ColorScheme expected;
    };
    const Row rows[] = {
        {ColorPreference::none, false, ColorScheme::theme},
        {ColorPreference::none, true, ColorScheme::theme},
        {ColorPreference::light, false, ColorScheme::theme},
        {ColorPreference::light, true, ColorScheme::theme},
        {ColorPreference::dark, false, ColorScheme::ownDark},
        {ColorPreference::dark, true, ColorScheme::theme},
    };
    for (const Row& row : rows)
        EXPECT_EQ(colorScheme(row.preference, row.themeIsDark), row.expected)
            << int(row.preference) << ' ' << row.themeIsDark;
}

TEST(Stillness, IsWantedByWhoeverSaysSoInEitherPlace)
{
    EXPECT_FALSE(wantsStillness({}));
    EXPECT_TRUE(wantsStillness({ColorPreference::none, true, true}));
    EXPECT_TRUE(wantsStillness({ColorPreference::none, false, false}));
    EXPECT_TRUE(wantsStillness({ColorPreference::none, true, false}));
}

} // namespace
