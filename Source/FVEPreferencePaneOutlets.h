#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Menu.h"
#include "Controls/ScreenMap.h"
#include "Controls/Switch/FVEChiseledTextButton.h"
#include "Controls/Switch/QLNOnOffView.h"
#include "Controls/TabView.h"
#include "Controls/TableView.h"

#include <memory>
#include <span>
#include <utility>

class FVEConnectToOtherSheetController;

/// The controls that the pane's interface file must hold. Each is a property of the object's name
/// in the file; the table of `outlets` tells a loader (and a test) which there must be.
class FVEPreferencePaneOutlets : public farview::InterfaceOwner
{
    template <typename Kind> using Outlet = farview::OutletProperty<Kind>;

public:
    std::span<const farview::Outlet> outlets() const override;

    Outlet<FVEChiseledTextButton> offTextButton;
    Outlet<QLNOnOffView> onOffSwitch;
    Outlet<FVEChiseledTextButton> onTextButton;
    Outlet<farview::TabView> tabView;
    Outlet<farview::TextField> statusLabel;
    Outlet<farview::TextField> statusExplanationLabel;
    Outlet<farview::PopUpButton> virtualScreenSelectionPopup;
    Outlet<farview::TextField> instructionsLabel;
    Outlet<farview::Button> menuExtraCheckbox;
    Outlet<farview::Button> startAtLoginCheckbox;
    Outlet<farview::ImageView> warningImage;
    Outlet<farview::Button> reinstallDriversButton;
    Outlet<farview::Button> enableHiDPIResolutions;
    Outlet<farview::Button> enableTouchDisplay;
    Outlet<farview::Button> enableRetinaResolutions;
    Outlet<farview::Button> autoUpdateCheckbox;
    Outlet<farview::Button> checkNowForUpdateButton;
    Outlet<farview::TextField> updateStatusLabel;
    Outlet<farview::Button> autoMoveWindowsBack;
    Outlet<farview::TextField> windowsHintLabel;
    Outlet<farview::Button> autoConnect;
    Outlet<farview::TableView> autoConnectTable;
    Outlet<farview::TextField> orderHintLabel;
    Outlet<farview::Button> autoConnectAll;
    Outlet<farview::View> placeholderForFullPopupSize;
    Outlet<farview::View> placeholderForReducedPopupSize;
    Outlet<farview::ProgressIndicator> waitingForServerIndicator;
    Outlet<farview::TextField> versionNumberLabel;
    Outlet<farview::View> pairingBox;
    Outlet<farview::TextField> pairingLabel;
    Outlet<farview::TextField> pairingDigitsLabel;
    Outlet<farview::TextField> pairingHintLabel;
    Outlet<farview::Button> pairingYesButton;
    Outlet<farview::Button> pairingNoButton;
    Outlet<farview::TextField> deviceHintLabel;
    Outlet<farview::Button> screenDiagnoseButton;
    Outlet<farview::TextField> typingLabel;
    Outlet<farview::TableView> furtherDevicesTable;
    Outlet<farview::View> screenPlaceBox;
    Outlet<farview::ScreenMap> screenMap;
    Outlet<farview::View> mayTypeBox;
    Outlet<farview::Button> mayTypeCheckbox;
    Outlet<farview::TextField> connectionHelpLabel;
    Outlet<farview::Button> connectionDiagnoseButton;

    void setOffTextButton(auto view) { offTextButton.set(view); }
    void setOnOffSwitch(auto view) { onOffSwitch.set(view); }
    void setOnTextButton(auto view) { onTextButton.set(view); }
    void setTabView(auto view) { tabView.set(view); }
    void setStatusLabel(auto view) { statusLabel.set(view); }
    void setStatusExplanationLabel(auto view) { statusExplanationLabel.set(view); }
    void setVirtualScreenSelectionPopup(auto view) { virtualScreenSelectionPopup.set(view); }
    void setInstructionsLabel(auto view) { instructionsLabel.set(view); }
    void setMenuExtraCheckbox(auto view) { menuExtraCheckbox.set(view); }
    void setWarningImage(auto view) { warningImage.set(view); }
    void setReinstallDriversButton(auto view) { reinstallDriversButton.set(view); }
    void setEnableHiDPIResolutions(auto view) { enableHiDPIResolutions.set(view); }
    void setEnableTouchDisplay(auto view) { enableTouchDisplay.set(view); }
    void setEnableRetinaResolutions(auto view) { enableRetinaResolutions.set(view); }
    void setAutoUpdateCheckbox(auto view) { autoUpdateCheckbox.set(view); }
    void setCheckNowForUpdateButton(auto view) { checkNowForUpdateButton.set(view); }
    void setAutoMoveWindowsBack(auto view) { autoMoveWindowsBack.set(view); }
    void setAutoConnect(auto view) { autoConnect.set(view); }
    void setAutoConnectTable(auto view) { autoConnectTable.set(view); }
    void setPlaceholderForFullPopupSize(auto view) { placeholderForFullPopupSize.set(view); }
    void setPlaceholderForReducedPopupSize(auto view) { placeholderForReducedPopupSize.set(view); }
    void setWaitingForServerIndicator(auto view) { waitingForServerIndicator.set(view); }
    void setVersionNumberLabel(auto view) { versionNumberLabel.set(view); }

    /// The sheet for connecting by address: an object, not a control, so no row of the table. The
    /// pane makes it when its view was loaded and nobody else had set one.
    const std::shared_ptr<FVEConnectToOtherSheetController>& connectToOtherSheetController() const
    {
        return mConnectToOtherSheetController;
    }
    void
    setConnectToOtherSheetController(std::shared_ptr<FVEConnectToOtherSheetController> controller)
    {
        mConnectToOtherSheetController = std::move(controller);
    }

private:
    std::shared_ptr<FVEConnectToOtherSheetController> mConnectToOtherSheetController;
};
