#include "Platform/Posix/UTF8.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(UTF8, EveryCharacterReadsBackAsWritten)
{
    for (char32_t character = 1; character <= 0x10FFFF; ++character) {
        if (character == 0xD800)
            character = 0xE000;
        std::string text;
        appendUTF8(text, character);
        const auto decoded = decodeCharacter(text);
        ASSERT_EQ(decoded.value, character);
        ASSERT_EQ(decoded.length, text.size());
    }
}

TEST(UTF8, BrokenBytesAreTakenOneByOne)
{
    for (const char* text :
         {"\x80", "\xC0\xAF", "\xC1\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF0\x80\x80\x80",
          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\xE2(", "\xFF"}) {
        EXPECT_FALSE(decodeCharacter(text).value);
        EXPECT_EQ(decodeCharacter(text).length, 1u);
        EXPECT_FALSE(isValidUTF8(text));
    }
    EXPECT_TRUE(isValidUTF8("a\u00e9\u4e2d\U0010FFFF"));
    EXPECT_TRUE(isValidUTF8(""));
}

} // namespace
} // namespace farview
