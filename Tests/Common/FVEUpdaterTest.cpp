#include "Common/FVEUpdater.h"
#include "Common/FVEConstants.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Support/UpdateRecorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace farview;
using testing::ElementsAre;
using Stage = UpdateStatus::Stage;

class FVEUpdaterTest : public testing::Test
{
protected:
    FVEUpdaterTest()
    {
        fake.bundles.add("/elsewhere/Other.prefPane")->setInfo("CFBundleIdentifier", "org.other");
        fake.bundles.add(path)->setInfo("CFBundleIdentifier", kFVEPaneBundleID);
    }

    const std::string path = "/opt/Farview Preferences.prefPane";
    FakePlatform fake;
    Platform::Scope scope{fake.platform()};
    std::shared_ptr<FakeUpdater> inner = fake.updaters.fakeForBundle(path);
};

TEST_F(FVEUpdaterTest, IsBoundToThePanesBundle)
{
    FVEUpdater::sharedUpdater().checkForUpdates();
    EXPECT_THAT(inner->calls(), ElementsAre("check"));
    FVEUpdater another;
    another.init();
    EXPECT_EQ(another.status().stage, Stage::checking) << "there is one updater for a bundle";
}

TEST_F(FVEUpdaterTest, IsOneForTheProcessAndAnotherForAnotherPlatform)
{
    auto* const shared = &FVEUpdater::sharedUpdater();
    EXPECT_EQ(&FVEUpdater::sharedUpdater(), shared);
    FVEUpdater::sharedUpdater().setAutomaticallyChecksForUpdates(true);
    FakePlatform other;
    const Platform::Scope otherScope(other.platform());
    EXPECT_FALSE(FVEUpdater::sharedUpdater().automaticallyChecksForUpdates());
}

TEST_F(FVEUpdaterTest, PassesTheOptionOnAndDoesNothingElse)
{
    auto& updater = FVEUpdater::sharedUpdater();
    updater.setAutomaticallyChecksForUpdates(true);
    EXPECT_TRUE(inner->automaticallyChecksForUpdates());
    inner->setAutomaticallyChecksForUpdates(false);
    EXPECT_FALSE(updater.automaticallyChecksForUpdates());
    EXPECT_TRUE(inner->calls().empty());
    EXPECT_TRUE(fake.preferences.storedValue("autoUpdateOption", kApplicationID) == std::nullopt);
}

TEST_F(FVEUpdaterTest, PassesAnUpdateOnFromItsSearchToItsEnd)
{
    auto& updater = FVEUpdater::sharedUpdater();
    const auto delegate = std::make_shared<UpdateRecorder>();
    updater.setDelegate(delegate);
    updater.checkForUpdates();
    inner->find("1.1", "");
    updater.downloadUpdate();
    inner->verify();
    inner->getReady();
    updater.installUpdate();
    inner->finishInstallation();
    EXPECT_THAT(delegate->stages,
                ElementsAre(Stage::checking, Stage::found, Stage::downloading, Stage::verifying,
                            Stage::ready, Stage::installing, Stage::installed));
    EXPECT_THAT(delegate->installing, ElementsAre("1.1"));
    updater.checkForUpdates();
    updater.cancel();
    EXPECT_EQ(updater.status().stage, Stage::cancelled);
}

TEST_F(FVEUpdaterTest, WithoutABundleOfItsOwnFindsNoPlaceToGetUpdatesFrom)
{
    Platform nothing;
    const Platform::Scope nothingScope(nothing);
    auto& updater = FVEUpdater::sharedUpdater();
    updater.checkForUpdates();
    EXPECT_EQ(updater.status().stage, Stage::failed);
    EXPECT_EQ(updater.status().problem, UpdateProblem::notConfigured);
}

} // namespace
