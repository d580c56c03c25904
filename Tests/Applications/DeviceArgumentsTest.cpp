#include "Applications/Device/DeviceArguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::HasSubstr;

namespace
{

DeviceArguments argumentsOf(const std::vector<std::string>& arguments)
{
    QStringList words(u"farview-device"_qs);
    for (const auto& argument : arguments)
        words += QString::fromStdString(argument);
    return readDeviceArguments(words);
}

std::string mistake(const std::vector<std::string>& arguments)
{
    const auto answer = argumentsOf(arguments).answer;
    return answer && answer->status == CommandLine::wrongUse ? answer->text.toStdString() : "";
}

} // namespace

TEST(DeviceArguments, HaveDefaults)
{
    const DeviceArguments arguments = argumentsOf({});
    EXPECT_FALSE(arguments.answer);
    EXPECT_EQ(arguments.port, 6001);
    EXPECT_FALSE(arguments.name || arguments.hostName || arguments.refusal ||
                 arguments.unlessSeenWithin);
    EXPECT_FALSE(arguments.isHeadless || arguments.isInWindow || arguments.pairsOnce ||
                 arguments.listsKnown);
}

TEST(DeviceArguments, AreReadInBothSpellings)
{
    const DeviceArguments arguments =
        argumentsOf({"--name", "Desk = 1", "--host-name=desk", "--port=7001", "--headless",
                     "--refuse", "Closed", "--unless-seen", "3"});
    EXPECT_FALSE(arguments.answer);
    EXPECT_EQ(arguments.name, "Desk = 1");
    EXPECT_EQ(arguments.hostName, "desk");
    EXPECT_EQ(arguments.port, 7001);
    EXPECT_TRUE(arguments.isHeadless);
    EXPECT_EQ(arguments.refusal, "Closed");
    EXPECT_EQ(arguments.unlessSeenWithin, 3.0);
}

TEST(DeviceArguments, AFileForPicturesTakesThePlaceOfTheWindow)
{
    const DeviceArguments arguments = argumentsOf({"--picture-file", "/tmp/a.png"});
    EXPECT_EQ(arguments.pictureFile, "/tmp/a.png");
    EXPECT_TRUE(arguments.isHeadless);
    EXPECT_THAT(mistake({"--picture-file", ""}), HasSubstr("--picture-file cannot have"));
}

TEST(DeviceArguments, PicturesMayStayInAWindow)
{
    EXPECT_TRUE(argumentsOf({"--window"}).isInWindow);
}

TEST(DeviceArguments, MayLetOneComputerIn)
{
    EXPECT_FALSE(argumentsOf({}).pairsOnce);
    EXPECT_TRUE(argumentsOf({"--pair-once", "--headless"}).pairsOnce);
}

TEST(DeviceArguments, TakeDigitsAsPeopleTypeThem)
{
    EXPECT_EQ(argumentsOf({}).acceptedDigits, std::nullopt);
    for (const char* digits : {"482 913", "482913", " 4 82 913 "}) {
        EXPECT_EQ(argumentsOf({"--accept", digits}).acceptedDigits, "482913") << digits;
        EXPECT_FALSE(argumentsOf({"--accept", digits}).answer) << digits;
    }
    for (const char* digits : {"", "48291", "4829133", "48291a", "482-913"})
        EXPECT_THAT(mistake({"--accept", digits}), HasSubstr("--accept cannot have")) << digits;
}

TEST(DeviceArguments, MayListAndForgetComputers)
{
    EXPECT_TRUE(argumentsOf({"--known"}).listsKnown);
    EXPECT_EQ(argumentsOf({"--forget", "0A1B 2c3d"}).forgottenKey, "0a1b2c3d");
    const std::string whole(64, 'f');
    EXPECT_EQ(argumentsOf({"--forget", whole}).forgottenKey, whole);
    for (const std::string key : {"", "0a1b2c3", "0a1b2c3g", "192.0.2.99"})
        EXPECT_THAT(mistake({"--forget", key}), HasSubstr("--forget cannot have")) << key;
    EXPECT_THAT(mistake({"--forget", whole + "f"}), HasSubstr("--forget cannot have"));
}

TEST(DeviceArguments, AllowAnyFreePort) { EXPECT_EQ(argumentsOf({"--port", "0"}).port, 0); }

TEST(DeviceArguments, NameTheirMistakes)
{
    EXPECT_THAT(mistake({"--colour"}), HasSubstr("'colour'"));
    EXPECT_THAT(mistake({"desk"}), HasSubstr("'desk'"));
    EXPECT_THAT(mistake({"--name"}), HasSubstr("'--name'"));
    EXPECT_THAT(mistake({"--name", ""}), HasSubstr("--name cannot have that value"));
    EXPECT_THAT(mistake({"--name", std::string(64, 'x')}),
                HasSubstr("--name cannot have that value"));
    EXPECT_THAT(mistake({"--host-name", "a.b"}), HasSubstr("--host-name cannot have that value"));
    EXPECT_THAT(mistake({"--refuse", std::string(201, 'x')}),
                HasSubstr("--refuse cannot have that value"));
    EXPECT_THAT(mistake({"--unless-seen=-1"}), HasSubstr("--unless-seen cannot have that value"));
    EXPECT_THAT(mistake({"--unless-seen=nan"}), HasSubstr("--unless-seen cannot have that value"));
    for (const char* port : {"65536", "-1", "x", "80x", "", " 80"})
        EXPECT_THAT(mistake({"--port", port}), HasSubstr("--port cannot have that value")) << port;
}
