// The engine killed at any moment: there is a whole bundle, and the next run cleans up.

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/WaitUntil.h"
#include "Tests/Update/UpdateFixture.h"

#include <algorithm>
#include <chrono>
#include <fstream>

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class UpdateKill : public UpdateFixture
{
protected:
    UpdateKill()
    {
        auto entries = release("1.1");
        // Enough to be found in the middle of.
        for (int index = 0; index < 300; ++index)
            entries.push_back({"Example Pane.prefPane/" + std::to_string(index),
                               ArchiveEntry::Kind::file, std::string(1000, 'x'), 0644, 0});
        archive = packed(entries);
        publish(archive);
    }

    /// Either version, whole.
    void expectAWholeBundle()
    {
        if (version() == "1.0") {
            EXPECT_TRUE(snapshot(bundle) == old);
        } else {
            EXPECT_EQ(version(), "1.1");
            EXPECT_EQ(snapshot(bundle).size(), old.size() + 300);
        }
    }
    void expectTheNextRunToCleanUp()
    {
        const auto check = start({"--check-only"});
        EXPECT_EQ(check->outcome(), version() == "1.0" ? "found" : "current") << check->printed();
        EXPECT_EQ(leftovers(), std::vector<std::string>());
        expectAWholeBundle();
    }
    void reinstall()
    {
        std::filesystem::remove_all(bundle);
        makeBundle(folder.path("installed"), "1.0", server.address("updates.xml"), key.publicKey());
    }

    std::string archive;
    std::map<std::string, std::string> old = snapshot(bundle);
};

TEST_F(UpdateKill, WhileItDownloads)
{
    server.serve("archive.tar.xz", UpdateServer::Answer{200, archive, {}, {}, archive.size() / 2});
    const auto run = start();
    run->say("download");
    ASSERT_TRUE(run->says("found"));
    ASSERT_TRUE(waitUntil([&] { return server.wasAskedFor("archive.tar.xz"); }));
    run->kill();
    EXPECT_EQ(run->status(), -1);
    EXPECT_EQ(version(), "1.0");
    expectTheNextRunToCleanUp();
}

TEST_F(UpdateKill, WhileTheNewBundleIsTriedWhichLeavesNoProgramBehind)
{
    host = folder.write(
        "slow host", "#!/bin/sh\necho $$ >'" + folder.path("tried") + "'\nexec sleep 60\n", true);
    const auto run = start();
    run->say("download");
    run->say("install");
    pid_t tried = 0;
    ASSERT_TRUE(waitUntil([&] {
        std::ifstream file(folder.path("tried"));
        return static_cast<bool>(file >> tried);
    }));
    const auto programs = processesBelow(static_cast<pid_t>(run->process().processId()));
    EXPECT_GE(programs.size(), 2u) << "the host and its bus";
    run->kill();
    EXPECT_EQ(run->status(), -1);
    EXPECT_TRUE(waitUntil([&] {
        return std::none_of(programs.begin(), programs.end(),
                            [](const auto& each) { return isProcessRunning(each.pid); });
    }));
    EXPECT_EQ(version(), "1.0");
    expectTheNextRunToCleanUp();
}

TEST_F(UpdateKill, WhenAllIsReady)
{
    const auto run = start();
    run->say("download");
    ASSERT_TRUE(run->says("ready"));
    run->kill();
    EXPECT_EQ(run->status(), -1);
    EXPECT_EQ(version(), "1.0");
    expectTheNextRunToCleanUp();
}

TEST_F(UpdateKill, AtAnyOfManyMoments)
{
    const auto begun = Clock::now();
    ASSERT_EQ(update(), "installed") << printed;
    const auto whole = Clock::now() - begun;
    constexpr int moments = 25;
    int killed = 0;
    int inTheMiddle = 0;
    for (int moment = 0; moment < moments; ++moment) {
        reinstall();
        const auto run = start();
        run->say("download");
        run->say("install");
        const auto end = Clock::now() + whole * moment / moments;
        waitUntil([&] { return Clock::now() >= end; });
        run->kill();
        killed += run->status() == -1 ? 1 : 0;
        inTheMiddle += leftovers().empty() ? 0 : 1;
        SCOPED_TRACE(run->printed());
        expectAWholeBundle();
        expectTheNextRunToCleanUp();
    }
    EXPECT_GT(killed, moments / 4) << "the moments are not within the run";
    EXPECT_GT(inTheMiddle, 0) << "no moment was after the download had begun";
    reinstall();
    EXPECT_EQ(update(), "installed") << "after all that: " << printed;
}

} // namespace
} // namespace farview
