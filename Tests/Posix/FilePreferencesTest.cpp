#include "Platform/Posix/Settings/MachineIdentifier.h"
#include "Tests/Posix/PreferencesFixture.h"

#include <chrono>
#include <cmath>
#include <fcntl.h>
#include <unistd.h>

namespace farview
{
namespace
{

using Changes = PreferencesChanges;
using namespace std::chrono_literals;

class FilePreferencesTest : public PreferencesFixture
{
};

/// Stores a text as the administrator, or as a program for one host, does.
void preset(const PreferencesLocation& location, const std::string& text)
{
    const auto result = mergeIntoPreferences(location, Changes{{"key", text}}, 1s);
    ASSERT_EQ(result.status, PreferencesMergeResult::Status::done) << result.reason;
}

TEST_F(FilePreferencesTest, EachScopeHasItsFile)
{
    using enum PreferencesUser;
    const auto machine = machineIdentifier();
    EXPECT_EQ(path(), mFolder.path("config/farview/com.example.Domain.plist"));
    EXPECT_EQ(path(PreferencesUser::current, PreferencesHost::current),
              mFolder.path("config/farview/ByHost/com.example.Domain." + machine + ".plist"));
    EXPECT_EQ(path(PreferencesUser::any, PreferencesHost::any),
              mFolder.path("system/com.example.Domain.plist"));
    EXPECT_EQ(path(PreferencesUser::any, PreferencesHost::current),
              mFolder.path("system/ByHost/com.example.Domain." + machine + ".plist"));
}

TEST_F(FilePreferencesTest, RemovingAValueShowsThePresetAgain)
{
    preset(locations().location(domain, PreferencesUser::any, PreferencesHost::any), "preset");
    EXPECT_TRUE(store("own"));
    EXPECT_EQ(read(), PropertyList("own"));
    mPreferences->setAppValue("key", std::nullopt, domain);
    EXPECT_EQ(read(), PropertyList("preset"));
    EXPECT_TRUE(mPreferences->appSynchronize(domain));
    EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList("preset"));
}

TEST_F(FilePreferencesTest, AnEditInPlaceOfTheSameSizeIsSeenAtTheNextRead)
{
    writeFile(listWith("key", "000"));
    const FileDescriptor file(::open(path().c_str(), O_WRONLY | O_CLOEXEC));
    // So quick that, before Linux 6.13, most edits leave the file's times as they were.
    for (int number = 100; number < 999; ++number) {
        const auto text = listWith("key", std::to_string(number));
        ASSERT_EQ(::pwrite(file.get(), text.data(), text.size(), 0),
                  static_cast<ssize_t>(text.size()));
        ASSERT_EQ(read(), PropertyList(std::to_string(number)));
    }
}

TEST_F(FilePreferencesTest, ASynchronizeWithoutAChangeWritesNothing)
{
    EXPECT_TRUE(mPreferences->appSynchronize(domain));
    EXPECT_FALSE(std::filesystem::exists(mFolder.path("config")));
    EXPECT_TRUE(store("text"));
    const auto before = FileIdentity::at(path());
    EXPECT_TRUE(store("text"));
    EXPECT_TRUE(mPreferences->synchronize(domain, PreferencesUser::any, PreferencesHost::current));
    EXPECT_EQ(FileIdentity::at(path()), before);
    EXPECT_FALSE(std::filesystem::exists(mFolder.path("system")));
}

TEST_F(FilePreferencesTest, TheUsersFilesAreTheUsersAloneWhateverTheUmask)
{
    for (const mode_t mask : {0000, 0077, 0777}) {
        std::filesystem::remove_all(mFolder.path("config"));
        const auto before = ::umask(mask);
        const bool isStored = store(static_cast<int>(mask));
        ::umask(before);
        EXPECT_TRUE(isStored);
        EXPECT_EQ(modeOf(path()), 0600u);
        EXPECT_EQ(modeOf(path() + ".lock"), 0600u);
        EXPECT_EQ(modeOf(mFolder.path("config/farview")), 0700u);
    }
}

TEST_F(FilePreferencesTest, ThePresetsCanBeReadByAllWhateverTheUmask)
{
    const auto location =
        locations().location(domain, PreferencesUser::any, PreferencesHost::current);
    for (const mode_t mask : {0000, 0077}) {
        std::filesystem::remove_all(mFolder.path("system"));
        const auto before = ::umask(mask);
        preset(location, "text");
        ::umask(before);
        EXPECT_EQ(modeOf(location.path), 0644u);
        EXPECT_EQ(modeOf(location.path + ".lock"), 0600u);
        EXPECT_EQ(modeOf(mFolder.path("system")), 0755u);
        EXPECT_EQ(modeOf(mFolder.path("system/ByHost")), 0755u);
    }
}

TEST_F(FilePreferencesTest, AFileThatWasOpenToAllIsClosedByTheNextWrite)
{
    writeFile(listWith("other", "text"));
    ::chmod(path().c_str(), 0666);
    EXPECT_TRUE(store(1));
    EXPECT_EQ(modeOf(path()), 0600u);
}

TEST_F(FilePreferencesTest, PrivilegedCodeIgnoresTheEnvironment)
{
    const PreferencesLocations locations(EnvironmentUse::ignored);
    EXPECT_EQ(locations.location(domain, PreferencesUser::any, PreferencesHost::any).path,
              "/etc/farview/com.example.Domain.plist");
    const auto user = locations.location(domain, PreferencesUser::current, PreferencesHost::any);
    EXPECT_FALSE(user.path.starts_with(mFolder.path()));
}

TEST_F(FilePreferencesTest, ARelativeFolderOfSettingsIsNotBelieved)
{
    const ScopedEnvironment relative("XDG_CONFIG_HOME", "relative");
    const ScopedEnvironment home("HOME", mFolder.path("home").c_str());
    EXPECT_EQ(path(), mFolder.path("home/.config/farview/com.example.Domain.plist"));
}

TEST_F(FilePreferencesTest, ADomainThatCannotNameAFileReachesNone)
{
    for (const char* name : {"", "../escape", "a/b", ".hidden"}) {
        mPreferences->setAppValue("key", 1, name);
        EXPECT_FALSE(mPreferences->appSynchronize(name)) << name;
        EXPECT_EQ(mPreferences->copyAppValue("key", name), PropertyList(1));
        EXPECT_EQ(make()->copyAppValue("key", name), std::nullopt);
    }
    EXPECT_FALSE(std::filesystem::exists(mFolder.path("config")));
}

TEST_F(FilePreferencesTest, AValueThatNoFileCanHoldStaysAndTheOthersAreStored)
{
    mPreferences->setAppValue("bad", Date{NAN}, domain);
    EXPECT_FALSE(store("text"));
    EXPECT_EQ(contentsOf(path()), listWith("key", "text"));
    EXPECT_TRUE(read("bad")->is<Date>());
    EXPECT_FALSE(store("more"));
    EXPECT_EQ(contentsOf(path()), listWith("key", "more"));
    EXPECT_EQ(mLog.lines().size(), 1u);
    EXPECT_TRUE(store(Date{5}, "bad"));
}

TEST_F(FilePreferencesTest, ATextThatXMLCannotCarryLeavesAReadableFile)
{
    EXPECT_TRUE(store(std::string("a\0\x1b b", 5)));
    EXPECT_TRUE(store(2, "other"));
    EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList("a\uFFFD\uFFFD b"));
}

TEST_F(FilePreferencesTest, ALinkedFileIsReadAndItsTargetIsReplaced)
{
    const auto target = mFolder.write("elsewhere/real.plist", listWith("other", "text"));
    std::filesystem::create_directories(mFolder.path("config/farview"));
    std::filesystem::create_symlink("../../elsewhere/real.plist", path());
    EXPECT_EQ(read("other"), PropertyList("text"));
    EXPECT_TRUE(store(1));
    EXPECT_TRUE(std::filesystem::is_symlink(path()));
    EXPECT_FALSE(std::filesystem::is_symlink(target));
    EXPECT_NE(contentsOf(target).find("<integer>1</integer>"), std::string::npos);
    EXPECT_EQ(make()->copyAppValue("other", domain), PropertyList("text"));
}

TEST_F(FilePreferencesTest, ALinkToNothingGetsItsTarget)
{
    std::filesystem::create_directories(mFolder.path("config/farview"));
    std::filesystem::create_symlink(mFolder.path("target.plist"), path());
    EXPECT_TRUE(store(1));
    EXPECT_TRUE(std::filesystem::is_symlink(path()));
    EXPECT_TRUE(std::filesystem::is_regular_file(mFolder.path("target.plist")));
}

TEST_F(FilePreferencesTest, LinksInACircleLoseNothing)
{
    std::filesystem::create_directories(mFolder.path("config/farview"));
    std::filesystem::create_symlink(path(), path());
    EXPECT_FALSE(store(1));
    EXPECT_EQ(read(), PropertyList(1));
    std::filesystem::remove(path());
    EXPECT_TRUE(mPreferences->appSynchronize(domain));
    EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList(1));
}

TEST_F(FilePreferencesTest, AFolderOrAPipeInTheFilesPlaceIsLeftAlone)
{
    std::filesystem::create_directories(path());
    EXPECT_FALSE(store(1));
    EXPECT_TRUE(std::filesystem::is_directory(path()));
    std::filesystem::remove(path());
    ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
    EXPECT_EQ(read("other"), std::nullopt);
    EXPECT_FALSE(mPreferences->appSynchronize(domain));
    EXPECT_TRUE(std::filesystem::is_fifo(path()));
    EXPECT_EQ(read(), PropertyList(1));
}

TEST_F(FilePreferencesTest, TheMachineIsNamedByTheFirstIdentifierThatIsOne)
{
    const std::string good = "0123456789abcdef0123456789abcdef";
    const std::string other = "fedcba9876543210fedcba9876543210";
    EXPECT_EQ(machineIdentifierBelow(mFolder.path()), "localhost");
    mFolder.write("var/lib/dbus/machine-id", other + "\n");
    EXPECT_EQ(machineIdentifierBelow(mFolder.path()), other);
    for (const std::string bad : {"", "uninitialized\n", "../../../../etc/passwd"}) {
        mFolder.write("etc/machine-id", bad);
        EXPECT_EQ(machineIdentifierBelow(mFolder.path()), other);
    }
    mFolder.write("etc/machine-id", good + "\n");
    EXPECT_EQ(machineIdentifierBelow(mFolder.path()), good);
}

} // namespace
} // namespace farview
