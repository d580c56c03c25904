#include "Platform/Fake/FakeBundle.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/PosixBundle.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

/// Each scene has one bundle: version "1.5", a resource "image.tiff" and one "tool" without a type,
/// and the texts "On" (An) and, in the table "Other", "On" (Ein), for a German user.
struct ScriptedBundle {
    FakeBundles body;

    ScriptedBundle()
    {
        const auto bundle = body.add(path());
        bundle->setInfo("CFBundleVersion", "1.5");
        bundle->addResource("image", "tiff");
        bundle->addResource("tool", "");
        bundle->setText("On", "An");
        bundle->setText("On", "Ein", "Other");
    }
    std::string path() const { return "/bundles/A.bundle"; }
    Bundles& bundles() { return body; }
};

struct BundleOnDisk {
    TemporaryFolder folder;
    FakeLog log;
    ScopedEnvironment all{"LC_ALL", "de_DE.UTF-8"};
    ScopedEnvironment several{"LANGUAGE", nullptr};
    PosixBundles body{EnvironmentUse::honoured, log};

    BundleOnDisk()
    {
        const std::string contents = "A.bundle/Contents/";
        folder.write(contents + "Info.plist",
                     "<plist><dict><key>CFBundleVersion</key><string>1.5</string></dict></plist>");
        folder.write(contents + "Resources/image.tiff", "");
        folder.write(contents + "Resources/tool", "");
        folder.write(contents + "Resources/de.lproj/Localizable.strings", "\"On\" = \"An\";");
        folder.write(contents + "Resources/de.lproj/Other.strings", "\"On\" = \"Ein\";");
    }
    std::string path() const { return folder.path("A.bundle"); }
    Bundles& bundles() { return body; }
};

template <typename Scene> class BundleContract : public testing::Test
{
protected:
    Scene mScene;
    std::shared_ptr<Bundle> mBundle = mScene.bundles().bundleWithPath(mScene.path());
};

using Scenes = testing::Types<ScriptedBundle, BundleOnDisk>;
TYPED_TEST_SUITE(BundleContract, Scenes);

TYPED_TEST(BundleContract, KnowsItsPlace)
{
    ASSERT_TRUE(this->mBundle);
    EXPECT_EQ(this->mBundle->bundlePath(), this->mScene.path());
    EXPECT_EQ(this->mScene.bundles().bundleWithPath(this->mScene.path() + ".none"), nullptr);
}

TYPED_TEST(BundleContract, AnswersFromItsInfo)
{
    EXPECT_EQ(this->mBundle->objectForInfoDictionaryKey("CFBundleVersion"), PropertyList("1.5"));
    EXPECT_EQ(this->mBundle->objectForInfoDictionaryKey("None"), std::nullopt);
}

TYPED_TEST(BundleContract, FindsTheResourcesThatExist)
{
    const auto resources = this->mScene.path() + "/Contents/Resources/";
    EXPECT_EQ(this->mBundle->pathForResource("image", "tiff"), resources + "image.tiff");
    EXPECT_EQ(this->mBundle->pathForResource("image.tiff", ""), resources + "image.tiff");
    EXPECT_EQ(this->mBundle->pathForResource("tool", ""), resources + "tool");
    EXPECT_EQ(this->mBundle->pathForResource("image", "png"), std::nullopt);
    EXPECT_EQ(this->mBundle->pathForResource("image", ""), std::nullopt);
}

TYPED_TEST(BundleContract, AMissingTextShowsTheValueElseTheKey)
{
    EXPECT_EQ(this->mBundle->localizedString("On", "value", ""), "An");
    EXPECT_EQ(this->mBundle->localizedString("On", "", "Localizable"), "An");
    EXPECT_EQ(this->mBundle->localizedString("On", "", "Other"), "Ein");
    EXPECT_EQ(this->mBundle->localizedString("Off", "value", ""), "value");
    EXPECT_EQ(this->mBundle->localizedString("Off", "", ""), "Off");
    EXPECT_EQ(this->mBundle->localizedString("On", "", "None"), "On");
}

} // namespace
} // namespace farview
