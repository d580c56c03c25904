#include "Platform/Fake/FakeText.h"

#include <gtest/gtest.h>

using farview::FakeText;

namespace
{

TEST(FakeText, MapsCaseOutsideOfASCIIToo)
{
    const FakeText text;
    EXPECT_EQ(text.lowercase("ABC ÄÖÜ ΣΩ ЖЯ"), "abc äöü σω жя");
    EXPECT_EQ(text.uppercase("abc äöü σω жя"), "ABC ÄÖÜ ΣΩ ЖЯ");
    EXPECT_EQ(text.uppercase("𐐨"), "𐐀") << "four bytes long";
}

TEST(FakeText, LeavesWhatHasNoCaseOrIsNoTextAlone)
{
    const FakeText text;
    EXPECT_EQ(text.uppercase("1 ß 漢字 😀"), "1 ß 漢字 😀");
    const std::string broken = "\xff\xc3 \xe2\x82 \xc1\x81";
    EXPECT_EQ(text.lowercase(broken), broken);
    EXPECT_EQ(text.lowercase(""), "");
}

} // namespace
