#include "Platform/Posix/PropertyLists/PropertyListWriter.h"

#include "Platform/Posix/PropertyLists/PropertyListReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using namespace farview;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

std::optional<PropertyList> readBack(const PropertyList& list)
{
    const auto written = PropertyListWriter::write(list);
    return written.bytes ? PropertyListReader::read(*written.bytes).list : std::nullopt;
}

PropertyList arrayOfDepth(std::size_t depth)
{
    PropertyList list = Array{};
    for (std::size_t level = 1; level < depth; ++level)
        list = Array{std::move(list)};
    return list;
}

TEST(PropertyListWriter, WritesSortedKeysOneElementPerLine)
{
    EXPECT_EQ(PropertyListWriter::write(Dictionary{{"b", 2}, {"a", Array{true, "x"}}}).bytes,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
              "\t<key>a</key>\n\t<array>\n\t\t<true/>\n\t\t<string>x</string>\n\t</array>\n"
              "\t<key>b</key>\n\t<integer>2</integer>\n</dict>\n</plist>\n");
}

TEST(PropertyListWriter, KeepsEveryTextThatXMLCanCarry)
{
    for (const char* text : {"", " ", "  a  ", "\n", "\r", "\r\n", "\t", "<&>\"'", "]]>", "&#13;",
                             "\u00e9\U0001f600", "\u0085\u2028"})
        EXPECT_EQ(readBack(text), PropertyList(text)) << text;
}

TEST(PropertyListWriter, ReplacesWhatXMLCannotCarry)
{
    EXPECT_EQ(readBack(std::string("a\0b", 3)), PropertyList("a\uFFFDb"));
    EXPECT_EQ(readBack("\x01\x1F"), PropertyList("\uFFFD\uFFFD"));
    EXPECT_EQ(readBack("a\xFF\xC3"), PropertyList("a\uFFFD\uFFFD"));
    EXPECT_EQ(readBack("\xEF\xBF\xBF"), PropertyList("\uFFFD"));
    EXPECT_EQ(readBack(Dictionary{{"k\x02", true}}), PropertyList(Dictionary{{"k\uFFFD", true}}));
}

TEST(PropertyListWriter, RefusesKeysThatWouldBecomeOne)
{
    EXPECT_EQ(PropertyListWriter::write(Dictionary{{"\x01", 1}, {"\x02", 2}}).reason,
              "two keys that become one");
}

TEST(PropertyListWriter, KeepsEveryDigitOfAReal)
{
    for (const double value :
         {0.1, 1.0 / 3, 1e300, -5e-324, 0.0, 123456789.123456789,
          std::numeric_limits<double>::max(), double{INFINITY}, -double{INFINITY}})
        EXPECT_EQ(readBack(value), PropertyList(value)) << value;
    EXPECT_TRUE(std::isnan(*readBack(double{NAN})->get<double>()));
    EXPECT_TRUE(std::signbit(*readBack(-0.0)->get<double>()));
}

TEST(PropertyListWriter, CutsFractionsOfASecondDown)
{
    EXPECT_EQ(readBack(Date{10.9}), PropertyList(Date{10}));
    EXPECT_EQ(readBack(Date{-0.5}), PropertyList(Date{-1}));
}

TEST(PropertyListWriter, RefusesDatesWithoutAText)
{
    for (const double seconds : {1e12, -1e12, double{NAN}, double{INFINITY}})
        EXPECT_EQ(PropertyListWriter::write(Date{seconds}).reason, "a date that cannot be written");
    EXPECT_TRUE(readBack(Date{253402300799.0}));
    EXPECT_TRUE(readBack(Date{-62135596800.0}));
}

TEST(PropertyListWriter, WritesExactlyAsDeepAsTheReaderReads)
{
    EXPECT_EQ(readBack(arrayOfDepth(128)), arrayOfDepth(128));
    EXPECT_EQ(PropertyListWriter::write(arrayOfDepth(129)).reason, "nested too deeply");
    EXPECT_EQ(PropertyListWriter::write(arrayOfDepth(1000)).reason, "nested too deeply");
}

TEST(PropertyListWriter, WritesNothingThatTheReaderFindsTooLarge)
{
    EXPECT_EQ(PropertyListWriter::write(std::string(9u << 20, 'a')).reason, "too large");
    EXPECT_EQ(PropertyListWriter::write(std::string(2u << 20, '&')).reason, "too large");
    EXPECT_TRUE(readBack(std::string(8000000, 'a')));
}

} // namespace
