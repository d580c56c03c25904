#include "Applications/Doctor/PermissionProbe.h"

#include "Tests/Applications/DoctorNames.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace farview
{
namespace
{

using testing::ElementsAre;

/// A user with a program and, where a test writes it, a desktop file.
class PermissionProbeTest : public testing::Test
{
protected:
    std::string write(const std::string& command, const std::string& interfaces,
                      const std::string& file = "applications/farview-Server.desktop")
    {
        return mFolder.write(file, "[Desktop Entry]\nType=Application\nExec=" + command +
                                       "\nX-KDE-Wayland-Interfaces=" + interfaces + "\n");
    }

    TemporaryFolder mFolder;
    ScopedEnvironment mOwn{"XDG_DATA_HOME", mFolder.path("own").c_str()};
    ScopedEnvironment mShared{"XDG_DATA_DIRS", mFolder.path().c_str()};
    const std::string mProgram = mFolder.write("My Pane/Server", "", true);
    const std::string mScreens = "zkde_screencast_unstable_v1,org_kde_kwin_fake_input";
};

TEST_F(PermissionProbeTest, FindsTheFileOfTheProgram)
{
    const auto file = write("\"" + mProgram + "\" --option", mScreens);
    EXPECT_EQ(permissionFileOf(mProgram), file);
}

TEST_F(PermissionProbeTest, TheUsersOwnFilesCountToo)
{
    const auto file =
        write("\"" + mProgram + "\"", mScreens, "own/applications/farview-build-Server.desktop");
    EXPECT_EQ(permissionFileOf(mProgram), file);
}

TEST_F(PermissionProbeTest, AFileOfAnotherProgramOrForSomethingElseIsNone)
{
    EXPECT_EQ(permissionFileOf(mProgram), "");
    write("/usr/bin/Server", mScreens);
    EXPECT_EQ(permissionFileOf(mProgram), "");
    write("\"" + mProgram + "\"", "org_kde_kwin_fake_input");
    EXPECT_EQ(permissionFileOf(mProgram), "");
    write(mProgram, mScreens); // KDE reads two words here.
    EXPECT_EQ(permissionFileOf(mProgram), "");
    mFolder.write("applications/farview-Server.desktop", "Exec=\"\nExec");
    EXPECT_EQ(permissionFileOf(mProgram), "");
}

TEST_F(PermissionProbeTest, IsSaidWhereItIsNeeded)
{
    EXPECT_THAT(names(findingsAboutPermission({})), ElementsAre());
    EXPECT_THAT(names(findingsAboutPermission({true, "/s", "/f"})), ElementsAre("kde-permission"));
    EXPECT_THAT(troubles(findingsAboutPermission({true, "/s", ""})),
                ElementsAre("kde-permission-missing"));
}

} // namespace
} // namespace farview
