#include "Common/NSString_Additions.h"

#include "Platform/Fake/FakePlatform.h"

#include <gtest/gtest.h>

#include <memory>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace
{

TEST(IsValidIPAddress, AcceptsNumericAddressesOfBothFamilies)
{
    for (const char* text : {"192.168.1.20", "0.0.0.0", "255.255.255.255", "fe80::1", "::", "::1",
                             "2001:db8:0:0:0:0:0:1", "::ffff:192.168.1.20"})
        EXPECT_TRUE(isValidIPAddress(text)) << text;
}

TEST(IsValidIPAddress, RefusesEverythingElse)
{
    for (const std::string& text : std::initializer_list<std::string>{"",
                                                                      "192.168.1",
                                                                      "desk.local",
                                                                      "localhost",
                                                                      " 10.0.0.1",
                                                                      "10.0.0.1 ",
                                                                      "10.0.0.1\n",
                                                                      "10.0.0.256",
                                                                      "10.0.0.1:6001",
                                                                      "10.0.0.0/8",
                                                                      "0x7f.1",
                                                                      "2130706433",
                                                                      "fe80::1%eth0",
                                                                      "[::1]",
                                                                      "::1/128",
                                                                      ":::",
                                                                      "1.2.3.4.5",
                                                                      "١.٢.٣.٤",
                                                                      {"10.0.0.1\0desk", 13},
                                                                      {"10.0.0.1\0", 9},
                                                                      {"\0", 1},
                                                                      std::string(1 << 20, '1')})
        EXPECT_FALSE(isValidIPAddress(text)) << text.substr(0, 20);
}

template <typename Record> std::optional<std::string> textOf(const Record& record)
{
    return stringIPAddresWithSockAddr(reinterpret_cast<const sockaddr*>(&record));
}

TEST(StringIPAddres, GivesTheDottedTextOfAnIPv4Record)
{
    sockaddr_in record{};
    record.sin_family = AF_INET;
    record.sin_port = htons(6001);
    inet_pton(AF_INET, "192.168.1.20", &record.sin_addr);
    EXPECT_EQ(textOf(record), "192.168.1.20") << "the port is no part of it";
}

TEST(StringIPAddres, GivesTheShortestTextOfAnIPv6Record)
{
    sockaddr_in6 record{};
    record.sin6_family = AF_INET6;
    record.sin6_port = htons(6001);
    record.sin6_addr = in6addr_loopback;
    EXPECT_EQ(textOf(record), "::1");
    record.sin6_scope_id = 2;
    inet_pton(AF_INET6, "2001:db8:1111:2222:3333:4444:5555:6666", &record.sin6_addr);
    EXPECT_EQ(textOf(record), "2001:db8:1111:2222:3333:4444:5555:6666");
}

TEST(StringIPAddres, IsEmptyForAnotherFamilyAndNothingForNoRecord)
{
    sockaddr record{};
    record.sa_family = AF_UNIX;
    EXPECT_EQ(textOf(record), "");
    EXPECT_EQ(stringIPAddresWithSockAddr(nullptr), std::nullopt);
}

TEST(StringIPAddres, ReadsNoMoreThanTheRecordOfItsFamilyHas)
{
    // Exactly as large as an IPv4 record: reading on would be noticed by the address sanitizer.
    const auto record = std::make_unique<sockaddr_in>();
    record->sin_family = AF_INET;
    inet_pton(AF_INET, "10.0.0.1", &record->sin_addr);
    EXPECT_EQ(textOf(*record), "10.0.0.1");
}

class TextsOfThePlatform : public testing::Test
{
protected:
    farview::FakePlatform fake;
    farview::Platform::Scope scope{fake.platform()};
};

TEST_F(TextsOfThePlatform, APrefixFitsWhateverItsCase)
{
    EXPECT_TRUE(hasPrefixCaseless("ABCdef", "abC"));
    EXPECT_TRUE(hasPrefixCaseless("Äpfel", "äP"));
    EXPECT_TRUE(hasPrefixCaseless("abc", "ABC"));
    EXPECT_FALSE(hasPrefixCaseless("ABCdef", "bc"));
    EXPECT_FALSE(hasPrefixCaseless("ab", "abc"));
    EXPECT_TRUE(hasPrefixCaseless("ABC", "")) << "an empty one always fits";
    EXPECT_TRUE(hasPrefixCaseless("", ""));
    EXPECT_FALSE(hasPrefixCaseless("", "a"));
}

TEST_F(TextsOfThePlatform, ApplicationSupportIsTheUsersFolderAndNotCreated)
{
    EXPECT_EQ(applicationSupportPath(), "/home/user/.local/share");
    EXPECT_FALSE(fake.fileManager.fileExistsAtPath("/home/user/.local/share"));
    fake.searchPaths.setDirectory(farview::SearchPathDirectory::applicationSupport,
                                  farview::userDomain, "");
    EXPECT_EQ(applicationSupportPath(), "");
}

TEST(ConnectionState, HasATextForEachOfItsThreeValuesAndForNoOtherNumber)
{
    const char* texts[] = {"None", "NotConnected", "Connected"};
    for (int state = 0; state < 3; ++state) {
        EXPECT_EQ(connectionStateString(state), texts[state]);
        EXPECT_EQ(FVExConnectStateFromString(texts[state]), state);
    }
    EXPECT_EQ(connectionStateString(3), std::nullopt);
    EXPECT_EQ(connectionStateString(-1), std::nullopt);
}

TEST(ConnectionState, IsNoneForAnyOtherText)
{
    for (const std::string text : {"connected", " Connected", "Connected ", "", "2", "CONNECTED"})
        EXPECT_EQ(FVExConnectStateFromString(text), FVExConnectStateNone) << text;
    EXPECT_EQ(FVExConnectStateFromString(std::string("Connected\0", 10)), FVExConnectStateNone);
    EXPECT_EQ(FVExConnectStateFromString(std::nullopt), FVExConnectStateNone);
}

} // namespace
