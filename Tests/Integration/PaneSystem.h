#pragma once

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Desktop/Discovery/DesktopNetServicePublisher.h"
#include "Platform/Fake/FakeLog.h"
#include "Source/FVEPreferencePane.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// The real pane, without a window, on the real desktop's platform: a private bus, private folders,
/// and a network of the test's own. The screen server that it starts and the devices beside it are
/// the real programs.
class PaneSystem : public testing::Test
{
protected:
    using Limit = std::chrono::milliseconds;
    /// How soon the pane must show that there is no connection.
    static constexpr Limit errorLimit = std::chrono::seconds(15);

    ~PaneSystem() override;
    void SetUp() override;

    /// Makes the platform and a pane whose view is loaded.
    void load();
    /// A new pane on the same platform, as when the panel is closed and opened.
    void reload();
    void show();
    void hide() { pane->willUnselect(); }
    /// Presses On and waits until the server that starts can be told what to do.
    void turnOn();
    /// Shown and on, with "Desk" (desk-7.local) listed.
    void showWithDesk();
    /// The same, and connected to it.
    void showConnectedToDesk();

    std::unique_ptr<ChildProcess> start(const std::vector<std::string>& command,
                                        const std::string& log);
    void startDesk(const std::vector<std::string>& more = {});
    /// Announces a device that is nothing but an announcement.
    void announce(const std::string& name, const std::string& hostName, std::uint16_t port);

    // What the user sees and does.
    std::shared_ptr<MenuItem> entry(const std::string& title) const;
    bool lists(const std::string& title, Limit limit = std::chrono::seconds(15)) const;
    bool unlists(const std::string& title, Limit limit = std::chrono::seconds(15)) const;
    /// Waits until the popup can be opened, then picks that entry.
    bool choose(const std::string& title);
    std::string selectedTitle() const;
    bool selects(const std::string& title, Limit limit = std::chrono::seconds(15)) const;
    bool selectsNothing(Limit limit = std::chrono::seconds(15)) const;
    bool isConnecting() const { return !pane->waitingForServerIndicator()->isHidden(); }
    bool errorShows() const;
    bool showsError(Limit limit) const
    {
        return waitUntil([this] { return errorShows(); }, limit);
    }
    int switchState() const { return pane->onOffSwitch()->state(); }
    bool switchTurns(int state, Limit limit) const;

    // The processes.
    std::vector<pid_t> servers() const;
    bool serversAre(std::size_t count, Limit limit = std::chrono::seconds(15)) const;
    /// Whether a server answers on the bus.
    bool serverAnswers();
    std::string text(const std::string& log) const;
    bool deviceSays(const std::string& words, Limit limit = std::chrono::seconds(10)) const;

    Platform& platform() { return desktop->platform(); }
    FVEPreferences& preferences() { return FVEPreferences::sharedAppPrefs(); }
    /// How often that notification came by.
    std::size_t heard(const std::string& name) const;
    /// Listens to that notification from now on.
    void listenTo(const std::string& name);
    void post(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {});

    TemporaryFolder home;
    /// The pane's bundle: that of the build tree, unless a test takes another before `load`.
    std::string bundlePath = FARVIEW_PANE_BUNDLE;
    /// Whether the users have confirmed computer and devices before.
    bool areConfirmed = true;
    std::vector<std::unique_ptr<ScopedEnvironment>> environment;
    PrivateBus bus;
    FakeLog publisherLog;
    std::vector<std::unique_ptr<DesktopNetServicePublisher>> publishers;
    std::unique_ptr<ChildProcess> device;
    std::optional<DesktopPlatform> desktop;
    std::optional<Platform::Scope> installed;
    std::shared_ptr<Bundle> bundle;
    std::shared_ptr<FVEPreferencePane> pane;

private:
    void connectOutlets();

    std::shared_ptr<int> mListener = std::make_shared<int>();
    std::vector<std::string> mHeard;
};

} // namespace farview
