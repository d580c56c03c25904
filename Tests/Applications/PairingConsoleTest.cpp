#include "Applications/Device/PairingConsole.h"

#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/WaitUntil.h"

#include <QAbstractEventDispatcher>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace farview;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

std::array<int, 2> openedPipe()
{
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    return ends;
}

class PairingConsoleTest : public testing::Test
{
protected:
    ~PairingConsoleTest() override
    {
        ::close(pipe[0]);
        closeInput();
    }
    void closeInput() { ::close(std::exchange(pipe[1], -1)); }
    void type(const std::string& text)
    {
        ASSERT_EQ(::write(pipe[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void ask(const std::string& digits = "482913")
    {
        status.toConfirm = ComputerToConfirm{.digits = digits, .address = "192.0.2.9"};
        console.showStatus(status);
    }
    bool hears(int& answers)
    {
        return waitUntil([&] { return answers == 1; });
    }
    bool saysWhatIsExpected()
    {
        return waitUntil([&] { return said.back().starts_with("Type the six digits"); });
    }
    static void pass() { runLoopFor(std::chrono::milliseconds(20)); }

    std::array<int, 2> pipe = openedPipe();
    int confirmed = 0;
    int refused = 0;
    bool isAccepted = true;
    std::vector<std::string> said;
    DeviceStatus status;
    PairingConsole console{pipe[0],
                           {[this](const auto&) { return isAccepted && ++confirmed; },
                            [this] { ++refused; },
                            [this](const std::string& line) { said.push_back(line); }}};
};

TEST_F(PairingConsoleTest, TellsTheDigitsAndHowToAnswer)
{
    console.showStatus(status);
    EXPECT_THAT(said, IsEmpty());
    ask();
    ASSERT_EQ(said.size(), 2u);
    EXPECT_EQ(said[0], "Digits: 482 913");
    EXPECT_THAT(said[1], HasSubstr("192.0.2.9"));
    EXPECT_THAT(said[1], HasSubstr("farview-device --accept 482913"));
    console.showStatus(status);
    EXPECT_EQ(said.size(), 2u) << "once";
}

TEST_F(PairingConsoleTest, TellsWhatIsLeftWhenItIsConfirmedHere)
{
    ask();
    status.toConfirm->isConfirmedHere = true;
    console.showStatus(status);
    ASSERT_EQ(said.size(), 3u);
    EXPECT_EQ(said[2], "Confirm them at the computer at 192.0.2.9");
}

TEST_F(PairingConsoleTest, TheSameDigitsConfirm)
{
    ask();
    type("482 9");
    pass();
    EXPECT_EQ(confirmed, 0);
    type("13\r\n");
    EXPECT_TRUE(hears(confirmed));
    EXPECT_EQ(refused, 0);
}

TEST_F(PairingConsoleTest, DigitsThatAreNoLongerAskedForConfirmNothing)
{
    isAccepted = false;
    ask();
    type("482913\n");
    EXPECT_TRUE(saysWhatIsExpected());
}

TEST_F(PairingConsoleTest, NoRefuses)
{
    ask();
    type(" no\n");
    EXPECT_TRUE(hears(refused));
    EXPECT_EQ(confirmed, 0);
}

TEST_F(PairingConsoleTest, AnythingElseIsToldWhatIsExpected)
{
    for (const char* line : {"\n", "482914\n", "yes\n", "4829134\n", "\xff\x01\n"}) {
        ask();
        type(line);
        EXPECT_TRUE(saysWhatIsExpected()) << line;
        said.assign(1, "");
    }
    EXPECT_EQ(confirmed + refused, 0);
}

TEST_F(PairingConsoleTest, ALineThatIsTooLongIsNoAnswer)
{
    ask();
    type("482913" + std::string(58, ' ') + " or not\n");
    EXPECT_TRUE(saysWhatIsExpected());
    EXPECT_EQ(confirmed, 0);
    type(std::string(4000, '1'));
    type("\n482913" + std::string(58, ' ') + "\n");
    EXPECT_TRUE(hears(confirmed)) << "one of 64 bytes is an answer";
}

TEST_F(PairingConsoleTest, AHalfLineDoesNotReachIntoTheNextQuestion)
{
    ask();
    type("482");
    pass();
    ask("913000");
    type("913000\n");
    EXPECT_TRUE(hears(confirmed));
}

TEST_F(PairingConsoleTest, TheEndOfTheInputIsNoAnswerAndKeepsNobodyBusy)
{
    type("48291");
    closeInput();
    ask();
    int turns = 0;
    QObject life;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &life,
                     [&] { ++turns; });
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_LT(turns, 200) << "the loop of the test itself turns every 5 ms";
    EXPECT_EQ(confirmed + refused, 0);
}

TEST_F(PairingConsoleTest, ReadsOnlyWhileThereIsAQuestion)
{
    type("482913\n");
    pass();
    EXPECT_THAT(said, IsEmpty());
    ask();
    EXPECT_TRUE(hears(confirmed));
    status.toConfirm.reset();
    console.showStatus(status);
    type("no\n");
    pass();
    EXPECT_EQ(refused, 0);
}

/// Answers "no" at once, in the background of that terminal, and is to hear it in the foreground.
void beDeviceInTheBackground(int terminal, int user, int ready)
{
    ::setpgid(0, 0);
    int refused = 0;
    PairingConsole console(terminal, {[](const auto&) { return true; }, [&] { ++refused; },
                                      [](const std::string&) {}});
    DeviceStatus status;
    status.toConfirm = ComputerToConfirm{.digits = "482913", .address = "192.0.2.9"};
    console.showStatus(status);
    EXPECT_EQ(::write(user, "no\n", 3), 3);
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(refused, 0);
    EXPECT_EQ(::write(ready, "x", 1), 1);
    EXPECT_TRUE(waitUntil([&] { return refused == 1; }));
}

TEST_F(PairingConsoleTest, InTheBackgroundOfATerminalItIsNotStoppedAndReadsWhenItsTurnComes)
{
    ForkedProcess shell([this] {
        int terminal = -1;
        int user = -1;
        ::setsid();
        ASSERT_EQ(::openpty(&user, &terminal, nullptr, nullptr, nullptr), 0);
        ASSERT_EQ(::ioctl(terminal, TIOCSCTTY, 0), 0);
        ForkedProcess device([&] { beDeviceInTheBackground(terminal, user, pipe[1]); });
        pollfd ready{pipe[0], POLLIN, 0};
        ASSERT_EQ(::poll(&ready, 1, 10'000), 1) << "it was stopped";
        ASSERT_EQ(::tcsetpgrp(terminal, device.pid()), 0);
        EXPECT_EQ(device.wait(), 0);
    });
    EXPECT_EQ(shell.wait(), 0);
}

} // namespace
