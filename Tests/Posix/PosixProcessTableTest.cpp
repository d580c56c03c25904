#include "Platform/Posix/Processes/PosixProcessTable.h"

#include "Common/GetPID.h"
#include "Platform/Platform.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <grp.h>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace farview
{
namespace
{

std::vector<ProcessRecord> recordsOf(PosixProcessTable& table)
{
    std::size_t count = 0;
    EXPECT_EQ(table.size(count), 0);
    // Others may start meanwhile.
    std::vector<ProcessRecord> records(count + 1000);
    EXPECT_EQ(table.contents(records, count), 0);
    records.resize(count);
    return records;
}

std::string nameIn(const ProcessRecord& record)
{
    return {record.shortName.data(), ::strnlen(record.shortName.data(), record.shortName.size())};
}

std::optional<std::string> nameOf(const std::vector<ProcessRecord>& records, pid_t pid)
{
    const auto found = std::find_if(records.begin(), records.end(),
                                    [pid](const auto& each) { return each.pid == pid; });
    return found == records.end() ? std::nullopt : std::optional(nameIn(*found));
}

/// The name under which the table lists a process that calls itself `name`.
std::optional<std::string> listedName(const std::string& name)
{
    ForkedProcess process([&] {
        ::prctl(PR_SET_NAME, name.c_str());
        ::raise(SIGSTOP);
    });
    EXPECT_TRUE(process.waitUntilStopped());
    PosixProcessTable table;
    return nameOf(recordsOf(table), process.pid());
}

/// The name under which the table lists a program of that file name.
std::optional<std::string> listedProgramName(const std::string& name)
{
    TemporaryFolder folder;
    const auto program = folder.path(name);
    std::filesystem::copy_file("/bin/sleep", program);
    ForkedProcess process([&] { ::execl(program.c_str(), program.c_str(), "60", nullptr); });
    PosixProcessTable table;
    // Between the fork and the exec the process still bears the test's name.
    for (int attempt = 0; attempt < 5000; ++attempt) {
        const auto listed = nameOf(recordsOf(table), process.pid());
        if (listed && name.starts_with(listed->substr(0, 15)))
            return listed;
        ::usleep(1000);
    }
    return std::nullopt;
}

TEST(PosixProcessTable, ListsThisProcess)
{
    PosixProcessTable table;
    EXPECT_EQ(nameOf(recordsOf(table), ::getpid()), "posix_test");
}

TEST(PosixProcessTable, ListsNamesWithSpacesAndParentheses)
{
    for (const char* name : {"a name", "(x) S (", ")) Z 1 2", " ", "a\nb"})
        EXPECT_EQ(listedName(name), name);
}

TEST(PosixProcessTable, CompletesANameThatTheKernelCut)
{
    EXPECT_EQ(listedProgramName("ScreenCaptureServer"), "ScreenCaptureSer");
    EXPECT_EQ(listedProgramName("exactly_sixteen_"), "exactly_sixteen_");
    EXPECT_EQ(listedProgramName("exactlyfifteen_"), "exactlyfifteen_");
}

TEST(PosixProcessTable, KeepsANameThatIsNotTheExecutables)
{
    EXPECT_EQ(listedName("fifteen_letters"), "fifteen_letters");
}

TEST(PosixProcessTable, LeavesZombiesOut)
{
    ForkedProcess process([] {});
    process.waitUntilZombie();
    PosixProcessTable table;
    EXPECT_EQ(nameOf(recordsOf(table), process.pid()), std::nullopt);
}

TEST(PosixProcessTable, ListsAnOwnProcessThatKeepsItsMemoryPrivate)
{
    ForkedProcess process([] {
        ::prctl(PR_SET_DUMPABLE, 0);
        ::raise(SIGSTOP);
    });
    EXPECT_TRUE(process.waitUntilStopped());
    PosixProcessTable table;
    EXPECT_NE(nameOf(recordsOf(table), process.pid()), std::nullopt);
}

TEST(PosixProcessTable, LeavesTheProcessesOfOthersOut)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can start a process of another user";
    constexpr uid_t nobody = 65534;
    ForkedProcess process([] {
        EXPECT_EQ(::setgroups(0, nullptr), 0);
        EXPECT_EQ(::setuid(nobody), 0);
        ::raise(SIGSTOP);
    });
    EXPECT_TRUE(process.waitUntilStopped());
    PosixProcessTable table;
    EXPECT_EQ(nameOf(recordsOf(table), process.pid()), std::nullopt);
}

/// For a process of its own: from here on it can open one file and no second one beside it.
void leaveOneDescriptor()
{
    const FileDescriptor lowest(::dup(STDIN_FILENO));
    rlimit limit{};
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = static_cast<rlim_t>(lowest.get()) + 1;
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

TEST(PosixProcessTable, FailsWhenAProcessCannotBeLookedAtForWantOfDescriptors)
{
    inItsOwnProcess([] {
        PosixProcessTable table;
        std::vector<ProcessRecord> records(1000);
        std::size_t count = 7;
        leaveOneDescriptor();
        EXPECT_EQ(table.contents(records, count), EMFILE);
        EXPECT_EQ(count, 7u);
    });
}

TEST(PosixProcessTable, ASearchEndsWithTheErrorWhenTheTableCannotBeRead)
{
    inItsOwnProcess([] {
        PosixProcessTable table;
        Platform platform;
        platform.processTable = &table;
        const Platform::Scope scope(platform);
        std::int32_t pid = 0;
        std::uint32_t count = 0;
        std::int32_t error = 0;
        ::alarm(10);
        EXPECT_EQ(GetAllPIDsForProcessName("no program", &pid, 1, &count, &error), -1);
        leaveOneDescriptor();
        EXPECT_EQ(GetAllPIDsForProcessName("no program", &pid, 1, &count, &error), -3);
        EXPECT_EQ(error, EMFILE);
    });
}

TEST(PosixProcessTable, CountsAnewAfterAnyFailedRead)
{
    TemporaryFolder root;
    root.write("1/stat", "1 (name) S 1");
    PosixProcessTable table(root.path());
    std::size_t before = 0;
    EXPECT_EQ(table.size(before), 0);
    const std::string moved = root.path() + ".moved";
    std::filesystem::rename(root.path(), moved);
    std::vector<ProcessRecord> records(4);
    std::size_t count = 0;
    EXPECT_EQ(table.contents(records, count), ENOENT);
    std::filesystem::rename(moved, root.path());
    for (int pid = 2; pid < 100; ++pid)
        root.write(std::to_string(pid) + "/stat", "2 (name) S 1");
    while (table.size(count) != 0) {
    }
    EXPECT_GE(count, 99u);
}

TEST(PosixProcessTable, SkipsVanishedAndMalformedEntries)
{
    TemporaryFolder root;
    root.write("5/stat", "5 (good) R 1 2");
    root.write("6/stat", "");
    root.write("7/stat", "7 (");
    root.write("8/stat", "8 (name)");
    root.write("9/stat", ")9( S");
    root.write("10/other", "gone");
    root.write("-11/stat", "11 (negative) S");
    root.write("99999999999/stat", "1 (too large) S");
    root.write("self/stat", "12 (self) S");
    PosixProcessTable table(root.path());
    const auto records = recordsOf(table);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(nameOf(records, 5), "good");
}

} // namespace
} // namespace farview
