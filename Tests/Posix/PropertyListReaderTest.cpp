#include "Platform/Posix/PropertyLists/PropertyListReader.h"

#include "Platform/Posix/PropertyLists/PropertyListWriter.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace
{

using namespace farview;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

std::string document(const std::string& body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + body +
           "</plist>\n";
}

std::optional<PropertyList> read(const std::string& body)
{
    return PropertyListReader::read(document(body)).list;
}

/// Why the bytes are refused; empty when they are not.
std::string refusal(const std::string& bytes)
{
    const auto result = PropertyListReader::read(bytes);
    EXPECT_EQ(result.list.has_value(), result.reason.empty());
    return result.reason;
}

std::string nested(int depth, const std::string& inner)
{
    std::string text;
    for (int level = 0; level < depth; ++level)
        text += "<array>";
    text += inner;
    for (int level = 0; level < depth; ++level)
        text += "</array>";
    return text;
}

TEST(PropertyListReader, KeepsTheTypeOfEachValue)
{
    EXPECT_EQ(read("<true/>"), PropertyList(true));
    EXPECT_EQ(read("<false></false>"), PropertyList(false));
    EXPECT_EQ(read("<integer>1</integer>"), PropertyList(1));
    EXPECT_EQ(read("<real>1</real>"), PropertyList(1.0));
    EXPECT_EQ(read("<string>1</string>"), PropertyList("1"));
    EXPECT_EQ(read("<data>MQ==</data>"), PropertyList(Data::fromText("1")));
    EXPECT_EQ(read("<date>1970-01-01T00:00:01Z</date>"), PropertyList(Date{1}));
    EXPECT_EQ(read("<array><true/></array>"), PropertyList(Array{true}));
    EXPECT_EQ(read("<dict><key>1</key><true/></dict>"), PropertyList(Dictionary{{"1", true}}));
}

TEST(PropertyListReader, TakesAVersionAsGivenOrLeftOutAndNoOther)
{
    EXPECT_EQ(refusal("<plist><true/></plist>"), "");
    EXPECT_NE(refusal("<plist version=\"2.0\"><true/></plist>"), "");
    EXPECT_NE(refusal("<plist version=\"1.0\" colour=\"red\"><true/></plist>"), "");
    EXPECT_NE(refusal("<?xml version=\"1.1\"?><plist><true/></plist>"), "");
}

TEST(PropertyListReader, AcceptsADocumentTypeThatDeclaresNothing)
{
    EXPECT_EQ(refusal("<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"http://x/p.dtd\">"
                      "<plist version=\"1.0\"><string>a&amp;b&#65;</string></plist>"),
              "");
}

TEST(PropertyListReader, RefusesDeclarationsAndUnknownEntities)
{
    EXPECT_EQ(refusal("<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>"),
              "declarations in the document type");
    EXPECT_EQ(refusal("<!DOCTYPE plist PUBLIC \"p\" \"s\"><plist><string>&a;</string></plist>"),
              "an unknown entity");
    EXPECT_NE(refusal("<plist><string>&a;</string></plist>"), "");
}

TEST(PropertyListReader, RefusesAnEntityBombBeforeItExplodes)
{
    std::string bomb = "<!DOCTYPE plist [<!ENTITY e0 \"aaaaaaaaaa\">";
    for (int level = 1; level < 30; ++level) {
        const auto inner = "&e" + std::to_string(level - 1) + ";";
        bomb +=
            "<!ENTITY e" + std::to_string(level) + " \"" + inner + inner + inner + inner + "\">";
    }
    bomb += "]><plist><string>&e29;</string></plist>";
    EXPECT_EQ(refusal(bomb), "declarations in the document type");
}

TEST(PropertyListReader, RefusesWhatIsNoPropertyList)
{
    for (const char* bytes :
         {"", " ", "hello", "<html/>", "<dict/>", "<plist/>", "<plist></plist>",
          "<plist>text<true/></plist>", "<plist><true/><true/></plist>",
          "<plist><plist><true/></plist></plist>", "<plist><key>a</key></plist>",
          "<plist><null/></plist>", "<plist><array>text</array></plist>",
          "<plist><string><b/></string></plist>", "<plist><true>no</true></plist>",
          "<plist><integer size=\"2\">1</integer></plist>",
          "<plist><true/></plist><plist><true/></plist>"})
        EXPECT_NE(refusal(bytes), "") << bytes;
}

TEST(PropertyListReader, RefusesDictionariesThatAreNone)
{
    EXPECT_EQ(refusal(document("<dict><key>a</key><true/><key>a</key><true/></dict>")),
              "a key twice");
    EXPECT_EQ(refusal(document("<dict><key>a</key></dict>")), "a key without a value");
    EXPECT_NE(refusal(document("<dict><key>a</key><key>b</key></dict>")), "");
    EXPECT_NE(refusal(document("<dict><true/></dict>")), "");
    EXPECT_NE(refusal(document("<array><key>a</key></array>")), "");
}

TEST(PropertyListReader, RefusesMalformedNumbers)
{
    for (const char* text :
         {"", "x", "1x", "1.5", "0x10", "--1", "+-1", "9223372036854775808", "1 2"})
        EXPECT_FALSE(read("<integer>" + std::string(text) + "</integer>")) << text;
    for (const char* text : {"", "x", "1,5", "1.5.1", "1e999", "+-1"})
        EXPECT_FALSE(read("<real>" + std::string(text) + "</real>")) << text;
}

TEST(PropertyListReader, ReadsNumbersAtTheirLimits)
{
    EXPECT_EQ(read("<integer>-9223372036854775808</integer>"), PropertyList(INT64_MIN));
    EXPECT_EQ(read("<integer> +9223372036854775807\n</integer>"), PropertyList(INT64_MAX));
    EXPECT_EQ(read("<real>-1.5e-300</real>"), PropertyList(-1.5e-300));
    EXPECT_EQ(read("<real>+infinity</real>"), PropertyList(INFINITY));
    EXPECT_EQ(read("<real>-infinity</real>"), PropertyList(-INFINITY));
    EXPECT_TRUE(std::isnan(*read("<real>nan</real>")->get<double>()));
}

TEST(PropertyListReader, ReadsNumbersInAnyLocale)
{
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* locale : {"de_DE.UTF-8", "C.UTF-8", ""})
        std::setlocale(LC_NUMERIC, locale);
    EXPECT_EQ(read("<real>1.5</real>"), PropertyList(1.5));
    EXPECT_NE(PropertyListWriter::write(1.5).bytes->find("<real>1.5</real>"), std::string::npos);
    std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(PropertyListReader, ReadsDatesThatExistAndNoOthers)
{
    EXPECT_EQ(read("<date>2024-02-29T23:59:59Z</date>"), PropertyList(Date{1709251199}));
    EXPECT_EQ(read("<date>1960-01-01T00:00:00Z</date>"), PropertyList(Date{-315619200}));
    for (const char* text :
         {"", "2023-02-29T00:00:00Z", "2024-13-01T00:00:00Z", "2024-01-01T24:00:00Z",
          "2024-01-01T00:60:00Z", "2024-01-01", "2024-01-01T00:00:00", "2024-01-01T00:00:00+1",
          "-024-01-01T00:00:00Z"})
        EXPECT_FALSE(read("<date>" + std::string(text) + "</date>")) << text;
}

TEST(PropertyListReader, ReadsDataWithWhiteSpaceAndRefusesWhatIsNoBase64)
{
    EXPECT_EQ(read("<data>\n\taGVs\n\tbG8=\n</data>"), PropertyList(Data::fromText("hello")));
    EXPECT_EQ(read("<data/>"), PropertyList(Data{}));
    EXPECT_EQ(read("<data>+/8=</data>"), PropertyList(Data{{0xFB, 0xFF}}));
    for (const char* text : {"a", "aG", "aGV", "aG=", "aGVs=", "aGVs====", "=aGV", "aG=V",
                             "a===", "aGV-", "aG==x", "aG==="})
        EXPECT_FALSE(read("<data>" + std::string(text) + "</data>")) << text;
}

TEST(PropertyListReader, RefusesNULAndBrokenUTF8)
{
    EXPECT_EQ(refusal(document(std::string("<string>a\0b</string>", 20))), "a NUL byte");
    for (const char* bytes : {"\xFF", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xC3",
                              "\x80", "\x01", "\xEF\xBF\xBF"})
        EXPECT_FALSE(read("<string>" + std::string(bytes) + "</string>"));
    EXPECT_FALSE(read("<string>&#0;</string>"));
    EXPECT_FALSE(read("<string>&#x1;</string>"));
}

TEST(PropertyListReader, RefusesOtherEncodings)
{
    EXPECT_EQ(refusal("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><true/></plist>"),
              "not UTF-8");
    EXPECT_EQ(refusal("<?xml version=\"1.0\" encoding=\"utf-8\"?><plist><true/></plist>"), "");
    EXPECT_EQ(refusal("\xEF\xBB\xBF<plist><true/></plist>"), "");
    EXPECT_NE(refusal(std::string("\xFF\xFE<\0p\0", 6)), "");
}

TEST(PropertyListReader, ReadsWhatIs128DeepAndNothingDeeper)
{
    EXPECT_TRUE(read(nested(127, "<true/>")));
    EXPECT_TRUE(read(nested(128, "")));
    EXPECT_FALSE(read(nested(128, "<true/>")));
    EXPECT_EQ(refusal(document(nested(129, ""))), "nested too deeply");
}

TEST(PropertyListReader, RefusesAHundredThousandLevels)
{
    EXPECT_EQ(refusal(document(nested(100000, ""))), "nested too deeply");
}

TEST(PropertyListReader, RefusesMoreThanEightMegabytes)
{
    const std::string tenMegabytes(10u << 20, 'a');
    EXPECT_EQ(refusal(document("<string>" + tenMegabytes + "</string>")), "too large");
    const std::string large(PropertyListReader::largestSize - 200, 'a');
    EXPECT_EQ(refusal(document("<string>" + large + "</string>")), "");
}

TEST(PropertyListReader, RefusesEveryBeginningOfAFile)
{
    const auto whole = document("<dict><key>a</key><array><integer>12</integer><string>x&amp;"
                                "</string><data>MQ==</data></array></dict>");
    const auto end = whole.find("</plist>") + 8;
    for (std::size_t length = 0; length < end; ++length)
        EXPECT_NE(refusal(whole.substr(0, length)), "") << length;
    EXPECT_EQ(refusal(whole.substr(0, end)), "");
}

TEST(PropertyListReader, SurvivesEveryChangedByte)
{
    const auto whole = document("<dict><key>a</key><date>2024-02-29T23:59:59Z</date></dict>");
    for (std::size_t position = 0; position < whole.size(); ++position) {
        for (const char replacement : {'\0', '<', '>', '&', '\xFF', '9', 'x'}) {
            auto changed = whole;
            changed[position] = replacement;
            const auto result = PropertyListReader::read(changed);
            EXPECT_EQ(result.list.has_value(), result.reason.empty());
        }
    }
}

/// A tree of values that is different for each seed.
PropertyList sample(unsigned seed, int depth)
{
    switch ((seed * 2654435761u >> 7) % (depth > 0 ? 8 : 6)) {
    case 0:
        return seed % 2 == 0;
    case 1:
        return std::int64_t{seed} * 1234567 - 5;
    case 2:
        return seed / 7.0;
    case 3:
        return "text <&> \"\u00e9\u4e2d\U0001f600\" \n\ttab " + std::to_string(seed);
    case 4:
        return Data::fromText(std::string(seed % 40, static_cast<char>(seed)));
    case 5:
        return Date{static_cast<double>(seed % 1000000) * 1000};
    case 6: {
        Array array;
        for (unsigned index = 0; index < seed % 5; ++index)
            array.push_back(sample(seed * 31 + index, depth - 1));
        return array;
    }
    default: {
        Dictionary dictionary;
        for (unsigned index = 0; index < seed % 6; ++index)
            dictionary["key " + std::to_string(index * seed)] =
                sample(seed * 37 + index, depth - 1);
        return dictionary;
    }
    }
}

Dictionary manySamples()
{
    Dictionary all;
    for (unsigned seed = 1; seed < 300; ++seed)
        all[std::to_string(seed)] = sample(seed, 4);
    return all;
}

TEST(PropertyListReader, ReadsBackWhatTheWriterWrote)
{
    const PropertyList all = manySamples();
    EXPECT_EQ(PropertyListReader::read(*PropertyListWriter::write(all).bytes).list, all);
}

std::string contentsOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Sends the file through the other program's binary form and back.
std::string throughThePropertyListTool(const std::string& xml)
{
    TemporaryFolder folder;
    const auto in = folder.write("in.plist", xml);
    const auto binary = folder.path("binary.plist");
    const auto out = folder.path("out.plist");
    const auto command = "plistutil -i " + in + " -f bin -o " + binary + " && plistutil -i " +
                         binary + " -f xml -o " + out;
    EXPECT_EQ(std::system(command.c_str()), 0);
    return contentsOf(out);
}

TEST(PropertyListReader, AgreesWithThePropertyListToolAboutEveryType)
{
    const PropertyList all = manySamples();
    const auto result =
        PropertyListReader::read(throughThePropertyListTool(*PropertyListWriter::write(all).bytes));
    ASSERT_TRUE(result.list) << result.reason;
    const auto& expected = *all.get<Dictionary>();
    const auto& actual = *result.list->get<Dictionary>();
    ASSERT_EQ(actual.size(), expected.size());
    // Reals may differ in their last digit: the tool writes fewer of them.
    for (const auto& [key, value] : expected) {
        EXPECT_EQ(actual.at(key).value().index(), value.value().index()) << key;
        if (const auto* real = value.get<double>()) {
            EXPECT_NEAR(*actual.at(key).get<double>(), *real, 1e-6) << key;
        }
        if (value.is<std::string>() || value.is<std::int64_t>() || value.is<Data>() ||
            value.is<Date>()) {
            EXPECT_EQ(actual.at(key), value) << key;
        }
    }
}

} // namespace
