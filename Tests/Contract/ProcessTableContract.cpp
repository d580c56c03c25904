#include "Platform/Fake/FakeProcessTable.h"
#include "Platform/Posix/Processes/PosixProcessTable.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

namespace farview
{
namespace
{

struct ScriptedProcesses {
    FakeProcessTable body;

    ProcessTable& table() { return body; }
    void add(int pid, const std::string& name) { body.add(pid, name); }
    void remove(int pid) { body.remove(pid); }
    void vanish() { body.setSizeError(ENOENT), body.setContentsErrors({ENOENT}); }
};

/// A folder of the shape of "/proc"; the executable completes a name as it does there.
struct ProcessesInAFolder {
    TemporaryFolder folder;
    PosixProcessTable body{folder.path()};

    ProcessTable& table() { return body; }
    void add(int pid, const std::string& name)
    {
        const auto number = std::to_string(pid);
        folder.write(number + "/stat", number + " (" + name.substr(0, 15) + ") S 1 1");
        std::filesystem::create_symlink("/usr/bin/" + name, folder.path(number + "/exe"));
    }
    void remove(int pid) { std::filesystem::remove_all(folder.path(std::to_string(pid))); }
    void vanish() { std::filesystem::remove_all(folder.path()); }
};

template <typename Scene> class ProcessTableContract : public testing::Test
{
protected:
    std::vector<ProcessRecord> records()
    {
        std::size_t count = 0;
        EXPECT_EQ(mScene.table().size(count), 0);
        std::vector<ProcessRecord> found(count);
        EXPECT_EQ(mScene.table().contents(found, count), 0);
        EXPECT_LE(count, found.size());
        found.resize(count);
        return found;
    }

    Scene mScene;
};

using Scenes = testing::Types<ScriptedProcesses, ProcessesInAFolder>;
TYPED_TEST_SUITE(ProcessTableContract, Scenes);

TYPED_TEST(ProcessTableContract, AnEmptyTableIsNoFailure) { EXPECT_TRUE(this->records().empty()); }

TYPED_TEST(ProcessTableContract, AShortNameEndsWithANUL)
{
    this->mScene.add(42, "ScreenCapture");
    const auto records = this->records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].pid, 42);
    EXPECT_STREQ(records[0].shortName.data(), "ScreenCapture");
}

TYPED_TEST(ProcessTableContract, ALongNameIsItsFirst16Bytes)
{
    this->mScene.add(42, "AVeryLongProgramName");
    const auto records = this->records();
    ASSERT_EQ(records.size(), 1u);
    const std::string name(records[0].shortName.begin(), records[0].shortName.end());
    EXPECT_EQ(name, "AVeryLongProgram");
}

TYPED_TEST(ProcessTableContract, ATableThatHasGrownIsNotCutButReported)
{
    this->mScene.add(1, "a");
    std::size_t count = 0;
    EXPECT_EQ(this->mScene.table().size(count), 0);
    std::vector<ProcessRecord> records(count);
    for (int pid = 2; pid <= static_cast<int>(records.size()) + 1; ++pid)
        this->mScene.add(pid, "b");
    EXPECT_EQ(this->mScene.table().contents(records, count), ENOMEM);
}

TYPED_TEST(ProcessTableContract, AProcessThatEndedIsGone)
{
    this->mScene.add(1, "a");
    this->mScene.add(2, "b");
    this->mScene.remove(1);
    const auto records = this->records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].pid, 2);
}

TYPED_TEST(ProcessTableContract, FailuresAreErrnos)
{
    this->mScene.vanish();
    std::size_t count = 0;
    std::vector<ProcessRecord> records(10);
    EXPECT_EQ(this->mScene.table().size(count), ENOENT);
    EXPECT_EQ(this->mScene.table().contents(records, count), ENOENT);
}

} // namespace
} // namespace farview
