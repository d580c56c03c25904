#include "Platform/Posix/Registry/DriverExtensions.h"

#include "Tests/Support/LesserRights.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace farview
{
namespace
{

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

const std::string info = "<plist><dict><key>CFBundleIdentifier</key><string>com.quillon.X</string>"
                         "<key>QLNPlatform</key><string>Linux</string></dict></plist>";

class DriverExtensionsTest : public testing::Test
{
protected:
    std::string install(const std::string& name)
    {
        return mFolder.write(name + ".kext/Contents/Info.plist", info);
    }

    TemporaryFolder mFolder;
    DriverExtensions mExtensions{{mFolder.path("user"), mFolder.path("system")}};
};

TEST_F(DriverExtensionsTest, AnExtensionComesWithItsBundleAndGoesWithIt)
{
    EXPECT_EQ(mExtensions.usableNames(), Names{});
    install("system/QLExGFX");
    install("system/QLVideoCard");
    install("user/QLExGFX");
    EXPECT_EQ(mExtensions.usableNames(), (Names{"QLExGFX", "QLVideoCard"})) << "each once";
    EXPECT_TRUE(mExtensions.isUsable("QLVideoCard"));
    fs::remove_all(mFolder.path("system"));
    EXPECT_EQ(mExtensions.usableNames(), Names{"QLExGFX"});
    EXPECT_FALSE(mExtensions.isUsable("QLVideoCard"));
}

TEST_F(DriverExtensionsTest, OneThatCannotBeReadIsNotUsable)
{
    fs::permissions(mFolder.path(), fs::perms::all);
    const auto path = install("system/QLExGFX");
    fs::permissions(path, fs::perms::none);
    {
        const LesserRights lesser;
        EXPECT_FALSE(mExtensions.isUsable("QLExGFX"));
        EXPECT_EQ(mExtensions.usableNames(), Names{});
    }
    fs::permissions(path, fs::perms::all);
    const LesserRights lesser;
    EXPECT_TRUE(mExtensions.isUsable("QLExGFX"));
}

TEST_F(DriverExtensionsTest, WhatIsNoBundleIsNotUsable)
{
    mFolder.write("system/Plain.kext", info);
    mFolder.write("system/Empty.kext/Contents/none", info);
    mFolder.write("system/Folder.kext/Contents/Info.plist/none", info);
    mFolder.write("system/Other.bundle/Contents/Info.plist", info);
    fs::create_directory_symlink(mFolder.path("nowhere"), mFolder.path("system/Broken.kext"));
    fs::create_directory_symlink(mFolder.path("system"), mFolder.path("system/Loop.kext"));
    EXPECT_EQ(mExtensions.usableNames(), Names{});
    for (const char* name :
         {"Plain", "Empty", "Folder", "Other", "Broken", "Loop", "", "..", "a/b"})
        EXPECT_FALSE(mExtensions.isUsable(name)) << name;
}

TEST_F(DriverExtensionsTest, ABundleMayLieElsewhere)
{
    install("elsewhere/QLExGFX");
    fs::create_directories(mFolder.path("system"));
    fs::create_directory_symlink(mFolder.path("elsewhere/QLExGFX.kext"),
                                 mFolder.path("system/QLExGFX.kext"));
    EXPECT_TRUE(mExtensions.isUsable("QLExGFX")) << "a link to a bundle is one";
}

} // namespace
} // namespace farview
