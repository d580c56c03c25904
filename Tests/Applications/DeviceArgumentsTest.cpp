#include "Applications/Device/DeviceArguments.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

std::string mistake(const std::vector<std::string>& arguments)
{
    return readDeviceArguments(arguments).mistake;
}

} // namespace

TEST(DeviceArguments, HaveDefaults)
{
    const DeviceArguments arguments = readDeviceArguments({});
    EXPECT_EQ(arguments.mistake, "");
    EXPECT_EQ(arguments.port, 6001);
    EXPECT_FALSE(arguments.name || arguments.hostName || arguments.refusal ||
                 arguments.unlessSeenWithin);
    EXPECT_FALSE(arguments.isHeadless || arguments.wantsHelp || arguments.wantsVersion);
}

TEST(DeviceArguments, AreReadInBothSpellings)
{
    const DeviceArguments arguments =
        readDeviceArguments({"--name", "Desk = 1", "--host-name=desk", "--port=7001", "--headless",
                             "--refuse", "Closed", "--unless-seen", "3"});
    EXPECT_EQ(arguments.mistake, "");
    EXPECT_EQ(arguments.name, "Desk = 1");
    EXPECT_EQ(arguments.hostName, "desk");
    EXPECT_EQ(arguments.port, 7001);
    EXPECT_TRUE(arguments.isHeadless);
    EXPECT_EQ(arguments.refusal, "Closed");
    EXPECT_EQ(arguments.unlessSeenWithin, 3.0);
}

TEST(DeviceArguments, AllowAnyFreePort) { EXPECT_EQ(readDeviceArguments({"--port", "0"}).port, 0); }

TEST(DeviceArguments, NameTheirMistakes)
{
    EXPECT_EQ(mistake({"--colour"}), "unknown option: --colour");
    EXPECT_EQ(mistake({"desk"}), "unknown option: desk");
    EXPECT_EQ(mistake({"--name"}), "--name needs a value");
    EXPECT_EQ(mistake({"--name", ""}), "--name cannot have that value");
    EXPECT_EQ(mistake({"--name", std::string(64, 'x')}), "--name cannot have that value");
    EXPECT_EQ(mistake({"--host-name", "a.b"}), "--host-name cannot have that value");
    EXPECT_EQ(mistake({"--refuse", std::string(201, 'x')}), "--refuse cannot have that value");
    EXPECT_EQ(mistake({"--unless-seen=-1"}), "--unless-seen cannot have that value");
    EXPECT_EQ(mistake({"--unless-seen=nan"}), "--unless-seen cannot have that value");
    for (const char* port : {"65536", "-1", "x", "80x", "", " 80"})
        EXPECT_EQ(mistake({"--port", port}), "--port cannot have that value") << port;
}
