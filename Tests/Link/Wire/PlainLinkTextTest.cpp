#include "Link/Wire/LinkCodec.h"

#include <gtest/gtest.h>

using namespace farview;

TEST(PlainLinkText, KeepsWellFormedText)
{
    EXPECT_EQ(plainLinkText("Büro 5 – 画面 😀", 200), "Büro 5 – 画面 😀");
    EXPECT_EQ(plainLinkText("", 200), "");
}

TEST(PlainLinkText, TurnsControlCharactersIntoBlanks)
{
    EXPECT_EQ(plainLinkText("a\nb\tc\x7F", 200), "a b c ");
    EXPECT_EQ(plainLinkText(std::string_view("a\0b", 3), 200), "a b");
    EXPECT_EQ(plainLinkText("a\xC2\x85z", 200), "a z");
}

TEST(PlainLinkText, MarksWhatIsNoText)
{
    EXPECT_EQ(plainLinkText("\xFF\xFE", 200), "??");
    EXPECT_EQ(plainLinkText("\xC0\xAF", 200), "??") << "overlong";
    EXPECT_EQ(plainLinkText("\xED\xA0\x80", 200), "???") << "surrogate";
    EXPECT_EQ(plainLinkText("\xF4\x90\x80\x80", 200), "????") << "beyond the last character";
    EXPECT_EQ(plainLinkText("ab\xE2\x82", 200), "ab??") << "cut";
}

TEST(PlainLinkText, CutsAtTheBorderOfACharacter)
{
    EXPECT_EQ(plainLinkText("abc", 2), "ab");
    EXPECT_EQ(plainLinkText("aü", 2), "a");
    EXPECT_EQ(plainLinkText("aü", 3), "aü");
    EXPECT_EQ(plainLinkText(std::string(1 << 20, 'x'), 200).size(), 200U);
}
