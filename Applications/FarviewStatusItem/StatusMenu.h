#pragma once

#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/ConnectionFollower.h"
#include "Common/FVEPreferences.h"
#include "Common/Rules/DeviceMenu.h"
#include "Common/Rules/FurtherDeviceRows.h"
#include "Common/Rules/StatusIcon.h"
#include "Controls/Menu.h"
#include "Controls/OperationTable.h"
#include "Platform/Bundle.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/Types/Subscription.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// Everything that a tray shows of the status item. Texts are in the user's language, and foreign
/// where they name a device.
struct StatusItemDisplay {
    StatusIcon icon = StatusIcon::off;
    std::string headline; ///< the state in a few words; the first, inert entry of the menu too
    std::string sentence; ///< the same at length
    std::shared_ptr<const Menu> menu = std::make_shared<Menu>();
};

/// A line between groups of entries.
bool isSeparator(const MenuItem& item);

/// The status item without its tray: follows settings, devices and the connection, and offers what
/// the panel's main tab offers. It ends by the terminate notification, by its own entry "Quit" and
/// by `quit`. Made with `std::make_shared`. Main thread only.
class StatusMenu final : public Object,
                         public Responder,
                         public std::enable_shared_from_this<StatusMenu>
{
public:
    struct Services {
        Platform& platform; ///< outlives the menu
        FVEPreferences& preferences;
        /// The pane's bundle: texts, the screen server, and the panel itself. Null: none is
        /// installed.
        std::shared_ptr<Bundle> pane;
    };

    StatusMenu(Services services, std::function<void()> quitting);

    /// Begins to listen and to browse, and asks for the connection. Called once.
    void start();
    /// Calls `quitting`, the first time; from then on nothing is followed and nothing chosen.
    void quit();

    const StatusItemDisplay& display() const { return mDisplay; }
    /// Called after each change of the display.
    void setChanged(std::function<void()> changed) { mChanged = std::move(changed); }

    bool respondsTo(Selector selector) const override;
    bool perform(Selector selector, Object* argument) override;

private:
    static const Operation<StatusMenu>* operation(Selector selector);
    void observe(const char* name, void (StatusMenu::*operation)(const Notification&));
    void observeBrowser(const char* name);
    void observeReconnection();
    void makeBrowser();

    // What the menu offers.
    void turnOn(Object* sender);
    void turnOff(Object* sender);
    void takeNoDevice(Object* sender);
    void takeDevice(Object* sender);
    void alsoUse(Object* sender);
    void confirmDevice(Object* sender);
    void refuseDevice(Object* sender);
    void openPreferences(Object* sender);
    void quitForGood(Object* sender);

    // What the others report.
    void connectedToDevice(const Notification& notification);
    void disconnectedFromDevice(const Notification& notification);
    void screenChanged(const Notification& notification);
    void furtherDevicesChanged(const Notification& notification);
    void pairingChanged(const Notification& notification);
    void connectFailed(const Notification& notification);
    void connectRequested(const Notification& notification);
    void preferencesChanged(const Notification& notification);
    void terminate(const Notification& notification);

    void followPreferences();
    void forgetConnection();
    void findSelectedService();
    void storeCurrentDevice(const std::string& name);
    bool isConnected() const;
    bool isAsked() const;
    bool isAboutTheDigitsInQuestion(Object* sender) const;

    void refresh();
    StatusItemDisplay makeDisplay();
    std::string headline(StatusIcon icon) const;
    std::string sentence(long currentState) const;
    std::string detail() const;
    std::string pairingText() const;
    void addAnswers(Menu& menu);
    void addDevices(Menu& menu, bool on);
    std::shared_ptr<MenuItem> deviceItem(const MenuEntry& entry, bool on);
    DeviceMenuInputs deviceMenuInputs();
    void addFurtherDevices(Menu& menu, bool on);
    FurtherDeviceInputs furtherDeviceInputs() const;
    std::string typing(bool on) const;
    bool isInForce(const MenuEntry& entry) const;
    std::string deviceName() const;
    std::shared_ptr<MenuItem> addItem(Menu& menu, const char* title, Selector action);
    Localize localize() const;
    std::string localized(const std::string& text) const;

    Services mServices;
    std::function<void()> mQuitting;
    std::function<void()> mChanged = [] {};
    std::shared_ptr<QLNBonjourBrowser> mBrowser;
    Subscription mReconnection;
    ConnectionFollower mConnection;
    StatusItemDisplay mDisplay;
    bool mDriverInstalled = false;
    bool mHasQuit = false;
    bool mWasInMenuBar = false;
    long mState = 0;
    /// The device that is connected; it stays when the list loses it.
    std::shared_ptr<NetService> mSelected;
    std::string mReportedHostName; ///< empty: none, or connected by address
    bool mConnectFailed = false;
};

} // namespace farview
