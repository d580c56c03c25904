#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Window.h"
#include "Platform/Types/Object.h"

#include <functional>
#include <memory>
#include <span>
#include <string>

namespace farview
{
struct Platform;
}

/// The window in which the user confirms that HiDPI resolutions are turned on or off for all users.
/// One for each opening, made with `std::make_shared`; main thread only; `platform` outlives it.
class FVEEnableHiDPIController : public farview::InterfaceOwner,
                                 public farview::Object,
                                 public std::enable_shared_from_this<FVEEnableHiDPIController>
{
public:
    /// True: the user confirmed.
    using HandlerBlock = std::function<void(bool)>;

    explicit FVEEnableHiDPIController(farview::Platform& platform) : mPlatform(platform) {}
    ~FVEEnableHiDPIController() override;

    std::span<const farview::Outlet> outlets() const override;
    bool respondsTo(farview::Selector selector) const override;
    bool perform(farview::Selector selector, farview::Object* argument) override;

    void init();
    /// Opens the window beside the pane, which is the sender. False when it cannot be loaded.
    bool showWindow(farview::Object* sender, HandlerBlock handler);
    void windowDidLoad();
    /// Takes the window off the screen; calls no handler.
    void close();

    // Neither closes the window; the handler does. Closing it by other means calls no handler.
    void takeOK(farview::Object* sender);
    void takeCancel(farview::Object* sender);
    void windowWillClose(farview::Object* sender);

    const HandlerBlock& handlerBlock() const { return mHandlerBlock; }
    void setHandlerBlock(HandlerBlock handler) { mHandlerBlock = std::move(handler); }

    /// What it says of the progress, or of what stands in the way.
    void showProgress(const std::string& text, farview::TextField::Role role);
    /// Whether the user can do anything in it.
    void setEnabled(bool enabled);

    // Outlets.
    farview::OutletProperty<farview::Window> window;
    farview::OutletProperty<farview::TextField> explanationText;
    farview::OutletProperty<farview::TextField> progressText;
    farview::OutletProperty<farview::Button> okButton;
    farview::OutletProperty<farview::Button> cancelButton;
    void setOkButton(auto view) { okButton.set(view); }
    void setCancelButton(auto view) { cancelButton.set(view); }

private:
    bool loadWindow(farview::Object* sender);
    void callHandler(bool confirmed);

    farview::Platform& mPlatform;
    std::string mWindowNibName;
    HandlerBlock mHandlerBlock;
};
