#include "Platform/Types/URL.h"

#include <gtest/gtest.h>

using farview::URL;

namespace
{

TEST(URL, KnowsAFileFromAnAddress)
{
    const auto file = URL::fileURLWithPath("/a folder/file");
    EXPECT_TRUE(file.isFileURL());
    EXPECT_EQ(file.path(), "/a folder/file");
    const auto address = URL::URLWithString("https://example.org/x");
    ASSERT_TRUE(address);
    EXPECT_FALSE(address->isFileURL());
    EXPECT_EQ(address->path(), "");
    EXPECT_EQ(address->absoluteString(), "https://example.org/x");
}

TEST(URL, ATextWithoutASchemeIsNoAddress)
{
    EXPECT_EQ(URL::URLWithString("example.org"), std::nullopt);
    EXPECT_EQ(URL::URLWithString(":x"), std::nullopt);
    EXPECT_EQ(URL::URLWithString("file:///x"), URL::fileURLWithPath("/x"));
}

} // namespace
