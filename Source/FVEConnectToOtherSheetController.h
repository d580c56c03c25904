#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Panel.h"
#include "Platform/Types/Notification.h"
#include "Platform/Types/Subscription.h"
#include "Source/WeakTimer.h"

#include <memory>
#include <span>
#include <string>

class FVEPreferencePane;

namespace farview
{
struct Platform;
}

/// Posted within the process when the user typed into a text field, which is the object.
inline constexpr const char* kControlTextDidChangeNotification =
    "NSControlTextDidChangeNotification";

/// The sheet in which the user types the address of a device that cannot be found by itself, and
/// waits for the server to connect to it. While it is up, reports of the server reach the sheet and
/// not the pane. Made with `std::make_shared`; main thread only; `platform` outlives it.
class FVEConnectToOtherSheetController
    : public farview::InterfaceOwner,
      public farview::Object,
      public std::enable_shared_from_this<FVEConnectToOtherSheetController>
{
public:
    explicit FVEConnectToOtherSheetController(farview::Platform& platform);
    ~FVEConnectToOtherSheetController() override;

    std::span<const farview::Outlet> outlets() const override;
    bool respondsTo(farview::Selector selector) const override;
    bool perform(farview::Selector selector, farview::Object* argument) override;

    /// The pane that the sheet works for; it owns the controller.
    std::shared_ptr<FVEPreferencePane> preferencePane() const { return mPreferencePane.lock(); }
    void setPreferencePane(std::weak_ptr<FVEPreferencePane> pane)
    {
        mPreferencePane = std::move(pane);
    }

    /// How long the server may take. Setting ends the timer held before.
    const WeakTimer& connectionAttemptTimoutTimer() const { return mConnectionAttemptTimoutTimer; }
    void setConnectionAttemptTimoutTimer(const WeakTimer& timer)
    {
        replaceTimer(mConnectionAttemptTimoutTimer, timer);
    }

    /// Opens the sheet on the pane's window; does nothing while it is open.
    void showConnectToOtherSheet(farview::Object* sender);
    bool isOpen() const { return mShowing != nullptr; }

    void okButtonPressed(farview::Object* sender);
    void cancelButtonPressed(farview::Object* sender);
    void ipAddresTextDidChange(const farview::Notification& notification);
    void serverConnectedToDeviceNotification(const farview::Notification& notification);
    /// The server said so; what is not waited for is ignored.
    void serverCouldNotConnect();
    /// The panel says or asks something about the device that was asked for, which the sheet hides.
    void giveWay();
    void launchConnectionAttemptTimoutTimer();
    void connectionAttemptTimoutTimerOperation(farview::Object* sender);
    /// Ends the sheet and gives the pane the server's reports back; a closed sheet ignores it.
    void dismissSheetWithButton(int returnCode);

    // Outlets.
    farview::OutletProperty<farview::Panel> otherDevicePanel;
    farview::OutletProperty<farview::TextField> otherTextField;
    farview::OutletProperty<farview::TextField> connectToOtherExplanationText;
    farview::OutletProperty<farview::Button> connectToOtherOKButton;
    farview::OutletProperty<farview::TextField> connectToOtherProgress;
    void setOtherDevicePanel(auto view) { otherDevicePanel.set(view); }
    void setOtherTextField(auto view) { otherTextField.set(view); }
    void setConnectToOtherExplanationText(auto view) { connectToOtherExplanationText.set(view); }
    void setConnectToOtherOKButton(auto view) { connectToOtherOKButton.set(view); }
    void setConnectToOtherProgress(auto view) { connectToOtherProgress.set(view); }

private:
    /// One opening of the sheet. What is to happen later to it is bound to it.
    struct Showing {
        bool dismissalPending = false;
    };

    bool loadNib();
    void prepareControls();
    void addObservers();
    void takePaneOffTheServer();
    void putPaneBackOnTheServer();
    void requestConnection(const std::string& address);
    void endWait();
    void showFailure();
    void storeAddressInUse(FVEPreferencePane& pane, const std::string* reported);
    void dismissLater();
    bool addressIsValid() const;
    std::string localized(const std::string& text) const;
    void log(const std::string& message);

    farview::Platform& mPlatform;
    std::weak_ptr<FVEPreferencePane> mPreferencePane;
    WeakTimer mConnectionAttemptTimoutTimer;
    std::shared_ptr<Showing> mShowing;
    farview::Subscription mTyping;
};
