#include "Platform/Posix/PosixFileManager.h"
#include "Tests/Posix/PreferencesFixture.h"
#include "Tests/Support/ForkedProcess.h"

#include <array>
#include <cmath>
#include <fstream>

namespace farview
{
namespace
{

class PosixFileManagerTest : public testing::Test
{
protected:
    std::vector<std::string> namesInFolder() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(mFolder.path()))
            names.push_back(entry.path().filename());
        return names;
    }
    /// What another process does until it is killed.
    void writeAgainAndAgain()
    {
        const std::vector<std::uint8_t> bytes(8'000'000, 'x');
        for (;;)
            mManager.writeData(bytes, mFolder.path("file"));
    }

    TemporaryFolder mFolder;
    PosixFileManager mManager;
};

TEST_F(PosixFileManagerTest, MakesFoldersForTheUserAloneWhateverTheUmask)
{
    const auto before = ::umask(0);
    EXPECT_TRUE(mManager.createDirectoryAtPath(mFolder.path("a/b")));
    ::umask(0777);
    EXPECT_TRUE(mManager.createDirectoryAtPath(mFolder.path("c/d")));
    ::umask(before);
    for (const char* name : {"a", "a/b", "c", "c/d"})
        EXPECT_EQ(modeOf(mFolder.path(name)), 0700u) << name;
}

TEST_F(PosixFileManagerTest, NoFolderComesWhereAFileIs)
{
    mFolder.write("file", "text");
    EXPECT_FALSE(mManager.createDirectoryAtPath(mFolder.path("file")));
    EXPECT_FALSE(mManager.createDirectoryAtPath(mFolder.path("file/below")));
    EXPECT_EQ(contentsOf(mFolder.path("file")), "text");
}

TEST_F(PosixFileManagerTest, WritesFilesForTheUserAlone)
{
    const auto before = ::umask(0);
    EXPECT_TRUE(mManager.writePropertyList("text", mFolder.path("list")));
    ::umask(before);
    EXPECT_EQ(modeOf(mFolder.path("list")), 0600u);
}

TEST_F(PosixFileManagerTest, WritesBytesForTheUserAloneAndLeavesNoOtherFile)
{
    const std::array<std::uint8_t, 3> bytes = {'a', 0, 255};
    const auto before = ::umask(0);
    EXPECT_TRUE(mManager.writeData(bytes, mFolder.path("bytes")));
    ::umask(before);
    EXPECT_EQ(modeOf(mFolder.path("bytes")), 0600u);
    EXPECT_EQ(contentsOf(mFolder.path("bytes")), std::string("a\0\xFF", 3));
    const auto files = std::filesystem::directory_iterator(mFolder.path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(PosixFileManagerTest, BytesAreReplacedInOneStep)
{
    EXPECT_TRUE(mManager.writeData(std::array<std::uint8_t, 1>{'o'}, mFolder.path("bytes")));
    std::ifstream reader(mFolder.path("bytes"));
    EXPECT_TRUE(mManager.writeData(std::array<std::uint8_t, 1>{'n'}, mFolder.path("bytes")));
    EXPECT_EQ(reader.get(), 'o') << "who had it open goes on reading the old file";
    EXPECT_EQ(contentsOf(mFolder.path("bytes")), "n");
}

TEST_F(PosixFileManagerTest, SetsABrokenFileAsideAndLeavesNoOtherFile)
{
    mFolder.write("list", "broken");
    EXPECT_TRUE(mManager.writePropertyList("text", mFolder.path("list")));
    EXPECT_EQ(contentsOf(mFolder.path("list.broken-1")), "broken");
    const auto files = std::filesystem::directory_iterator(mFolder.path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 2);
}

TEST_F(PosixFileManagerTest, WhatKilledWritersLeaveGoesWithTheNextWrite)
{
    const std::vector<std::string> nothingElse = {"file"};
    std::size_t left = 0;
    for (int round = 0; round < 20; ++round) {
        {
            const ForkedProcess first([&] { writeAgainAndAgain(); });
            const ForkedProcess second([&] { writeAgainAndAgain(); });
            while (namesInFolder().size() < 2)
                ::usleep(100);
        }
        left += namesInFolder().size() - 1;
        ASSERT_TRUE(mManager.writeData(std::array<std::uint8_t, 1>{'l'}, mFolder.path("file")));
        ASSERT_EQ(namesInFolder(), nothingElse) << "round " << round;
    }
    EXPECT_GT(left, 0u) << "no writer was killed in the middle of a write";
    EXPECT_EQ(contentsOf(mFolder.path("file")), "l");
}

TEST_F(PosixFileManagerTest, AListThatCannotBeWrittenLeavesTheOldOne)
{
    EXPECT_TRUE(mManager.writePropertyList("old", mFolder.path("list")));
    EXPECT_FALSE(mManager.writePropertyList(Date{NAN}, mFolder.path("list")));
    EXPECT_EQ(mManager.propertyListWithContentsOfFile(mFolder.path("list")), PropertyList("old"));
}

TEST_F(PosixFileManagerTest, ReplacesTheTargetOfALink)
{
    mFolder.write("target", "broken");
    std::filesystem::create_symlink("target", mFolder.path("link"));
    EXPECT_TRUE(mManager.writePropertyList("text", mFolder.path("link")));
    EXPECT_TRUE(std::filesystem::is_symlink(mFolder.path("link")));
    EXPECT_EQ(mManager.propertyListWithContentsOfFile(mFolder.path("target")),
              PropertyList("text"));
}

} // namespace
} // namespace farview
