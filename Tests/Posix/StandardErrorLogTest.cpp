#include "Platform/Posix/StandardErrorLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <regex>
#include <unistd.h>

namespace farview
{
namespace
{

class StandardErrorLogTest : public testing::Test
{
protected:
    StandardErrorLogTest() { EXPECT_EQ(::pipe2(mPipe.data(), O_CLOEXEC | O_NONBLOCK), 0); }
    ~StandardErrorLogTest() override
    {
        closeReader();
        ::close(mPipe[1]);
    }
    void closeReader()
    {
        if (mPipe[0] >= 0)
            ::close(mPipe[0]);
        mPipe[0] = -1;
    }
    std::string written()
    {
        std::array<char, 65536> buffer{};
        const auto count = ::read(mPipe[0], buffer.data(), buffer.size());
        return {buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
    }

    std::array<int, 2> mPipe{};
};

TEST_F(StandardErrorLogTest, WritesTimeProgramProcessAndLevel)
{
    StandardErrorLog log("farview-test", mPipe[1]);
    log.write(LogLevel::warning, "something happened");
    const std::regex line(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z farview-test\[)" +
                          std::to_string(::getpid()) + R"(\] warning: something happened\n)");
    const auto text = written();
    EXPECT_TRUE(std::regex_match(text, line)) << text;
}

TEST_F(StandardErrorLogTest, ForeignTextIsOneHarmlessLine)
{
    StandardErrorLog log("x", mPipe[1]);
    log.write(LogLevel::error, std::string_view("a\nb\r\x1B[31m\0\x7F\xFF\u202Ez\u2028", 19));
    const auto text = written();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
    EXPECT_NE(text.find("a\\nb\\x0D\\x1B[31m\\x00\\x7F\\xFF\\u{202E}z\\u{2028}\n"),
              std::string::npos)
        << text;
}

TEST_F(StandardErrorLogTest, OrdinaryTextOfAnyLanguageStays)
{
    EXPECT_EQ(printableText("Gerät \u4e2d \U0001f600 <b>&", 100), "Gerät \u4e2d \U0001f600 <b>&");
}

TEST_F(StandardErrorLogTest, ALongMessageIsCutBetweenCharacters)
{
    EXPECT_EQ(printableText("äääää", 10), "äääää");
    EXPECT_EQ(printableText("ääääää", 10), "äää\u2026");
    StandardErrorLog log("x", mPipe[1]);
    log.write(LogLevel::info, std::string(100000, 'a'));
    EXPECT_LT(written().size(), 2200u);
}

TEST_F(StandardErrorLogTest, AVanishedReaderDoesNotEndTheProcess)
{
    closeReader();
    StandardErrorLog log("x", mPipe[1]);
    log.write(LogLevel::info, "nobody reads this");
    StandardErrorLog closed("x", -1);
    closed.write(LogLevel::info, "nor this");
    SUCCEED() << "still here";
}

TEST_F(StandardErrorLogTest, AReaderThatDoesNotReadIsNotWaitedFor)
{
    ::fcntl(mPipe[1], F_SETFL, 0);
    StandardErrorLog log("x", mPipe[1]);
    for (int line = 0; line < 200; ++line)
        log.write(LogLevel::info, std::string(1900, 'a'));
    EXPECT_LE(written().size(), 65536u);
}

} // namespace
} // namespace farview
