#include "Common/FVELogging.h"

#include "Link/Wire/LinkCodec.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Support/ForkedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Data;
using farview::inItsOwnProcess;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

namespace
{

const std::string uuid = "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";
const std::string firstFolder = "/home/user/FarviewLogging (2026-01-02 03:04:05 +0000)";
const std::string secondFolder = "/home/user/FarviewLogging (2026-01-02 03:04:06 +0000)";

farview::Bytes bytesOf(const farview::ScreenPacketHeader& header)
{
    farview::Bytes bytes;
    farview::appendScreenPacketHeader(bytes, header);
    return bytes;
}

// Logging is switched on for the life of a process, so each of these tests has one of its own.
class FVELoggingTest : public testing::Test
{
protected:
    std::vector<std::string> lines() const
    {
        std::vector<std::string> messages;
        for (const auto& line : fake.log.lines())
            messages.push_back(line.message);
        return messages;
    }
    std::vector<std::string> files() const
    {
        std::vector<std::string> paths;
        for (const auto& [path, data] : fake.fileManager.data())
            paths.push_back(path);
        return paths;
    }
    void logPacket(const std::string& data)
    {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(data.data());
        NSLogScreenRectangle(header.data(), bytes, static_cast<std::int64_t>(data.size()));
    }
    void waitASecond() { fake.clock.setDate(fake.clock.date() + std::chrono::seconds(1)); }

    farview::FakePlatform fake;
    farview::Platform::Scope scope{fake.platform()};
    farview::Bytes header = bytesOf({{-1, 2, 300, -4}, QLScreenEncodingJPG, 4});
};

TEST_F(FVELoggingTest, LoggingIsOffAndThenNothingIsLogged)
{
    inItsOwnProcess([this] {
        EXPECT_FALSE(IsEnableLoggingScreenRectangleLogging());
        logPacket("data");
        EXPECT_THAT(lines(), IsEmpty());
        EXPECT_THAT(files(), IsEmpty());
    });
}

TEST_F(FVELoggingTest, SwitchingItOnMakesAFolderNamedAfterTheDate)
{
    inItsOwnProcess([this] {
        EnableLoggingScreenRectangleLogging();
        EXPECT_TRUE(IsEnableLoggingScreenRectangleLogging());
        EXPECT_THAT(fake.fileManager.createdDirectories(), ElementsAre(firstFolder));
        EXPECT_THAT(lines(), ElementsAre("Logging screen packets to " + firstFolder));
    });
}

TEST_F(FVELoggingTest, AFolderThatExistsIsUsed)
{
    inItsOwnProcess([this] {
        fake.fileManager.addFile(firstFolder);
        fake.fileManager.setWritesFail(true);
        EnableLoggingScreenRectangleLogging();
        EXPECT_TRUE(IsEnableLoggingScreenRectangleLogging());
        EXPECT_THAT(fake.fileManager.createdDirectories(), IsEmpty());
        EXPECT_THAT(lines(), ElementsAre("Logging screen packets to " + firstFolder));
    });
}

TEST_F(FVELoggingTest, WithoutAFolderItStaysOff)
{
    inItsOwnProcess([this] {
        fake.fileManager.setWritesFail(true);
        EnableLoggingScreenRectangleLogging();
        EXPECT_FALSE(IsEnableLoggingScreenRectangleLogging());
        EXPECT_THAT(lines(), IsEmpty());
    });
}

TEST_F(FVELoggingTest, ASecondCallGoesOnInAnotherFolder)
{
    inItsOwnProcess([this] {
        EnableLoggingScreenRectangleLogging();
        logPacket("1");
        waitASecond();
        EnableLoggingScreenRectangleLogging();
        logPacket("2");
        ASSERT_THAT(files(), SizeIs(2));
        EXPECT_THAT(files()[0], testing::StartsWith(firstFolder + "/"));
        EXPECT_THAT(files()[1], testing::StartsWith(secondFolder + "/"));
    });
}

TEST_F(FVELoggingTest, AMissingSecondFolderStillTakesTheFirstOnesPlace)
{
    inItsOwnProcess([this] {
        EnableLoggingScreenRectangleLogging();
        waitASecond();
        fake.fileManager.setWritesFail(true);
        EnableLoggingScreenRectangleLogging();
        EXPECT_TRUE(IsEnableLoggingScreenRectangleLogging());
        EXPECT_EQ(lines().back(), "Logging screen packets to " + secondFolder);
        fake.fileManager.setWritesFail(false);
        logPacket("data");
        ASSERT_THAT(files(), SizeIs(1));
        EXPECT_THAT(files()[0], testing::StartsWith(secondFolder + "/"));
    });
}

TEST_F(FVELoggingTest, APacketIsLoggedAndItsDataWrittenToAFileOfItsOwn)
{
    inItsOwnProcess([this] {
        EnableLoggingScreenRectangleLogging();
        logPacket(std::string("da\0a", 4));
        ASSERT_THAT(files(), SizeIs(1));
        const auto name = files()[0].substr(firstFolder.size() + 1);
        EXPECT_THAT(name, MatchesRegex(uuid + "\\.jpeg"));
        EXPECT_EQ(fake.fileManager.data().begin()->second, Data::fromText({"da\0a", 4}));
        ASSERT_THAT(lines(), SizeIs(3));
        EXPECT_EQ(lines()[1], "screenRectangle = { { -1, 2 }, { 300, -4 } }, encoding: "
                              "QLScreenEncodingJPG, dataSize: 4");
        EXPECT_EQ(lines()[2], "screenRectangle has buffer of size 4, written to " + name);
        logPacket("more");
        EXPECT_THAT(files(), SizeIs(2));
    });
}

TEST_F(FVELoggingTest, WhatTravelsOnTheLinkIsLoggedAsItTravels)
{
    inItsOwnProcess([this] {
        EnableLoggingScreenRectangleLogging();
        const auto frame =
            encodeFrame(farview::LinkScreenRectangle{{-1, 2, 300, -4}, QLScreenEncodingLibz, {9}});
        const auto* packet = frame.data() + farview::kLinkFrameHeaderSize;
        NSLogScreenRectangle(packet, packet + farview::kScreenPacketHeaderSize, 1);
        EXPECT_EQ(lines()[1], "screenRectangle = { { -1, 2 }, { 300, -4 } }, encoding: "
                              "QLScreenEncodingLibz, dataSize: 1");
        EXPECT_EQ(fake.fileManager.data().begin()->second, Data::fromText("\t"));
    });
}

TEST_F(FVELoggingTest, WithoutDataThereIsOnlyALineAndWithoutAHeaderNothing)
{
    inItsOwnProcess([this] {
        EnableLoggingScreenRectangleLogging();
        const std::uint8_t byte = 1;
        NSLogScreenRectangle(header.data(), nullptr, 4);
        NSLogScreenRectangle(header.data(), &byte, 0);
        NSLogScreenRectangle(header.data(), &byte, -1);
        NSLogScreenRectangle(nullptr, &byte, 1);
        EXPECT_THAT(lines(), SizeIs(4));
        EXPECT_THAT(files(), IsEmpty());
    });
}

TEST_F(FVELoggingTest, AWriteThatFailsIsToldToNobody)
{
    inItsOwnProcess([this] {
        EnableLoggingScreenRectangleLogging();
        fake.fileManager.setWritesFail(true);
        logPacket("data");
        EXPECT_THAT(files(), IsEmpty());
        ASSERT_THAT(lines(), SizeIs(3));
        EXPECT_THAT(lines()[2], MatchesRegex("screenRectangle has buffer of size 4, written to " +
                                             uuid + "\\.jpeg"));
    });
}

TEST_F(FVELoggingTest, ASizeThatIsTooLargePrintsAsASignedNumber)
{
    inItsOwnProcess([this] {
        EnableLoggingScreenRectangleLogging();
        header = bytesOf({{}, 5, 0xFFFFFFFE});
        NSLogScreenRectangle(header.data(), nullptr, 0);
        EXPECT_EQ(lines().back(), "screenRectangle = { { 0, 0 }, { 0, 0 } }, encoding: Undefined "
                                  "encoding, dataSize: -2");
    });
}

TEST(QLScreenEncoding, EachCodeHasANameAndAnExtension)
{
    const std::vector<std::array<std::string, 2>> expected = {
        {"QLScreenEncodingLibz", "bits"},     {"QLScreenEncodingCopyRect", "rect"},
        {"QLScreenEncodingMousePos", "mpos"}, {"QLScreenEncodingMouseCursor", "cursor"},
        {"QLScreenEncodingJPG", "jpeg"},
    };
    for (std::uint8_t code = 0; code < expected.size(); ++code) {
        EXPECT_EQ(NSStringFromEncoding(code), expected[code][0]);
        EXPECT_EQ(NSStringExtensionFromEncoding(code), expected[code][1]);
    }
}

TEST(QLScreenEncoding, AnyOtherCodeIsUndefined)
{
    for (const int code : {5, 6, 127, 128, 255}) {
        EXPECT_EQ(NSStringFromEncoding(static_cast<std::uint8_t>(code)), "Undefined encoding");
        EXPECT_EQ(NSStringExtensionFromEncoding(static_cast<std::uint8_t>(code)), "undefined");
    }
}

TEST(QLSimpleGeometry, PrintsAsPairsInBraces)
{
    EXPECT_EQ(NSStringFromQLSimplePoint({-32768, 32767}), "{ -32768, 32767 }");
    EXPECT_EQ(NSStringFromQLSimpleRect({-1, 2, 300, -4}), "{ { -1, 2 }, { 300, -4 } }");
}

} // namespace
