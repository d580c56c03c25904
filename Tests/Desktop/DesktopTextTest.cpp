#include "Platform/Desktop/DesktopText.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(DesktopText, ChangesTheCaseOfEveryScript)
{
    const DesktopText text;
    EXPECT_EQ(text.lowercase("GERÄT ΣΑΝ ЖУК"), "gerät σαν жук");
    EXPECT_EQ(text.uppercase("gerät straße жук"), "GERÄT STRASSE ЖУК");
    EXPECT_EQ(text.lowercase("I"), "i");
}

TEST(DesktopText, KeepsWhatHasNoCase)
{
    const DesktopText text;
    EXPECT_EQ(text.lowercase(""), "");
    EXPECT_EQ(text.uppercase("屏幕 1.2.3 🖥"), "屏幕 1.2.3 🖥");
}

} // namespace
} // namespace farview
