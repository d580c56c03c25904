#include "Applications/Update/FeedReader.h"
#include "Tests/Update/Release.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

std::string feedWith(const std::string& items)
{
    return "<rss xmlns:farview=\"urn:x-farview:updates\" farview:signed=\"2026-11-22T12:00:00Z\" "
           "farview:expires=\"2027-02-20T12:00:00Z\"><channel>" +
           items + "</channel></rss>";
}

std::vector<UpdateItem> itemsOf(const std::string& feed)
{
    const auto result = FeedReader::read(feed);
    EXPECT_TRUE(result.items) << result.reason;
    return result.items.value_or(std::vector<UpdateItem>());
}

TEST(FeedReader, ReadsAnItem)
{
    const auto items = itemsOf(
        feedWith("<title>Updates</title><item><title>1.1</title>"
                 "<farview:version> 1.1\n</farview:version>"
                 "<farview:minimumSystemVersion>10.9</farview:minimumSystemVersion>"
                 "<description><![CDATA[<p>Faster &amp; <b>better</b></p>]]></description>"
                 "<enclosure url=\"https://example.org/a.tar.xz?x=1&amp;y=2\" length=\"123\" "
                 "type=\"application/octet-stream\" farview:edSignature=\"c2ln\"/></item>"));
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].version, "1.1");
    EXPECT_EQ(items[0].minimumSystemVersion, "10.9");
    EXPECT_EQ(items[0].notes, "Faster & better");
    EXPECT_EQ(items[0].address, "https://example.org/a.tar.xz?x=1&y=2");
    EXPECT_EQ(items[0].length, 123u);
    EXPECT_EQ(items[0].signature, "c2ln");
}

TEST(FeedReader, ReadsWhenAFeedWasSignedAndWhenItExpires)
{
    const auto dates = FeedReader::read(feedWith("")).dates;
    EXPECT_EQ(dates.signedAt, Date{1'795'348'800});
    EXPECT_EQ(dates.expires, Date{1'803'124'800});
}

TEST(FeedReader, TakesTheVersionFromTheEnclosureWhereItStandsThere)
{
    const auto items = itemsOf(
        feedWith("<item><enclosure url=\"a\" farview:version=\"1.2\" length=\"1\"/></item>"));
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].version, "1.2");
}

TEST(FeedReader, PassesOverWhatCannotBeAnUpdate)
{
    for (const char* item :
         {"<item/>", "<item><enclosure url=\"a\"/></item>",
          "<item><farview:version>1.1</farview:version></item>",
          "<item><farview:version>1.1b2</farview:version><enclosure url=\"a\"/></item>",
          "<item><version>1.1</version><enclosure url=\"a\"/></item>",
          "<item><farview:version>1</farview:version><farview:minimumSystemVersion>new"
          "</farview:minimumSystemVersion><enclosure url=\"a\"/></item>",
          "<item><other:version xmlns:other=\"urn:other\">1.1</other:version>"
          "<enclosure url=\"a\"/></item>",
          "<other><farview:version>1.1</farview:version><enclosure url=\"a\"/></other>",
          "<item><x><farview:version>1.1</farview:version><enclosure url=\"a\"/></x></item>"})
        EXPECT_EQ(itemsOf(feedWith(item)).size(), 0u) << item;
}

TEST(FeedReader, ALengthIsANumberOrNothing)
{
    struct Row {
        const char* text;
        std::uint64_t length;
    };
    const Row rows[] = {{"0", 0},  {"12", 12},  {" 12 ", 12},
                        {"-1", 0}, {"1e9", 0},  {"5000000000", 5'000'000'000},
                        {"", 0},   {"0x10", 0}, {"99999999999999999999999", ~std::uint64_t{0}}};
    for (const auto& row : rows) {
        const auto items = itemsOf(feedWith("<item><farview:version>1</farview:version>"
                                            "<enclosure url=\"a\" length=\"" +
                                            std::string(row.text) + "\"/></item>"));
        ASSERT_EQ(items.size(), 1u);
        EXPECT_EQ(items[0].length, row.length) << row.text;
    }
}

/// A feed whose attribute of that name is in nobody's namespace.
std::string without(const std::string& name)
{
    std::string feed = feedWith("");
    return feed.erase(feed.find("farview:" + name), std::string("farview:").size());
}

TEST(FeedReader, RefusesWhatIsNoFeed)
{
    const std::string item =
        "<item><farview:version>1</farview:version><enclosure url=\"a\"/></item>";
    std::string deep;
    for (int index = 0; index < 40; ++index)
        deep += "<x>";
    std::string many;
    for (int index = 0; index < 201; ++index)
        many += item;
    for (const std::string& feed :
         {std::string(), std::string("text"), std::string("<html/>"), std::string("<rss>"),
          std::string("<rss version=\"2.0\"/>"), without("signed"), without("expires"),
          std::string("<rss/><rss/>"), "<!DOCTYPE rss SYSTEM \"x\">" + feedWith("&x;"),
          "<!DOCTYPE rss [<!ENTITY x \"y\">]>" + feedWith(item), feedWith("&x;"),
          "<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + feedWith(item),
          "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + feedWith(item),
          feedWith("<item>\xFF</item>"), feedWith(std::string(1, '\0')), feedWith(deep),
          feedWith(many), feedWith(std::string(1u << 20, ' '))}) {
        const auto result = FeedReader::read(feed);
        EXPECT_FALSE(result.items) << feed.substr(0, 100);
        EXPECT_FALSE(result.reason.empty()) << feed.substr(0, 100);
    }
}

TEST(FeedReader, AFeedWithoutItemsIsAFeed)
{
    EXPECT_TRUE(itemsOf("<?xml version=\"1.0\" encoding=\"utf-8\"?>" + feedWith("")).empty());
}

} // namespace
} // namespace farview
