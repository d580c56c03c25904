#include "Common/FVEUpdater.h"

#include "Common/FVEConstants.h"
#include "Common/PerPlatform.h"
#include "Platform/Bundle.h"
#include "Platform/Platform.h"

#include <string>

FVEUpdater& FVEUpdater::sharedUpdater()
{
    static farview::PerPlatform<FVEUpdater> shared;
    return shared.get(farview::Platform::generation(), [] {
        auto updater = std::make_unique<FVEUpdater>();
        updater->init();
        return updater;
    });
}

void FVEUpdater::init()
{
    const auto& platform = farview::Platform::current();
    const auto bundle = platform.bundles->bundleWithIdentifier(kFVEPaneBundleID);
    mUpdater = platform.updaters->updaterForBundle(bundle ? bundle->bundlePath() : std::string());
}

bool FVEUpdater::automaticallyChecksForUpdates() const
{
    return mUpdater->automaticallyChecksForUpdates();
}
void FVEUpdater::setAutomaticallyChecksForUpdates(bool flag)
{
    mUpdater->setAutomaticallyChecksForUpdates(flag);
}

void FVEUpdater::setDelegate(std::weak_ptr<farview::UpdaterDelegate> delegate)
{
    mUpdater->setDelegate(std::move(delegate));
}
const farview::UpdateStatus& FVEUpdater::status() const { return mUpdater->status(); }
void FVEUpdater::checkForUpdates() { mUpdater->checkForUpdates(); }
void FVEUpdater::downloadUpdate() { mUpdater->downloadUpdate(); }
void FVEUpdater::installUpdate() { mUpdater->installUpdate(); }
void FVEUpdater::cancel() { mUpdater->cancel(); }
