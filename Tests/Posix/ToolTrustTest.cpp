#include "Platform/Posix/Processes/ToolTrust.h"

#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace farview
{
namespace
{

using testing::ElementsAre;

constexpr mode_t folder = S_IFDIR;
constexpr mode_t file = S_IFREG;

TEST(ToolTrust, BelongsToWhatRootAloneCanChange)
{
    struct Row {
        const char* what;
        std::vector<PathPart> parts;
        std::string blamed;
    };
    const PathPart root{"/", 0, folder | 0755};
    const Row rows[] = {
        {"a tool as it is installed",
         {root, {"/opt", 0, folder | 0755}, {"/opt/t", 0, file | 0755}},
         ""},
        {"a folder only for root",
         {root, {"/opt", 0, folder | 0700}, {"/opt/t", 0, file | 0755}},
         ""},
        {"a program that gains rights by itself", {root, {"/t", 0, file | 04755}}, ""},
        {"a tool of somebody else",
         {root, {"/opt", 0, folder | 0755}, {"/opt/t", 1000, file | 0755}},
         "/opt/t"},
        {"a tool that a group may write", {root, {"/t", 0, file | 0775}}, "/t"},
        {"a tool that everyone may write", {root, {"/t", 0, file | 0757}}, "/t"},
        {"a folder of somebody else",
         {root, {"/home/me", 1000, folder | 0755}, {"/home/me/t", 0, file | 0755}},
         "/home/me"},
        {"a folder that a group may write",
         {root, {"/opt", 0, folder | 0775}, {"/opt/t", 0, file | 0755}},
         "/opt"},
        {"a folder for everyone",
         {root, {"/tmp", 0, folder | 01777}, {"/tmp/t", 0, file | 0755}},
         "/tmp"},
        {"the very first folder", {{"/", 0, folder | 0777}, {"/t", 0, file | 0755}}, "/"},
        {"both", {root, {"/a", 5, folder | 0755}, {"/a/t", 5, file | 0777}}, "/a"},
        {"nothing", {}, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(firstChangeableByOthers(row.parts), row.blamed) << row.what;
}

TEST(ToolTrust, LooksAtEveryPartOfThePath)
{
    TemporaryFolder folder;
    const auto tool = folder.write("a/b/tool", "#!/bin/sh\n", true);
    std::vector<std::string> paths;
    for (const auto& part : partsOfPath(tool))
        paths.push_back(part.path);
    EXPECT_EQ(paths.front(), "/");
    EXPECT_EQ(paths.back(), tool);
    EXPECT_EQ(paths[paths.size() - 2], folder.path("a/b"));
    EXPECT_EQ(paths[paths.size() - 3], folder.path("a"));
    const auto last = partsOfPath(tool).back();
    EXPECT_EQ(last.owner, ::geteuid());
    EXPECT_TRUE(S_ISREG(last.mode));
}

TEST(ToolTrust, RefusesWhatLiesInTheFolderForEveryone)
{
    TemporaryFolder folder;
    const auto tool = folder.write("tool", "#!/bin/sh\n", true);
    EXPECT_NE(firstChangeableByOthers(partsOfPath(canonicalProgram(tool))), "")
        << "below " << std::filesystem::temp_directory_path();
}

TEST(ToolTrust, TrustsTheSystemsOwnPrograms)
{
    const auto tool = canonicalProgram("/bin/true");
    ASSERT_NE(tool, "");
    EXPECT_EQ(firstChangeableByOthers(partsOfPath(tool)), "")
        << "in a namespace where root is not root, this cannot pass";
}

TEST(ToolTrust, DoesNotTrustWhatIsNotThere)
{
    EXPECT_EQ(firstChangeableByOthers(partsOfPath("/nonexistent-farview/tool")),
              "/nonexistent-farview");
}

TEST(ToolTrust, FollowsLinksToTheProgramItself)
{
    TemporaryFolder folder;
    const auto tool = folder.write("real/tool", "#!/bin/sh\n", true);
    std::filesystem::create_symlink(folder.path("real"), folder.path("link"));
    std::filesystem::create_symlink(folder.path("link/tool"), folder.path("tool"));
    const auto canonical = std::filesystem::canonical(tool).string();
    EXPECT_EQ(canonicalProgram(folder.path("tool")), canonical);
    EXPECT_EQ(canonicalProgram(folder.path("real/../link/./tool")), canonical);
}

TEST(ToolTrust, KnowsNoProgramWhereThereIsNone)
{
    TemporaryFolder folder;
    folder.write("text", "no program");
    std::filesystem::create_symlink(folder.path("loop"), folder.path("loop"));
    for (const auto& path : {folder.path("text"), folder.path("missing"), folder.path("loop"),
                             folder.path(), std::string("relative"), std::string()})
        EXPECT_EQ(canonicalProgram(path), "") << path;
}

} // namespace
} // namespace farview
