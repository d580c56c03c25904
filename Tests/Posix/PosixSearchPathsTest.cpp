#include "Platform/Posix/PosixSearchPaths.h"

#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using Paths = std::vector<std::string>;
using enum SearchPathDirectory;
constexpr unsigned everywhere = userDomain | localDomain | systemDomain;

class PosixSearchPathsTest : public testing::Test
{
protected:
    static std::string systemPanes(const std::string& executable)
    {
        return PosixSearchPaths(EnvironmentUse::honoured, executable)
            .directories(preferencePanes, systemDomain)
            .at(0);
    }

    TemporaryFolder mFolder;
    ScopedEnvironment mData{"XDG_DATA_HOME", "/data"};
    ScopedEnvironment mSystem{"FARVIEW_SYSTEM_ROOT", nullptr};
    ScopedEnvironment mLocal{"FARVIEW_LOCAL_ROOT", nullptr};
};

TEST_F(PosixSearchPathsTest, AnInstalledProgramFindsTheFoldersOfItsPrefix)
{
    PosixSearchPaths paths(EnvironmentUse::honoured, "/opt/x/bin/farview-preferences");
    EXPECT_EQ(paths.directories(preferencePanes, everywhere),
              (Paths{"/data/farview/PreferencePanes", "/usr/local/lib/farview/PreferencePanes",
                     "/opt/x/lib/farview/PreferencePanes"}));
    EXPECT_EQ(paths.extensionFolders(),
              (Paths{"/data/farview/Extensions", "/usr/local/lib/farview/Extensions",
                     "/opt/x/lib/farview/Extensions"}));
}

TEST_F(PosixSearchPathsTest, AProgramInAnInstalledBundleBelongsToTheSamePrefix)
{
    EXPECT_EQ(systemPanes("/opt/x/lib/farview/PreferencePanes/A B.prefPane/Contents/Resources/"
                          "ScreenCapture.app/Contents/Linux/ScreenCapture"),
              "/opt/x/lib/farview/PreferencePanes");
}

TEST_F(PosixSearchPathsTest, ABuildTreeIsARootOfItsOwn)
{
    mFolder.write("build/CMakeCache.txt", "");
    const auto build = mFolder.path("build");
    EXPECT_EQ(systemPanes(build + "/bin/farview-preferences"), build);
    EXPECT_EQ(systemPanes(build + "/A.prefPane/Contents/Resources/S.app/Contents/Linux/S"), build);
    EXPECT_EQ(PosixSearchPaths(EnvironmentUse::honoured, build + "/bin/x").extensionFolders().at(2),
              build + "/Extensions");
}

TEST_F(PosixSearchPathsTest, ThisTestsOwnBuildTreeHasTheDriverExtension)
{
    const auto folder = PosixSearchPaths(EnvironmentUse::honoured).extensionFolders().at(2);
    EXPECT_TRUE(folder.ends_with("/Extensions")) << folder;
    EXPECT_EQ(folder, std::string(FARVIEW_BINARY_DIR) + "/Extensions");
}

TEST_F(PosixSearchPathsTest, TheMaskChoosesTheDomains)
{
    PosixSearchPaths paths(EnvironmentUse::honoured, "/usr/bin/x");
    EXPECT_EQ(paths.directories(preferencePanes, systemDomain),
              Paths{"/usr/lib/farview/PreferencePanes"});
    EXPECT_EQ(paths.directories(preferencePanes, 4), Paths{});
    EXPECT_EQ(paths.directories(applicationSupport, everywhere), Paths{"/data"});
    EXPECT_EQ(paths.directories(applicationSupport, systemDomain), Paths{});
}

TEST_F(PosixSearchPathsTest, TheEnvironmentMovesTheRootsAndPrivilegedCodeIgnoresIt)
{
    const ScopedEnvironment system("FARVIEW_SYSTEM_ROOT", "/moved/system/");
    const ScopedEnvironment local("FARVIEW_LOCAL_ROOT", "/moved/local");
    EXPECT_EQ(PosixSearchPaths(EnvironmentUse::honoured, "/usr/bin/x")
                  .directories(preferencePanes, localDomain | systemDomain),
              (Paths{"/moved/local/PreferencePanes", "/moved/system/PreferencePanes"}));
    const auto ignored = PosixSearchPaths(EnvironmentUse::ignored, "/usr/bin/x")
                             .directories(preferencePanes, everywhere);
    EXPECT_EQ(ignored.at(1), "/usr/local/lib/farview/PreferencePanes");
    EXPECT_EQ(ignored.at(2), "/usr/lib/farview/PreferencePanes");
    EXPECT_NE(ignored.at(0), "/data/farview/PreferencePanes");
}

TEST_F(PosixSearchPathsTest, ARelativeRootIsNotBelieved)
{
    const ScopedEnvironment system("FARVIEW_SYSTEM_ROOT", "moved");
    EXPECT_EQ(systemPanes("/usr/bin/x"), "/usr/lib/farview/PreferencePanes");
}

TEST_F(PosixSearchPathsTest, WithoutAFolderOfDataTheHomeHasIt)
{
    const ScopedEnvironment data("XDG_DATA_HOME", nullptr);
    const ScopedEnvironment home("HOME", "/home/someone");
    EXPECT_EQ(PosixSearchPaths(EnvironmentUse::honoured, "/usr/bin/x")
                  .directories(applicationSupport, userDomain),
              Paths{"/home/someone/.local/share"});
}

TEST_F(PosixSearchPathsTest, PlatformPathsLieBelowTheRoots)
{
    PosixSearchPaths paths(EnvironmentUse::honoured, "/usr/bin/x");
    EXPECT_EQ(paths.located("/System/Library/Extensions/A.kext"),
              "/usr/lib/farview/Extensions/A.kext");
    EXPECT_EQ(paths.located("/System/Library/PreferencePanes/A.prefPane"),
              "/usr/lib/farview/PreferencePanes/A.prefPane");
    EXPECT_EQ(paths.located("/Library/Application/A"), "/usr/local/lib/farview/Application/A");
    for (const char* other : {"", "/", "/etc/fstab", "/Librarya", "Library/x", "/System/Librarya"})
        EXPECT_EQ(paths.located(other), other);
}

TEST_F(PosixSearchPathsTest, ABuildTreesPanesAreFoundUnderTheirPlatformPathToo)
{
    mFolder.write("CMakeCache.txt", "");
    PosixSearchPaths paths(EnvironmentUse::honoured, mFolder.path("bin/x"));
    EXPECT_EQ(paths.located("/System/Library/PreferencePanes/A.prefPane"),
              mFolder.path("A.prefPane"));
}

} // namespace
} // namespace farview
