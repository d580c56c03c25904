#include "Platform/Desktop/Programs/Supervisor.h"
#include "Platform/Desktop/Bus/GrowingPause.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace farview
{
namespace
{

TEST(GrowingPause, DoublesUpToTheLongestAndBeginsAgainAfterASuccess)
{
    const SupervisorOptions options;
    GrowingPause pause(options.firstPause, options.longestPause);
    std::vector<double> seconds;
    for (int index = 0; index < 8; ++index)
        seconds.push_back(pause.next().count());
    EXPECT_EQ(seconds, (std::vector<double>{1, 2, 4, 8, 16, 32, 60, 60}));
    pause.reset();
    EXPECT_EQ(pause.next().count(), 1);
}

class SupervisorTest : public testing::Test
{
protected:
    struct Start {
        unsigned crashes;
        pid_t pid;
        unsigned kept;
    };

    std::vector<Start> starts() const
    {
        std::vector<Start> found;
        std::ifstream stream(mFolder.path("notes"));
        for (Start each{}; stream >> each.crashes >> each.pid >> each.kept;)
            found.push_back(each);
        return found;
    }
    std::vector<std::string> supervised(const std::string& crashes, bool stays) const
    {
        std::vector<std::string> arguments = {FARVIEW_TEST_PEER, "supervised",
                                              mFolder.path("notes"), crashes};
        if (stays)
            arguments.emplace_back("stays");
        return arguments;
    }

    TemporaryFolder mFolder;
};

TEST_F(SupervisorTest, StartsTheProgramAgainAfterEachCrashAndEndsWithIt)
{
    ChildProcess supervisor(supervised("3", false));
    const auto status = supervisor.waitForEnd();
    ASSERT_TRUE(status && WIFEXITED(*status));
    EXPECT_EQ(WEXITSTATUS(*status), 7);
    const auto found = starts();
    ASSERT_EQ(found.size(), 4u);
    for (unsigned index = 0; index < 4; ++index)
        EXPECT_EQ(found[index].crashes, index);
}

TEST_F(SupervisorTest, MemorySharedWithItOutlivesTheProgramsCrashes)
{
    ChildProcess supervisor(supervised("3", false));
    ASSERT_TRUE(supervisor.waitForEnd());
    const auto found = starts();
    ASSERT_EQ(found.size(), 4u);
    for (unsigned index = 0; index < 4; ++index)
        EXPECT_EQ(found[index].kept, index) << "each start adds one";
}

TEST_F(SupervisorTest, OnlyTheProgramItselfCarriesItsName)
{
    ChildProcess supervisor(supervised("1", true));
    ASSERT_TRUE(waitUntil([&] { return starts().size() == 2; }));
    const auto below = processesBelow(supervisor.pid());
    ASSERT_EQ(below.size(), 1u);
    EXPECT_EQ(below[0].shortName, "TestPeer");
    std::string name;
    std::ifstream("/proc/" + std::to_string(supervisor.pid()) + "/comm") >> name;
    EXPECT_EQ(name, "farview-keeper");
}

TEST_F(SupervisorTest, PassesOnTheRequestToQuitAndEndsWithTheProgram)
{
    ChildProcess supervisor(supervised("0", true));
    ASSERT_TRUE(waitUntil([&] { return starts().size() == 1; }));
    supervisor.sendSignal(SIGTERM);
    const auto status = supervisor.waitForEnd();
    ASSERT_TRUE(status && WIFEXITED(*status));
    EXPECT_EQ(WEXITSTATUS(*status), 128 + SIGTERM);
    EXPECT_FALSE(isProcessRunning(starts()[0].pid));
    EXPECT_EQ(starts().size(), 1u);
}

TEST_F(SupervisorTest, AProgramThatSomeoneAskedToQuitIsNotStartedAgain)
{
    ChildProcess supervisor(supervised("0", true));
    ASSERT_TRUE(waitUntil([&] { return starts().size() == 1; }));
    ::kill(starts()[0].pid, SIGTERM);
    EXPECT_TRUE(supervisor.waitForEnd());
    EXPECT_EQ(starts().size(), 1u);
}

TEST_F(SupervisorTest, AKilledProgramIsStartedAgain)
{
    ChildProcess supervisor(supervised("0", true));
    ASSERT_TRUE(waitUntil([&] { return starts().size() == 1; }));
    ::kill(starts()[0].pid, SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return starts().size() == 2; }));
    EXPECT_NE(starts()[0].pid, starts()[1].pid);
    EXPECT_TRUE(supervisor.isRunning());
}

TEST_F(SupervisorTest, ARequestToQuitBetweenTwoCrashesEndsIt)
{
    ChildProcess supervisor(supervised("1000", false));
    ASSERT_TRUE(waitUntil([&] { return starts().size() >= 3; }));
    supervisor.sendSignal(SIGTERM);
    EXPECT_TRUE(supervisor.waitForEnd());
    EXPECT_LT(starts().size(), 100u);
}

TEST_F(SupervisorTest, AStoppedProgramIsNoCrash)
{
    ChildProcess supervisor(supervised("0", true));
    ASSERT_TRUE(waitUntil([&] { return starts().size() == 1; }));
    ::kill(starts()[0].pid, SIGSTOP);
    runLoopFor(std::chrono::milliseconds(150));
    EXPECT_TRUE(supervisor.isRunning());
    EXPECT_EQ(starts().size(), 1u);
    ::kill(starts()[0].pid, SIGKILL);
}

TEST_F(SupervisorTest, TheProgramEndsWhenItsSupervisorIsKilled)
{
    OrphanCollector orphans("TestPeer");
    ChildProcess supervisor(supervised("0", true));
    ASSERT_TRUE(waitUntil([&] { return starts().size() == 1; }));
    supervisor.kill();
    EXPECT_TRUE(waitUntil([&] { return !isProcessRunning(starts()[0].pid); }));
}

} // namespace
} // namespace farview
