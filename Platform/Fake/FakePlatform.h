#pragma once

#include "Platform/Clock.h"
#include "Platform/Fake/FakeAccessibility.h"
#include "Platform/Fake/FakeApplication.h"
#include "Platform/Fake/FakeAuthorization.h"
#include "Platform/Fake/FakeBundle.h"
#include "Platform/Fake/FakeDiscovery.h"
#include "Platform/Fake/FakeDisplayConfiguration.h"
#include "Platform/Fake/FakeDistributedNotificationCenter.h"
#include "Platform/Fake/FakeFileManager.h"
#include "Platform/Fake/FakeGraphicsControl.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Fake/FakeLoginItem.h"
#include "Platform/Fake/FakeNetworkCondition.h"
#include "Platform/Fake/FakePreferences.h"
#include "Platform/Fake/FakeProcessTable.h"
#include "Platform/Fake/FakeRegistry.h"
#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/Fake/FakeSearchPaths.h"
#include "Platform/Fake/FakeSystemVersion.h"
#include "Platform/Fake/FakeText.h"
#include "Platform/Fake/FakeUpdater.h"
#include "Platform/Fake/FakeVirtualScreens.h"
#include "Platform/Fake/FakeWorkspace.h"
#include "Platform/Firewall.h"
#include "Platform/LocalNotificationCenter.h"
#include "Platform/Platform.h"

#include <memory>

namespace farview
{

/// Stands still at 2026-01-02 03:04:05 UTC, or where tests set it.
class FakeClock final : public Clock
{
public:
    std::chrono::system_clock::time_point date() override { return mDate; }
    void setDate(std::chrono::system_clock::time_point date) { mDate = date; }

private:
    std::chrono::system_clock::time_point mDate{std::chrono::seconds(1767323045)};
};

/// The firewall that a test says.
class FakeFirewall final : public Firewall
{
public:
    FirewallState state() override { return mState; }
    void setState(const FirewallState& state) { mState = state; }

private:
    FirewallState mState;
};

/// One fake of each interface and the aggregate of them. Installs nothing by itself: a test that
/// needs `Platform::current()` makes a `Platform::Scope` of `platform()`.
class FakePlatform
{
public:
    FakePlatform();
    FakePlatform(const FakePlatform&) = delete;
    FakePlatform& operator=(const FakePlatform&) = delete;

    Platform& platform() { return mPlatform; }

    FakeRunLoop runLoop;
    FakeAccessibility accessibility;
    /// Shared, because it is the object of notifications.
    std::shared_ptr<FakeApplication> application = std::make_shared<FakeApplication>();
    FakeAuthorization authorization;
    FakeBundles bundles;
    FakeClock clock;
    FakeDiscovery discovery;
    FakeDisplayConfiguration displayConfiguration;
    FakeDistributedNotificationCenter distributedNotificationCenter;
    FakeFileManager fileManager;
    FakeFirewall firewall;
    FakeGraphicsControl graphicsControl;
    FakeRegistry registry;
    FakeLog log;
    FakeLoginItem loginItem;
    FakeNetworkCondition networkCondition;
    LocalNotificationCenter notificationCenter;
    FakePreferences preferences;
    FakeProcessTable processTable;
    FakeSearchPaths searchPaths;
    FakeSystemVersion systemVersion;
    FakeText text;
    FakeUpdaters updaters;
    FakeVirtualScreens virtualScreens{runLoop};
    FakeWorkspace workspace;

private:
    Platform mPlatform;
};

} // namespace farview
