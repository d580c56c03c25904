#pragma once

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Platform/Fake/FakePlatform.h"
#include "Source/FVEPreferencePane.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Connects outlets as an interface file does, and what `wire` adds: targets and actions.
class FakeInterfaceLoader final : public farview::InterfaceLoader
{
public:
    using Owner = std::shared_ptr<farview::InterfaceOwner>;

    bool loadNibNamed(const std::string& name, const Owner& owner, std::string& error) override
    {
        loaded.push_back(name);
        if (isBroken) {
            error = "the file is broken";
            return false;
        }
        for (const auto& outlet : owner->outlets())
            outlet.connect(*owner);
        wire(owner);
        return true;
    }

    std::function<void(const Owner&)> wire;
    bool isBroken = false;
    std::vector<std::string> loaded;
};

/// A pane on a scripted machine, its controls in the state that the interface file gives them. The
/// driver is there unless a test takes it away before `load`.
class PaneFixture : public testing::Test
{
protected:
    using Texts = std::vector<std::string>;
    using Post = farview::FakeDistributedNotificationCenter::Post;

    PaneFixture();

    void load() { pane->mainViewDidLoad(); }
    /// One showing, with everything that follows from it at once.
    void show();
    void hide();
    void loadAndShow()
    {
        load();
        show();
    }
    /// A loaded pane on show with that stored state.
    void showWithState(long state);
    void newPane();

    /// Sets a shared setting as another program does, announcement included.
    void changeElsewhere(const std::string& key, farview::PropertyList value);
    void setStored(const std::string& key, farview::PropertyList value);
    std::optional<farview::PropertyList> stored(const std::string& key) const;
    std::optional<std::string> storedText(const std::string& key) const;

    static farview::FakeDevice device(const std::string& name, const std::string& hostName,
                                      const std::string& state = "NotConnected");
    void announce(std::vector<farview::FakeDevice> devices);
    /// These say goodbye.
    void leave(const std::vector<std::string>& names);
    /// The first listed service of that name.
    std::shared_ptr<farview::NetService> listed(const std::string& name) const;
    /// A report of the server's, delivered.
    void serverPosts(const std::string& name,
                     farview::DistributedNotificationCenter::TextUserInfo userInfo = {});
    void serverConnectedTo(const std::string& hostName);
    /// Shown, on, "Pad" (pad.local) listed.
    void showWithPad();
    /// The same with "Slab" (slab.local) too.
    void showWithPadAndSlab();
    /// The same and connected to "Pad".
    void showConnectedToPad();

    Texts menuTitles() const;
    std::shared_ptr<farview::MenuItem> entry(const std::string& title) const;
    std::string selectedTitle() const;
    /// The user opens the popup and clicks that entry. False when that cannot be done.
    bool choose(const std::string& title);
    /// Time passes.
    void after(double seconds) { fake.runLoop.advance(farview::Duration(seconds)); }

    std::vector<Post> posts(const char* name) const;
    /// Names of the rows, with "*" before the chosen ones.
    Texts rows() const;
    Texts seenDevices() const;

    bool popUpIsEnabled() const { return pane->virtualScreenSelectionPopup()->isEnabled(); }
    double popUpWidth() const { return pane->virtualScreenSelectionPopup()->frame().size.width; }
    bool spinnerShows() const { return !pane->waitingForServerIndicator()->isHidden(); }
    bool warningShows() const { return !pane->warningImage()->isHidden(); }
    std::string instructions() const { return pane->instructionsLabel()->stringValue(); }
    std::string hint() const { return pane->deviceHintLabel()->stringValue(); }
    std::string status() const { return pane->statusLabel()->stringValue(); }
    std::string explanation() const { return pane->statusExplanationLabel()->stringValue(); }
    int switchState() const { return pane->onOffSwitch()->state(); }

    static constexpr double fullWidth = 200;
    static constexpr double reducedWidth = 160;
    static constexpr const char* noDevice = "No device selected";
    static constexpr const char* connectToOther = "Connect To Other...";

    farview::FakePlatform fake;
    farview::Platform::Scope scope{fake.platform()};
    std::shared_ptr<farview::FakeBundle> bundle;
    farview::FakeRegistry::Entry driver = 0;
    std::shared_ptr<FVEPreferencePane> pane;
    std::shared_ptr<FakeInterfaceLoader> loader = std::make_shared<FakeInterfaceLoader>();
};
