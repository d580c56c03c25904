// What both programs do about key files that nobody should rely on, a disk without room, and a
// clock that is wrong.

#include "Tests/Integration/LinkAttack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/mount.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace farview
{
namespace
{

using testing::HasSubstr;
using testing::IsEmpty;

struct Flaw {
    const char* name;
    /// Lays such a file; `sound` is a key that nothing is wrong with.
    std::function<void(const std::string& path, const std::string& sound)> lay;
};

void write(const std::string& path, const std::string& text, mode_t mode)
{
    std::ofstream(path, std::ios::trunc) << text;
    ::chmod(path.c_str(), mode);
}

std::vector<Flaw> flaws()
{
    return {
        {"readable by others", [](auto& path, auto& sound) { write(path, sound, 0644); }},
        {"a link",
         [](auto& path, auto& sound) {
             write(path + ".other", sound, 0600);
             ASSERT_EQ(::symlink((path + ".other").c_str(), path.c_str()), 0);
         }},
        {"linked to another place",
         [](auto& path, auto& sound) {
             write(path + ".other", sound, 0600);
             ASSERT_EQ(::link((path + ".other").c_str(), path.c_str()), 0);
         }},
        {"empty", [](auto& path, auto& /*sound*/) { write(path, "", 0600); }},
        {"broken",
         [](auto& path, auto& sound) { write(path, sound.substr(0, sound.size() / 2), 0600); }},
    };
}

/// By what a file is known that nobody replaced or changed.
auto identity(const std::string& path)
{
    struct stat status {
    };
    ::lstat(path.c_str(), &status);
    return std::tuple(status.st_ino, status.st_mode, status.st_size, status.st_mtim.tv_sec,
                      status.st_mtim.tv_nsec);
}

class LinkKeyAttack : public LinkAttack
{
protected:
    /// The key file of that program with each flaw in turn, and then sound again.
    void layFlaws(const char* domain, State expected)
    {
        const std::string path = ownKeyPath(domain);
        std::ostringstream sound;
        sound << std::ifstream(path).rdbuf();
        for (const Flaw& flaw : flaws()) {
            clear(path);
            flaw.lay(path, sound.str());
            const auto before = identity(path);
            EXPECT_EQ(failure(), expected) << flaw.name << serverLog() << deviceLog();
            EXPECT_EQ(identity(path), before) << flaw.name;
        }
        clear(path);
        write(path, sound.str(), 0600);
    }
    static void clear(const std::string& path)
    {
        std::filesystem::remove(path);
        std::filesystem::remove(path + ".other");
    }
};

TEST_F(LinkKeyAttack, AServerUsesAndReplacesNoKeyThatOthersMayKnow)
{
    startBoth();
    layFlaws(PairedPeers::devices, State::keyUnusable);
    EXPECT_THAT(serverLog(), HasSubstr("other users may read"));
    EXPECT_TRUE(connects()) << "once it is mended" << serverLog() << deviceLog();
}

TEST_F(LinkKeyAttack, ADeviceUsesAndReplacesNoKeyThatOthersMayKnow)
{
    const std::string path = ownKeyPath(PairedPeers::computers);
    ::chmod(path.c_str(), 0644);
    startBoth();
    EXPECT_THAT(deviceLog(), HasSubstr("other users may read"));
    layFlaws(PairedPeers::computers, State::none);
    EXPECT_THAT(serverLog(), HasSubstr("This device's own key cannot be used"));
    EXPECT_TRUE(connects()) << "once it is mended" << serverLog() << deviceLog();
}

TEST_F(LinkKeyAttack, AFullDiskKeepsBothProgramsRunningWithoutAKey)
{
    const std::string disk = home.path("config/farview");
    ASSERT_EQ(::mount("none", disk.c_str(), "tmpfs", 0, "size=65536"), 0);
    const std::string ballast = disk + "/ballast";
    std::ofstream(ballast) << std::string(65536, 'x');
    startBoth();
    EXPECT_THAT(deviceLog(), HasSubstr("No key can be stored"));
    EXPECT_EQ(failure(), State::keyUnusable) << serverLog();
    EXPECT_THAT(serverLog(), HasSubstr("No key can be stored"));
    EXPECT_FALSE(std::filesystem::exists(ownKeyPath(PairedPeers::devices)));
    std::filesystem::remove(ballast);
    ask();
    EXPECT_TRUE(reports(State::comparing)) << "both have made theirs" << serverLog() << deviceLog();
}

/// The clock of either program is off by decades.
class WrongClock : public LinkAttack, public testing::WithParamInterface<const char*>
{
protected:
    void startInThatYear(const std::function<void()>& startProgram)
    {
        const auto right = environment;
        environment["LD_PRELOAD"] = "/usr/$LIB/faketime/libfaketime.so.1";
        environment["FAKETIME"] = std::string("@") + GetParam() + "-01-01 00:00:00";
        startProgram();
        environment = right;
    }
};

TEST_P(WrongClock, OfADeviceChangesNothing)
{
    startServer();
    startInThatYear([this] { startDevice(); });
    ASSERT_TRUE(deviceSays("Announced")) << deviceLog();
    ASSERT_THAT(deviceLog(), HasSubstr(std::string(GetParam()) + "-01-01T"));
    EXPECT_TRUE(connects()) << serverLog() << deviceLog();
}

TEST_P(WrongClock, OfAComputerChangesNothing)
{
    startDevice();
    ASSERT_TRUE(deviceSays("Announced")) << deviceLog();
    startInThatYear([this] { startServer(); });
    EXPECT_TRUE(connects()) << serverLog() << deviceLog();
    EXPECT_THAT(serverLog(), HasSubstr(std::string(GetParam()) + "-01-01T"));
}

INSTANTIATE_TEST_SUITE_P(Years, WrongClock, testing::Values("1971", "2089"));

} // namespace
} // namespace farview
