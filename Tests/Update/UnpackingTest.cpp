#include "Applications/Update/Unpacking.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Update/Release.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <numeric>

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

/// An archive that announces a file of one byte and puts it behind a hole of that size.
std::string withHole(std::uint64_t hole)
{
    const auto octal = [](std::uint64_t number) {
        std::array<char, 12> digits{};
        std::snprintf(digits.data(), digits.size(), "%011llo",
                      static_cast<unsigned long long>(number));
        return std::string(digits.data());
    };
    std::string header(512, '\0');
    const auto put = [&](std::size_t at, const std::string& text) {
        header.replace(at, text.size(), text);
    };
    put(0, "Top");
    put(100, "0000644");
    put(124, octal(1));            // bytes in the archive
    put(148, std::string(8, ' ')); // of the checksum
    put(156, "S");                 // a sparse file
    put(257, "ustar  ");
    put(386, octal(hole)); // where they go
    put(398, octal(1));
    put(483, octal(1)); // bytes of the whole file
    const auto sum = std::accumulate(header.begin(), header.end(), 0u);
    put(148, octal(sum).substr(5) + '\0');
    return header + "x" + std::string(511 + 1024, '\0');
}

TEST(Unpacking, CountsWhatAnEntryWritesHoweverLittleItAnnounces)
{
    const TemporaryFolder folder;
    UnpackLimits limits;
    limits.bytes = 1u << 20;
    const auto failure = Unpacking(folder.path(), limits, goOn).unpack(withHole(50u << 20));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->problem, UpdateProblem::archive);
    EXPECT_LE(std::filesystem::file_size(folder.path("Top")), limits.bytes);
    const TemporaryFolder other;
    EXPECT_FALSE(Unpacking(other.path(), limits, goOn).unpack(withHole(limits.bytes - 1)));
    EXPECT_EQ(std::filesystem::file_size(other.path("Top")), limits.bytes);
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
