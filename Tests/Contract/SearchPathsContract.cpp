#include "Platform/Fake/FakeSearchPaths.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

struct ScriptedPaths {
    FakeSearchPaths body;
};

struct PathsOfAProgram {
    ScopedEnvironment home{"HOME", "/home/user"};
    ScopedEnvironment data{"XDG_DATA_HOME", "/home/user/.local/share"};
    ScopedEnvironment system{"FARVIEW_SYSTEM_ROOT", nullptr};
    ScopedEnvironment local{"FARVIEW_LOCAL_ROOT", nullptr};
    PosixSearchPaths body{EnvironmentUse::honoured, "/usr/bin/program"};
};

template <typename Scene> class SearchPathsContract : public testing::Test
{
protected:
    SearchPaths& paths() { return mScene.body; }
    Scene mScene;
};

using Scenes = testing::Types<ScriptedPaths, PathsOfAProgram>;
TYPED_TEST_SUITE(SearchPathsContract, Scenes);
using Paths = std::vector<std::string>;
using enum SearchPathDirectory;

TYPED_TEST(SearchPathsContract, TheDomainsComeInTheirOrder)
{
    EXPECT_EQ(
        this->paths().directories(preferencePanes, systemDomain | localDomain | userDomain),
        (Paths{"/home/user/.local/share/farview/PreferencePanes",
               "/usr/local/lib/farview/PreferencePanes", "/usr/lib/farview/PreferencePanes"}));
}

TYPED_TEST(SearchPathsContract, TheMaskLeavesDomainsOut)
{
    EXPECT_EQ(this->paths().directories(preferencePanes, systemDomain),
              Paths{"/usr/lib/farview/PreferencePanes"});
    EXPECT_EQ(this->paths().directories(preferencePanes, 0), Paths{});
}

TYPED_TEST(SearchPathsContract, ApplicationSupportIsTheUsersFolderOfData)
{
    EXPECT_EQ(this->paths().directories(applicationSupport, userDomain | systemDomain),
              Paths{"/home/user/.local/share"});
}

TYPED_TEST(SearchPathsContract, TheHomeIsTheUsersFolder)
{
    EXPECT_EQ(this->paths().homeDirectory(), "/home/user");
}

TYPED_TEST(SearchPathsContract, PlatformPathsAreLocatedAndOthersStay)
{
    EXPECT_EQ(this->paths().located("/System/Library/Extensions/X.kext"),
              "/usr/lib/farview/Extensions/X.kext");
    EXPECT_EQ(this->paths().located("/System/Library/PreferencePanes/X.prefPane"),
              "/usr/lib/farview/PreferencePanes/X.prefPane");
    EXPECT_EQ(this->paths().located("/Library/Extensions/X.kext"),
              "/usr/local/lib/farview/Extensions/X.kext");
    EXPECT_EQ(this->paths().located("/home/user/X"), "/home/user/X");
    EXPECT_EQ(this->paths().located(""), "");
}

} // namespace
} // namespace farview
