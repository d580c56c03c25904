#include "Applications/Doctor/Probes.h"

#include "Platform/Posix/Settings/PreferencesLocations.h"
#include "Tests/Applications/DoctorNames.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <unistd.h>

using namespace farview;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace
{

const std::string goodFile = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>currentState</key><integer>1</integer></dict></plist>
)";

class PreferencesProbe : public testing::Test
{
protected:
    Findings examine() const
    {
        return findingsAboutPreferences(
            preferencesFacts(PreferencesLocations(EnvironmentUse::honoured), seenDevices()));
    }
    std::string seenDevices() const { return home.path("data/Farview/SeenDevices.plist"); }
    std::string settings() const { return home.path("config/farview/com.quillon.Farview.plist"); }
    /// Every file below the home, with its contents.
    std::map<std::string, std::string> everything() const
    {
        std::map<std::string, std::string> files;
        for (const auto& each : std::filesystem::recursive_directory_iterator(home.path())) {
            if (!each.is_regular_file())
                continue;
            std::ifstream file(each.path());
            files[each.path()] = {std::istreambuf_iterator<char>(file), {}};
        }
        return files;
    }

    /// Gives the home to nobody, and becomes nobody; an ordinary user stays who he is.
    void becomeOrdinary() const
    {
        constexpr uid_t nobody = 65534;
        if (::geteuid() != 0)
            return;
        EXPECT_EQ(::chown(home.path().c_str(), nobody, nobody), 0);
        for (const auto& each : std::filesystem::recursive_directory_iterator(home.path()))
            EXPECT_EQ(::chown(each.path().c_str(), nobody, nobody), 0);
        EXPECT_EQ(::setresuid(nobody, nobody, nobody), 0);
    }

    TemporaryFolder home;
    ScopedEnvironment config{"XDG_CONFIG_HOME", home.path("config").c_str()};
    ScopedEnvironment system{"FARVIEW_SYSTEM_CONFIG", home.path("etc").c_str()};
};

TEST_F(PreferencesProbe, FindsNothingOnAFreshMachine)
{
    EXPECT_THAT(names(examine()), ElementsAre("none"));
    EXPECT_THAT(everything(), IsEmpty()) << "and makes nothing";
}

TEST_F(PreferencesProbe, FindsGoodFilesOfTheUserAndOfTheAdministrator)
{
    home.write("config/farview/com.quillon.Farview.plist", goodFile);
    home.write("etc/com.quillon.Farview.plist", goodFile);
    home.write("config/farview/com.quillon.ScreenCapture.plist", goodFile);
    EXPECT_THAT(names(examine()), ElementsAre("good", "good", "good"));
}

TEST_F(PreferencesProbe, NamesABrokenFileAndLeavesItWhereItIs)
{
    home.write("config/farview/com.quillon.Farview.plist", "<plist><dict>");
    home.write("data/Farview/SeenDevices.plist", "rubbish");
    const auto before = everything();
    const auto findings = examine();
    EXPECT_THAT(names(findings), ElementsAre("broken", "broken"));
    EXPECT_EQ(findings.front().details.at("path"), settings());
    EXPECT_EQ(everything(), before);
}

TEST_F(PreferencesProbe, NamesAFileThatIsNoFile)
{
    std::filesystem::create_directories(settings());
    EXPECT_THAT(names(examine()), Contains("unreadable"));
}

TEST_F(PreferencesProbe, NamesCopiesThatWereSetAside)
{
    home.write("config/farview/com.quillon.Farview.plist", goodFile);
    const auto copy = home.write("config/farview/com.quillon.Farview.plist.broken-1", "x");
    const auto findings = examine();
    EXPECT_THAT(names(findings), ElementsAre("good", "set-aside"));
    EXPECT_EQ(findings.back().details.at("copy"), copy);
}

TEST_F(PreferencesProbe, NoticesAFolderThatCannotBeWritten)
{
    home.write("config/farview/com.quillon.Farview.plist", goodFile);
    // For root every folder can be written, so the question is put by somebody else.
    ForkedProcess ordinaryUser([this] {
        becomeOrdinary();
        namespace fs = std::filesystem;
        fs::permissions(home.path("config/farview"), fs::perms::owner_read | fs::perms::owner_exec);
        EXPECT_THAT(names(examine()), Contains("not-writable"));
        fs::permissions(home.path("config/farview"), fs::perms::owner_all);
        EXPECT_THAT(names(examine()), Not(Contains("not-writable")));
    });
    EXPECT_EQ(ordinaryUser.wait(), 0);
}

} // namespace
