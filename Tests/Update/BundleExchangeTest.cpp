#include "Applications/Update/BundleExchange.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

class BundleExchangeTest : public testing::Test
{
protected:
    BundleExchangeTest()
    {
        folder.write("Pane/version", "old");
        folder.write("staging/new/Pane/version", "new");
    }

    std::string installed() const
    {
        std::string version;
        std::ifstream(folder.path("Pane/version")) >> version;
        return version;
    }
    /// A file system that cannot exchange.
    static RenameCalls inTwoSteps(int error)
    {
        RenameCalls changes;
        changes.exchange = [error](const auto&, const auto&) { return error; };
        return changes;
    }

    TemporaryFolder folder;
    BundleExchange exchange{folder.path("Pane"), folder.path("staging/new/Pane"),
                            folder.path("staging/old")};
};

TEST_F(BundleExchangeTest, TheTwoChangePlaces)
{
    EXPECT_FALSE(exchange.run(RenameCalls()));
    EXPECT_EQ(installed(), "new");
    EXPECT_TRUE(fs::exists(folder.path("staging/new/Pane/version")));
    EXPECT_FALSE(fs::exists(folder.path("staging/old")));
}

TEST_F(BundleExchangeTest, TakesTwoStepsWhereTheFileSystemCannotDoItInOne)
{
    for (const int error : {EINVAL, ENOSYS, ENOTSUP}) {
        EXPECT_FALSE(exchange.run(inTwoSteps(error)));
        EXPECT_EQ(installed(), "new");
        fs::rename(folder.path("Pane"), folder.path("staging/new/Pane"));
        fs::rename(folder.path("staging/old"), folder.path("Pane"));
        EXPECT_EQ(installed(), "old");
    }
}

TEST_F(BundleExchangeTest, LeavesTheOldOneWhenItFails)
{
    EXPECT_EQ(exchange.run(inTwoSteps(EACCES))->problem, UpdateProblem::write);
    EXPECT_EQ(installed(), "old");

    auto secondFails = inTwoSteps(EINVAL);
    secondFails.rename = [&](const std::string& from, const std::string& to) {
        return from == exchange.replacement ? EIO : RenameCalls().rename(from, to);
    };
    EXPECT_EQ(exchange.run(secondFails)->problem, UpdateProblem::write);
    EXPECT_EQ(installed(), "old");

    exchange.replacement = folder.path("nothing/here");
    EXPECT_EQ(exchange.run(RenameCalls())->problem, UpdateProblem::write);
    EXPECT_EQ(installed(), "old");
}

TEST_F(BundleExchangeTest, AnotherProcessPutsTheOldOneBackWhenThisOneIsKilledBetweenTheSteps)
{
    auto killed = inTwoSteps(EINVAL);
    killed.rename = [&](const std::string& from, const std::string& to) {
        if (from == exchange.replacement)
            ::raise(SIGKILL);
        return RenameCalls().rename(from, to);
    };
    const pid_t child = ::fork();
    if (child == 0) {
        exchange.run(killed);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "it was not killed between the steps";
    EXPECT_TRUE(waitUntil([&] { return installed() == "old"; }));
}

} // namespace
} // namespace farview
