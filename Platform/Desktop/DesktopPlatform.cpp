#include "Platform/Desktop/DesktopPlatform.h"

#include "Platform/Desktop/DBusNotificationCenter.h"
#include "Platform/Desktop/DesktopAccessibility.h"
#include "Platform/Desktop/DesktopText.h"
#include "Platform/Desktop/DesktopWorkspace.h"
#include "Platform/Desktop/LoopbackNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/SessionBus.h"
#include "Platform/LocalNotificationCenter.h"

#include <optional>

namespace farview
{

struct DesktopPlatform::Bodies {
    explicit Bodies(Platform& preset) : log(*preset.log), bundles(*preset.bundles) {}

    Log& log;
    Bundles& bundles;
    QtRunLoop runLoop;
    LocalNotificationCenter notificationCenter;
    DesktopText text;
    SessionBus bus{log};
    DesktopAccessibility accessibility{bus};
    std::optional<DBusNotificationCenter> distributedCenter;
    std::optional<DesktopWorkspace> workspace;
    std::optional<LoopbackNotificationCenter> loopbackCenter;
};

DesktopPlatform::DesktopPlatform(DesktopPlatformOptions options)
    : mBodies(std::make_unique<Bodies>(mPlatform))
{
    mPlatform.accessibility = &mBodies->accessibility;
    mPlatform.notificationCenter = &mBodies->notificationCenter;
    mPlatform.runLoop = &mBodies->runLoop;
    mPlatform.text = &mBodies->text;
    if (options.isSmokeTest)
        composeForSmokeTest();
    else
        composeForUse();
}

DesktopPlatform::~DesktopPlatform() = default;

Platform& DesktopPlatform::platform() { return mPlatform; }

SessionBus& DesktopPlatform::sessionBus() { return mBodies->bus; }

void DesktopPlatform::composeForUse()
{
    mPlatform.distributedNotificationCenter =
        &mBodies->distributedCenter.emplace(mBodies->bus, mBodies->runLoop, mBodies->log);
    mPlatform.workspace =
        &mBodies->workspace.emplace(mBodies->bus, mBodies->bundles, mBodies->runLoop, mBodies->log);
}

void DesktopPlatform::composeForSmokeTest()
{
    mPlatform.distributedNotificationCenter = &mBodies->loopbackCenter.emplace(mBodies->runLoop);
}

} // namespace farview
