// The helpers by themselves, run by root on a computer of its own.

#include "Platform/Posix/Processes/ToolTrust.h"
#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Tests/Integration/OwnComputer.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace farview
{
namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

struct FileState {
    unsigned mode;
    uid_t owner;
};

FileState stateOf(const std::string& path)
{
    struct stat status {
    };
    return ::lstat(path.c_str(), &status) == 0 ? FileState{status.st_mode & 07777u, status.st_uid}
                                               : FileState{0, 1};
}

class Helpers : public OwnComputer
{
protected:
    static PropertyList::Dictionary stored()
    {
        const auto file = readDictionaryFile(settingFile());
        EXPECT_EQ(file.status, PropertyListFile::Status::read) << file.reason;
        return file.list ? *file.list->get<PropertyList::Dictionary>() : PropertyList::Dictionary{};
    }
    static void preset(const std::string& bytes)
    {
        fs::create_directories(fs::path(settingFile()).parent_path());
        std::ofstream(settingFile()) << bytes;
    }
    static int runTool(const char* which) { return run({tool(which)}).first; }
    /// Starts the tool with something done to its process first; its wait status.
    static int runAfter(const char* which, const std::function<void()>& first)
    {
        const pid_t pid = ::fork();
        if (pid == 0) {
            first();
            ::execl(tool(which).c_str(), tool(which).c_str(), nullptr);
            ::_exit(126);
        }
        int status = 0;
        ::waitpid(pid, &status, 0);
        return status;
    }

    const PropertyList::Dictionary on{{"DisplayResolutionEnabled", true}};
    const PropertyList::Dictionary off{{"DisplayResolutionDisabled", true}};
};

TEST_F(Helpers, StoreOneKeyAndRemoveTheOther)
{
    EXPECT_EQ(runTool("on"), 0);
    EXPECT_EQ(stored(), on);
    EXPECT_EQ(runTool("on"), 0);
    EXPECT_EQ(stored(), on);
    EXPECT_EQ(runTool("off"), 0);
    EXPECT_EQ(stored(), off);
}

TEST_F(Helpers, AreReadByEveryUser)
{
    EXPECT_EQ(settingFor("fvother"), "not offered");
    EXPECT_EQ(runTool("on"), 0);
    EXPECT_EQ(settingFor("fvother"), "offered");
    EXPECT_EQ(runTool("off"), 0);
    EXPECT_EQ(settingFor("fvother"), "not offered");
}

TEST_F(Helpers, LeaveEverythingElseInTheFile)
{
    preset("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
           "<key>Other</key><integer>7</integer></dict></plist>\n");
    EXPECT_EQ(runTool("on"), 0);
    EXPECT_EQ(stored(), (PropertyList::Dictionary{{"DisplayResolutionEnabled", true},
                                                  {"Other", std::int64_t{7}}}));
}

TEST_F(Helpers, SetABrokenFileAsideAndLoseNothingOfIt)
{
    preset("broken");
    EXPECT_EQ(runTool("off"), 0);
    EXPECT_EQ(stored(), off);
    EXPECT_TRUE(fs::exists(settingFile() + ".broken-1"));
}

TEST_F(Helpers, MakeFilesThatAllMayReadAndRootAloneMayWriteWhateverTheUmask)
{
    for (const mode_t mask : {mode_t{0}, mode_t{077}, mode_t{0777}}) {
        forgetSetting();
        EXPECT_EQ(runAfter("on", [mask] { ::umask(mask); }), 0);
        const std::string folder = fs::path(settingFile()).parent_path();
        EXPECT_EQ(stateOf("/etc/farview").mode, 0755u) << mask;
        EXPECT_EQ(stateOf(folder).mode, 0755u) << mask;
        EXPECT_EQ(stateOf(settingFile()).mode, 0644u) << mask;
        EXPECT_EQ(stateOf(settingFile() + ".lock").mode, 0600u) << mask;
        EXPECT_EQ(stateOf(settingFile() + ".lock").owner, 0u);
        EXPECT_EQ(settingFor("fvother"), "offered") << mask;
    }
}

TEST_F(Helpers, BelieveNothingOfTheEnvironment)
{
    const auto [status, output] =
        run({"env", "FARVIEW_SYSTEM_CONFIG=/run/elsewhere", "HOME=/run/elsewhere",
             "XDG_CONFIG_HOME=/run/elsewhere", tool("on")});
    EXPECT_EQ(status, 0) << output;
    EXPECT_FALSE(fs::exists("/run/elsewhere"));
    EXPECT_EQ(stored(), on);
}

TEST_F(Helpers, TakeNoArguments)
{
    const auto [status, output] = run({tool("on"), "off"});
    EXPECT_EQ(status, 64);
    EXPECT_FALSE(fs::exists("/etc/farview"));
}

TEST_F(Helpers, WriteNothingIntoTheSettingWhenTheirStandardStreamsAreClosed)
{
    preset("broken");
    EXPECT_EQ(runAfter("on",
                       [] {
                           for (const int descriptor : {0, 1, 2})
                               ::close(descriptor);
                       }),
              0);
    EXPECT_EQ(stored(), on);
}

TEST_F(Helpers, SayWhyWhenTheyCannotStoreAnything)
{
    const auto [status, output] = run(as("fvuser", {tool("on")}));
    EXPECT_EQ(status, 1);
    EXPECT_THAT(output, HasSubstr("Permission denied"));
    EXPECT_FALSE(fs::exists("/etc/farview"));
}

TEST_F(Helpers, KilledInTheMiddleOfWritingLeaveEverythingAsItWas)
{
    EXPECT_EQ(runTool("off"), 0);
    const int status = runAfter("on", [] {
        // The kernel kills it at the first byte that it writes.
        const rlimit nothing{0, 0};
        ::setrlimit(RLIMIT_FSIZE, &nothing);
        const rlimit noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
    });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << status;
    EXPECT_EQ(stored(), off);
    EXPECT_EQ(settingFor("fvother"), "not offered");
    EXPECT_EQ(runTool("on"), 0) << "and nothing it left is in the way";
    EXPECT_EQ(stored(), on);
}

TEST_F(Helpers, KilledAtAnyMomentLeaveTheSettingBeforeOrAfter)
{
    EXPECT_EQ(runTool("off"), 0);
    for (int moment = 0; moment < 60; ++moment) {
        const char* const which = moment % 2 == 0 ? "on" : "off";
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::execl(tool(which).c_str(), tool(which).c_str(), nullptr);
            ::_exit(126);
        }
        ::usleep(static_cast<useconds_t>(moment * 50));
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        const auto now = stored();
        EXPECT_TRUE(now == on || now == off);
        EXPECT_EQ(stateOf(settingFile()).mode, 0644u);
    }
    EXPECT_EQ(runTool("on"), 0);
    EXPECT_EQ(stored(), on);
}

TEST_F(Helpers, RunAtOnceEndWithOneOfTheTwoSettings)
{
    std::vector<std::unique_ptr<ChildProcess>> all;
    for (int count = 0; count < 10; ++count)
        all.push_back(std::make_unique<ChildProcess>(
            std::vector<std::string>{tool(count % 2 == 0 ? "on" : "off")}));
    for (const auto& each : all)
        EXPECT_EQ(each->waitForEnd(), 0);
    EXPECT_TRUE(stored() == on || stored() == off);
}

TEST_F(Helpers, AreInstalledSoThatRootAloneCanChangeThem)
{
    fs::remove_all("/opt/farview");
    ::umask(002);
    install();
    ::umask(022);
    for (const char* which : {"on", "off"}) {
        EXPECT_EQ(stateOf(tool(which)).mode, 0755u);
        EXPECT_EQ(firstChangeableByOthers(partsOfPath(tool(which))), "");
    }
    const auto [status, output] = run({"ldd", tool("on")});
    EXPECT_EQ(output.find("Qt"), std::string::npos) << output;
}

TEST_F(Helpers, InstalledBelowUsrLocalHaveTheirPolicyWherePolkitLooks)
{
    const auto [status, output] =
        run({"env", "DESTDIR=/run/test/image", FARVIEW_CMAKE, "--install", FARVIEW_BINARY_DIR,
             "--component", "PrivilegedHelpers", "--prefix", "/usr/local"});
    ASSERT_EQ(status, 0) << output;
    const std::string image = "/run/test/image";
    std::ifstream file(image + "/usr/share/polkit-1/actions/com.quillon.displayresolutions.policy");
    const std::string policy{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(policy, HasSubstr("exec.path\">/usr/local/lib/farview/PreferencePanes/"));
    EXPECT_TRUE(fs::exists(image + "/usr/local/lib/farview/PreferencePanes/Farview "
                                   "Preferences.prefPane/Contents/Resources/"
                                   "com.quillon.displayresolutionson"));
    install();
}

} // namespace
} // namespace farview
