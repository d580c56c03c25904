#include "Applications/Update/Staging.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

class StagingTest : public testing::Test
{
protected:
    StagingTest() { folder.write("Pane/file", "the bundle"); }

    bool bundleIsThere() const { return fs::exists(bundle + "/file"); }

    TemporaryFolder folder;
    std::string bundle = folder.path("Pane");
    std::string place = folder.path(".Pane.update");
};

TEST_F(StagingTest, IsAPrivateFolderBesideTheBundleForAsLongAsItIsHeld)
{
    Staging staging(bundle);
    EXPECT_EQ(staging.path(), place);
    EXPECT_FALSE(fs::exists(place));
    ASSERT_FALSE(staging.acquire());
    EXPECT_EQ(fs::status(place).permissions(), fs::perms(0700));
    std::ofstream(place + "/file") << "x";
    staging.release();
    EXPECT_FALSE(fs::exists(place));
    EXPECT_TRUE(bundleIsThere());
}

TEST_F(StagingTest, IsHeldByOneAtATime)
{
    Staging first(bundle);
    ASSERT_FALSE(first.acquire());
    std::ofstream(place + "/file") << "x";
    Staging second(bundle);
    EXPECT_EQ(second.acquire()->problem, UpdateProblem::busy);
    EXPECT_EQ(second.removeLeftovers()->problem, UpdateProblem::busy);
    EXPECT_TRUE(fs::exists(place + "/file")) << "what is held is left alone";
    first.release();
    EXPECT_FALSE(second.acquire());
}

TEST_F(StagingTest, TidiesWhatAKilledRunLeft)
{
    folder.write(".Pane.update/new/Pane/file", "x");
    fs::permissions(place, fs::perms(0700));
    EXPECT_FALSE(Staging(bundle).removeLeftovers());
    EXPECT_FALSE(fs::exists(place));
    EXPECT_TRUE(bundleIsThere());
    EXPECT_FALSE(Staging(bundle).removeLeftovers()) << "with nothing left";
    EXPECT_FALSE(fs::exists(place));
}

TEST_F(StagingTest, PutsABundleBackThatWasBeingReplaced)
{
    fs::create_directory(place);
    fs::permissions(place, fs::perms(0700));
    fs::rename(bundle, place + "/old");
    folder.write(".Pane.update/new/Pane/file", "the next bundle");
    EXPECT_FALSE(Staging(bundle).removeLeftovers());
    EXPECT_TRUE(bundleIsThere());
    EXPECT_FALSE(fs::exists(place));
}

TEST_F(StagingTest, UsesNoFolderThatOthersMayWriteOrLaidThere)
{
    fs::create_directory(place);
    fs::permissions(place, fs::perms(0770));
    EXPECT_FALSE(Staging(bundle).acquire());
    fs::create_directory_symlink(folder.path("Pane"), place);
    Staging staging(bundle);
    EXPECT_FALSE(staging.acquire());
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(place)));
    EXPECT_EQ(fs::status(place).permissions(), fs::perms(0700));
    EXPECT_TRUE(bundleIsThere());
}

/// A staging folder that an ordinary user cannot remove.
class StuckStaging : public StagingTest
{
protected:
    StuckStaging()
    {
        folder.write(".Pane.update/locked/file", "x");
        fs::permissions(place, fs::perms(0700));
        if (isRoot) {
            for (const auto& path : {folder.path(), bundle, place, place + "/locked"})
                EXPECT_EQ(::chown(path.c_str(), nobody, nobody), 0);
        }
        fs::permissions(place + "/locked", fs::perms(0500));
    }
    ~StuckStaging() override
    {
        for (const auto& each : fs::directory_iterator(folder.path()))
            std::ignore = ::chmod((each.path() / "locked").c_str(), S_IRWXU);
    }

    void asAnOrdinaryUser(const std::function<void()>& body) const
    {
        inItsOwnProcess([&] {
            EXPECT_EQ(isRoot ? ::setuid(nobody) : 0, 0);
            body();
        });
    }

    static constexpr uid_t nobody = 65534;
    const bool isRoot = ::geteuid() == 0;
};

TEST_F(StuckStaging, GivesWayToTheNextRun)
{
    asAnOrdinaryUser([&] {
        EXPECT_FALSE(Staging(bundle).removeLeftovers());
        EXPECT_FALSE(fs::exists(place));
        Staging staging(bundle);
        EXPECT_FALSE(staging.acquire());
        EXPECT_TRUE(fs::is_empty(place));
        EXPECT_TRUE(bundleIsThere());
    });
}

TEST_F(StuckStaging, OfAnotherUserGivesWayToo)
{
    if (!isRoot)
        GTEST_SKIP() << "only root can lay out a folder of another user";
    ASSERT_EQ(::chown(place.c_str(), 0, 0), 0);
    asAnOrdinaryUser([&] { EXPECT_FALSE(Staging(bundle).acquire()); });
}

TEST_F(StuckStaging, StaysWhereItMayHoldTheOnlyBundle)
{
    fs::rename(bundle, folder.path("elsewhere"));
    asAnOrdinaryUser([&] { EXPECT_EQ(Staging(bundle).acquire()->problem, UpdateProblem::write); });
    EXPECT_TRUE(fs::exists(place + "/locked/file"));
}

} // namespace
} // namespace farview
