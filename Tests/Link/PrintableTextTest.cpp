#include "Link/LinkCodec.h"

#include <gtest/gtest.h>

using namespace farview;

TEST(PrintableText, KeepsWellFormedText)
{
    EXPECT_EQ(printableText("Büro 5 – 画面 😀", 200), "Büro 5 – 画面 😀");
    EXPECT_EQ(printableText("", 200), "");
}

TEST(PrintableText, TurnsControlCharactersIntoBlanks)
{
    EXPECT_EQ(printableText("a\nb\tc\x7F", 200), "a b c ");
    EXPECT_EQ(printableText(std::string_view("a\0b", 3), 200), "a b");
    EXPECT_EQ(printableText("a\xC2\x85z", 200), "a z");
}

TEST(PrintableText, MarksWhatIsNoText)
{
    EXPECT_EQ(printableText("\xFF\xFE", 200), "??");
    EXPECT_EQ(printableText("\xC0\xAF", 200), "??") << "overlong";
    EXPECT_EQ(printableText("\xED\xA0\x80", 200), "???") << "surrogate";
    EXPECT_EQ(printableText("\xF4\x90\x80\x80", 200), "????") << "beyond the last character";
    EXPECT_EQ(printableText("ab\xE2\x82", 200), "ab??") << "cut";
}

TEST(PrintableText, CutsAtTheBorderOfACharacter)
{
    EXPECT_EQ(printableText("abc", 2), "ab");
    EXPECT_EQ(printableText("aü", 2), "a");
    EXPECT_EQ(printableText("aü", 3), "aü");
    EXPECT_EQ(printableText(std::string(1 << 20, 'x'), 200).size(), 200U);
}
