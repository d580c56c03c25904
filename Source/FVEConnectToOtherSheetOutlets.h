#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Panel.h"

#include <memory>
#include <span>
#include <utility>

// Every control that the sheet's interface file must hold: its type, the outlet's name and its
// setter.
#define FVE_CONNECT_TO_OTHER_SHEET_OUTLETS(OUTLET)                                                 \
    OUTLET(farview::Panel, otherDevicePanel, setOtherDevicePanel)                                  \
    OUTLET(farview::TextField, otherTextField, setOtherTextField)                                  \
    OUTLET(farview::TextField, connectToOtherExplanationText, setConnectToOtherExplanationText)    \
    OUTLET(farview::Button, connectToOtherOKButton, setConnectToOtherOKButton)                     \
    OUTLET(farview::TextField, connectToOtherProgress, setConnectToOtherProgress)

/// The sheet's outlets. Each is a property, null until the interface file is loaded.
class FVEConnectToOtherSheetOutlets : public farview::InterfaceOwner
{
public:
    std::span<const farview::Outlet> outlets() const override;

#define FVE_DECLARE_OUTLET(Type, name, setName)                                                    \
    const std::shared_ptr<Type>& name() const { return mOutlet_##name; }                           \
    void setName(std::shared_ptr<Type> control) { mOutlet_##name = std::move(control); }
    FVE_CONNECT_TO_OTHER_SHEET_OUTLETS(FVE_DECLARE_OUTLET)
#undef FVE_DECLARE_OUTLET

private:
#define FVE_STORE_OUTLET(Type, name, setName) std::shared_ptr<Type> mOutlet_##name;
    FVE_CONNECT_TO_OTHER_SHEET_OUTLETS(FVE_STORE_OUTLET)
#undef FVE_STORE_OUTLET
};
