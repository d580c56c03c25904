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

TEST(URL, WhatAnAddressCannotCarryIsSpelledOutInItOnly)
{
    const auto page = URL::URLWithString("file:///a%20folder/50%25%23%3f/\u00e4.html");
    ASSERT_TRUE(page);
    EXPECT_EQ(page->path(), "/a folder/50%#?/\u00e4.html");
    EXPECT_EQ(page->absoluteString(), "file:///a%20folder/50%25%23%3F/\u00e4.html");
    EXPECT_EQ(URL::URLWithString(page->absoluteString()), page);
    EXPECT_EQ(URL::URLWithString("file:///100%/%zz%2")->path(), "/100%/%zz%2");
    EXPECT_EQ(URL::URLWithString("file:///%00")->path(), "/%00") << "no path has a NUL in it";
    EXPECT_EQ(URL::URLWithString("https://example.org/a%20b")->absoluteString(),
              "https://example.org/a%20b");
}

} // namespace
