#include "Applications/Update/Unpacking.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Update/Release.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace farview
{
namespace
{

using Kind = ArchiveEntry::Kind;

const auto goOn = [] { return false; };

TEST(InnerPath, LeadsNowhereButDown)
{
    for (const char* good : {"a", "a/b", "a b/c d", ".a", "a/..b", "..."})
        EXPECT_EQ(innerPath(good), good);
    EXPECT_EQ(innerPath("a/b/"), "a/b");
    for (const char* bad :
         {"", "/", ".", "..", "/a", "a//b", "a/../b", "../a", "a/..", "./a", "a/.", "a//", "//a"})
        EXPECT_FALSE(innerPath(bad)) << bad;
}

TEST(Unpacking, LaysOutWhatWasPacked)
{
    const TemporaryFolder folder;
    Unpacking unpacking(folder.path(), {}, goOn);
    const auto failure = unpacking.unpack(packed({{"Top/", Kind::folder, "", 0700, 0},
                                                  {"Top/file", Kind::file, "text", 0600, 0},
                                                  {"Top/program", Kind::file, "run", 04777, 0},
                                                  {"Top/large", Kind::file, "", 0644, 300'000}}));
    EXPECT_FALSE(failure) << failure->detail;
    EXPECT_EQ(unpacking.top(), "Top");
    const std::map<std::string, std::string> expected = {
        {"Top", "493/"},
        {"Top/file", "420:text"},
        {"Top/large", "420:" + std::string(300'000, '\0')},
        {"Top/program", "493:run"}};
    EXPECT_EQ(snapshot(folder.path()), expected);
}

TEST(Unpacking, KeepsToItsLimits)
{
    const auto archive = packed({{"Top", Kind::folder, "", 0755, 0},
                                 {"Top/a", Kind::file, "12345", 0644, 0},
                                 {"Top/b", Kind::file, "12345", 0644, 0}});
    struct Row {
        UnpackLimits limits;
        bool fits;
    };
    const Row rows[] = {
        {{10, 3, 5}, true}, {{9, 3, 5}, false}, {{10, 2, 5}, false}, {{10, 3, 4}, false}};
    for (const auto& row : rows) {
        const TemporaryFolder folder;
        const auto failure = Unpacking(folder.path(), row.limits, goOn).unpack(archive);
        EXPECT_EQ(!failure, row.fits);
        EXPECT_TRUE(row.fits || failure->problem == UpdateProblem::archive);
    }
}

TEST(Unpacking, EndsWhenItIsBrokenOff)
{
    const TemporaryFolder folder;
    int asked = 0;
    Unpacking unpacking(folder.path(), {}, [&] { return ++asked > 2; });
    EXPECT_TRUE(unpacking.unpack(packed({{"Top", Kind::folder, "", 0755, 0},
                                         {"Top/a", Kind::file, "1", 0644, 0},
                                         {"Top/b", Kind::file, "1", 0644, 0}})));
    EXPECT_FALSE(std::filesystem::exists(folder.path("Top/b")));
}

TEST(Unpacking, AFolderThatCannotBeWrittenIsNotTheArchivesFault)
{
    const auto archive = packed({{"Top", Kind::folder, "", 0755, 0}});
    const auto failure = Unpacking("/proc/nowhere", {}, goOn).unpack(archive);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->problem, UpdateProblem::write);
}

} // namespace
} // namespace farview
