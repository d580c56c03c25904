#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Accessibility.h"
#include "Platform/Bundle.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/FileManager.h"
#include "Platform/Log.h"
#include "Platform/NetService.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Preferences.h"
#include "Platform/ProcessTable.h"
#include "Platform/RunLoop.h"
#include "Platform/SearchPaths.h"
#include "Platform/SystemVersion.h"
#include "Platform/Text.h"
#include "Platform/Workspace.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

namespace farview
{
namespace
{

constexpr const char* domain = "com.quillon.Test";

class DesktopPlatformTest : public testing::Test
{
protected:
    std::optional<PropertyList> stored(const std::string& key)
    {
        DesktopPlatform fresh({});
        return fresh.platform().preferences->copyAppValue(key, domain);
    }
    std::size_t fileCount() const
    {
        const std::filesystem::recursive_directory_iterator files(mFolder.path());
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    TemporaryFolder mFolder;
    ScopedEnvironment mConfig{"XDG_CONFIG_HOME", mFolder.path("config").c_str()};
    ScopedEnvironment mData{"XDG_DATA_HOME", mFolder.path("data").c_str()};
};

TEST_F(DesktopPlatformTest, EveryServiceIsARealOne)
{
    DesktopPlatform desktop({});
    Platform& platform = desktop.platform();
    const Platform empty;
    EXPECT_NE(platform.accessibility, empty.accessibility);
    EXPECT_NE(platform.bundles, empty.bundles);
    EXPECT_NE(platform.distributedNotificationCenter, empty.distributedNotificationCenter);
    EXPECT_NE(platform.fileManager, empty.fileManager);
    EXPECT_NE(platform.log, empty.log);
    EXPECT_NE(platform.notificationCenter, empty.notificationCenter);
    EXPECT_NE(platform.preferences, empty.preferences);
    EXPECT_NE(platform.processTable, empty.processTable);
    EXPECT_NE(platform.registry, empty.registry);
    EXPECT_NE(platform.runLoop, empty.runLoop);
    EXPECT_NE(platform.searchPaths, empty.searchPaths);
    EXPECT_NE(platform.systemVersion, empty.systemVersion);
    EXPECT_NE(platform.text, empty.text);
    EXPECT_NE(platform.workspace, empty.workspace);
    EXPECT_EQ(platform.application, empty.application);
}

TEST_F(DesktopPlatformTest, SettingsOutliveIt)
{
    {
        DesktopPlatform desktop({});
        desktop.platform().preferences->setAppValue("key", PropertyList(7), domain);
        EXPECT_TRUE(desktop.platform().preferences->appSynchronize(domain));
    }
    EXPECT_EQ(stored("key"), PropertyList(7));
}

TEST_F(DesktopPlatformTest, ASmokeTestReadsTheSettingsAndLeavesNoTrace)
{
    {
        DesktopPlatform desktop({});
        desktop.platform().preferences->setAppValue("key", PropertyList(7), domain);
        desktop.platform().preferences->setAppValue("other", PropertyList(8), domain);
        ASSERT_TRUE(desktop.platform().preferences->appSynchronize(domain));
    }
    const auto files = fileCount();
    DesktopPlatform smoke({true});
    auto& preferences = *smoke.platform().preferences;
    EXPECT_EQ(preferences.copyAppValue("key", domain), PropertyList(7));
    preferences.setAppValue("key", PropertyList(9), domain);
    preferences.setAppValue("other", std::nullopt, domain);
    EXPECT_TRUE(preferences.appSynchronize(domain));
    EXPECT_EQ(preferences.copyAppValue("key", domain), PropertyList(9));
    EXPECT_EQ(preferences.copyAppValue("other", domain), std::nullopt);
    EXPECT_EQ(stored("key"), PropertyList(7));
    EXPECT_EQ(stored("other"), PropertyList(8));
    EXPECT_EQ(fileCount(), files);
}

TEST_F(DesktopPlatformTest, ASmokeTestsFilesAreItsOwn)
{
    DesktopPlatform smoke({true});
    auto& files = *smoke.platform().fileManager;
    const auto path = mFolder.path("folder/list.plist");
    EXPECT_FALSE(files.fileExistsAtPath(path));
    EXPECT_TRUE(files.createDirectoryAtPath(mFolder.path("folder")));
    EXPECT_TRUE(files.fileExistsAtPath(mFolder.path("folder")));
    EXPECT_TRUE(files.writePropertyList(PropertyList("text"), path));
    EXPECT_TRUE(files.fileExistsAtPath(path));
    EXPECT_EQ(files.propertyListWithContentsOfFile(path), PropertyList("text"));
    EXPECT_EQ(fileCount(), 0u);
}

TEST_F(DesktopPlatformTest, ASmokeTestsPostsStayInTheProcess)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    DesktopPlatform panel({});
    DesktopPlatform smoke({true});
    const auto observer = std::make_shared<int>(0);
    int heardByPanel = 0;
    int heardBySmoke = 0;
    bool sentinel = false;
    auto& panelCenter = *panel.platform().distributedNotificationCenter;
    panelCenter.addObserver(
        observer, [&](const Notification&) { ++heardByPanel; }, "Name", "");
    panelCenter.addObserver(
        observer, [&](const Notification&) { sentinel = true; }, "Sentinel", "");
    smoke.platform().distributedNotificationCenter->addObserver(
        observer, [&](const Notification&) { ++heardBySmoke; }, "Name", "");
    smoke.platform().distributedNotificationCenter->postNotificationName("Name", "", {}, 3);
    ASSERT_TRUE(waitUntil([&] { return heardBySmoke == 1; }));
    panelCenter.postNotificationName("Sentinel", "", {}, 3);
    ASSERT_TRUE(waitUntil([&] { return sentinel; }));
    EXPECT_EQ(heardByPanel, 0);
}

TEST_F(DesktopPlatformTest, ASmokeTestStartsAndFindsNothing)
{
    DesktopPlatform smoke({true});
    const Platform empty;
    EXPECT_EQ(smoke.platform().workspace, empty.workspace);
    EXPECT_EQ(smoke.platform().discovery, empty.discovery);
}

TEST_F(DesktopPlatformTest, TwoOfThemHaveConnectionsOfTheirOwn)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    DesktopPlatform host({});
    DesktopPlatform pane({});
    EXPECT_TRUE(waitUntil(
        [&] { return host.sessionBus().isConnected() && pane.sessionBus().isConnected(); }));
    EXPECT_NE(host.sessionBus().uniqueName(), pane.sessionBus().uniqueName());
}

} // namespace
} // namespace farview
