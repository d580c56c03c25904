#include "Applications/Update/Staging.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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
    EXPECT_EQ(second.tidy()->problem, UpdateProblem::busy);
    EXPECT_TRUE(fs::exists(place + "/file")) << "what is held is left alone";
    first.release();
    EXPECT_FALSE(second.acquire());
}

TEST_F(StagingTest, TidiesWhatAKilledRunLeft)
{
    folder.write(".Pane.update/new/Pane/file", "x");
    fs::permissions(place, fs::perms(0700));
    EXPECT_FALSE(Staging(bundle).tidy());
    EXPECT_FALSE(fs::exists(place));
    EXPECT_TRUE(bundleIsThere());
    EXPECT_FALSE(Staging(bundle).tidy()) << "with nothing to tidy";
    EXPECT_FALSE(fs::exists(place));
}

TEST_F(StagingTest, PutsABundleBackThatWasBeingReplaced)
{
    fs::create_directory(place);
    fs::permissions(place, fs::perms(0700));
    fs::rename(bundle, place + "/old");
    folder.write(".Pane.update/new/Pane/file", "the next bundle");
    EXPECT_FALSE(Staging(bundle).tidy());
    EXPECT_TRUE(bundleIsThere());
    EXPECT_FALSE(fs::exists(place));
}

TEST_F(StagingTest, UsesNoFolderThatOthersMayWriteOrLaidThere)
{
    fs::create_directory(place);
    fs::permissions(place, fs::perms(0770));
    EXPECT_EQ(Staging(bundle).acquire()->problem, UpdateProblem::write);
    fs::remove(place);
    fs::create_directory_symlink(folder.path("Pane"), place);
    EXPECT_EQ(Staging(bundle).acquire()->problem, UpdateProblem::write);
    EXPECT_TRUE(bundleIsThere());
}

} // namespace
} // namespace farview
