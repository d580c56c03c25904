#include "Platform/Posix/PropertyLists/StringsFile.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using Texts = std::map<std::string, std::string>;

Texts texts(std::string_view bytes)
{
    const auto result = StringsFile::parse(bytes);
    EXPECT_TRUE(result.texts) << result.reason;
    return result.texts.value_or(Texts{});
}

TEST(StringsFile, ReadsPairsBetweenComments)
{
    EXPECT_EQ(
        texts("/* a \"quoted\" comment */\n\"On\" = \"An\";\n// another\n\"Off\"=\"Aus\";//end"),
        (Texts{{"On", "An"}, {"Off", "Aus"}}));
    EXPECT_EQ(texts(""), Texts{});
    EXPECT_EQ(texts("\xEF\xBB\xBF \"a\" = \"\";"), (Texts{{"a", ""}}));
}

TEST(StringsFile, ReadsEscapes)
{
    EXPECT_EQ(texts(R"("k\"\\" = "a\nb\tc\r\u00e9\U2026";)"),
              (Texts{{"k\"\\", "a\nb\tc\r\u00e9\u2026"}}));
    EXPECT_EQ(texts("\"two\nlines\" = \"/* no comment */\";"),
              (Texts{{"two\nlines", "/* no comment */"}}));
}

TEST(StringsFile, RefusesEverythingElse)
{
    for (const char* bytes :
         {"key = \"text\";", "\"key\" = text;", "\"key\" \"text\";", "\"key\" = \"text\"",
          "\"key\"", "\"key\" = \"text", "\"key\" = \"te\\", "\"key\" = \"\\q\";",
          "\"key\" = \"\\u12\";", "\"key\" = \"\\ud800\";", "\"key\" = \"\\u0000\";",
          "\"k\" = \"\\u+123\";", "/* no end", "\"key\" = \"text\"; trailing",
          "\"a\" = \"1\"; \"a\" = \"2\";", "\"a\" = \"\xFF\";"})
        EXPECT_FALSE(StringsFile::parse(bytes).texts) << bytes;
    EXPECT_FALSE(StringsFile::parse(std::string_view("\"a\" = \"\0\";", 10)).texts);
    EXPECT_EQ(StringsFile::parse(std::string(2u << 20, ' ')).reason, "too large");
}

TEST(StringsFile, SaysInWhichLineItIsWrong)
{
    EXPECT_EQ(StringsFile::parse("\"a\" = \"1\";\n\n\"b\" = \"\\q\";\n").reason,
              "line 3: an unknown escape");
}

} // namespace
} // namespace farview
