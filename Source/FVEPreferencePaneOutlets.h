#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Menu.h"
#include "Controls/Switch/FVEChiseledTextButton.h"
#include "Controls/Switch/QLNOnOffView.h"
#include "Controls/TabView.h"
#include "Controls/TableView.h"

#include <memory>
#include <span>
#include <utility>

class FVEConnectToOtherSheetController;

// Every control that the pane's interface file must hold: its type, the outlet's name (which is the
// object name in the file too), its setter, and how it is made.
#define FVE_PREFERENCE_PANE_OUTLETS(OUTLET)                                                        \
    OUTLET(FVEChiseledTextButton, offTextButton, setOffTextButton, make)                           \
    OUTLET(QLNOnOffView, onOffSwitch, setOnOffSwitch, make)                                        \
    OUTLET(FVEChiseledTextButton, onTextButton, setOnTextButton, make)                             \
    OUTLET(farview::TabView, tabView, setTabView, make)                                            \
    OUTLET(farview::TextField, statusLabel, setStatusLabel, make)                                  \
    OUTLET(farview::TextField, statusExplanationLabel, setStatusExplanationLabel, make)            \
    OUTLET(farview::PopUpButton, virtualScreenSelectionPopup, setVirtualScreenSelectionPopup,      \
           make)                                                                                   \
    OUTLET(farview::TextField, instructionsLabel, setInstructionsLabel, make)                      \
    OUTLET(farview::Button, menuExtraCheckbox, setMenuExtraCheckbox, makeCheckBox)                 \
    OUTLET(farview::Button, startAtLoginCheckbox, setStartAtLoginCheckbox, makeCheckBox)           \
    OUTLET(farview::ImageView, warningImage, setWarningImage, make)                                \
    OUTLET(farview::Button, reinstallDriversButton, setReinstallDriversButton, make)               \
    OUTLET(farview::Button, enableHiDPIResolutions, setEnableHiDPIResolutions, makeCheckBox)       \
    OUTLET(farview::Button, enableTouchDisplay, setEnableTouchDisplay, makeCheckBox)               \
    OUTLET(farview::Button, enableRetinaResolutions, setEnableRetinaResolutions, makeCheckBox)     \
    OUTLET(farview::Button, autoUpdateCheckbox, setAutoUpdateCheckbox, makeCheckBox)               \
    OUTLET(farview::Button, checkNowForUpdateButton, setCheckNowForUpdateButton, make)             \
    OUTLET(farview::TextField, updateStatusLabel, setUpdateStatusLabel, make)                      \
    OUTLET(farview::Button, autoMoveWindowsBack, setAutoMoveWindowsBack, makeCheckBox)             \
    OUTLET(farview::Button, autoConnect, setAutoConnect, makeCheckBox)                             \
    OUTLET(farview::TableView, autoConnectTable, setAutoConnectTable, make)                        \
    OUTLET(farview::TextField, orderHintLabel, setOrderHintLabel, make)                            \
    OUTLET(farview::View, placeholderForFullPopupSize, setPlaceholderForFullPopupSize, make)       \
    OUTLET(farview::View, placeholderForReducedPopupSize, setPlaceholderForReducedPopupSize, make) \
    OUTLET(farview::ProgressIndicator, waitingForServerIndicator, setWaitingForServerIndicator,    \
           make)                                                                                   \
    OUTLET(farview::TextField, versionNumberLabel, setVersionNumberLabel, make)                    \
    OUTLET(farview::TextField, deviceHintLabel, setDeviceHintLabel, make)                          \
    OUTLET(farview::TextField, connectionHelpLabel, setConnectionHelpLabel, make)                  \
    OUTLET(farview::Button, connectionDiagnoseButton, setConnectionDiagnoseButton, make)

/// The pane's outlets. Each is a property, null until the interface file is loaded; the table tells
/// a loader (and a test) which controls there must be.
class FVEPreferencePaneOutlets : public farview::InterfaceOwner
{
public:
    std::span<const farview::Outlet> outlets() const override;

#define FVE_DECLARE_OUTLET(Type, name, setName, maker)                                             \
    const std::shared_ptr<Type>& name() const { return mOutlet_##name; }                           \
    void setName(std::shared_ptr<Type> control) { mOutlet_##name = std::move(control); }
    FVE_PREFERENCE_PANE_OUTLETS(FVE_DECLARE_OUTLET)
#undef FVE_DECLARE_OUTLET

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
#define FVE_STORE_OUTLET(Type, name, setName, maker) std::shared_ptr<Type> mOutlet_##name;
    FVE_PREFERENCE_PANE_OUTLETS(FVE_STORE_OUTLET)
#undef FVE_STORE_OUTLET
    std::shared_ptr<FVEConnectToOtherSheetController> mConnectToOtherSheetController;
};
