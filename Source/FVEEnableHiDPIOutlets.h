#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Window.h"

#include <memory>
#include <span>
#include <utility>

// Every control that the window's interface file must hold: its type, the outlet's name and its
// setter.
#define FVE_ENABLE_HIDPI_OUTLETS(OUTLET)                                                           \
    OUTLET(farview::Window, window, setWindow)                                                     \
    OUTLET(farview::TextField, explanationText, setExplanationText)                                \
    OUTLET(farview::TextField, progressText, setProgressText)                                      \
    OUTLET(farview::Button, okButton, setOkButton)                                                 \
    OUTLET(farview::Button, cancelButton, setCancelButton)

/// The window's outlets. Each is a property, null until the interface file is loaded.
class FVEEnableHiDPIOutlets : public farview::InterfaceOwner
{
public:
    std::span<const farview::Outlet> outlets() const override;

#define FVE_DECLARE_OUTLET(Type, name, setName)                                                    \
    const std::shared_ptr<Type>& name() const { return mOutlet_##name; }                           \
    void setName(std::shared_ptr<Type> control) { mOutlet_##name = std::move(control); }
    FVE_ENABLE_HIDPI_OUTLETS(FVE_DECLARE_OUTLET)
#undef FVE_DECLARE_OUTLET

private:
#define FVE_STORE_OUTLET(Type, name, setName) std::shared_ptr<Type> mOutlet_##name;
    FVE_ENABLE_HIDPI_OUTLETS(FVE_STORE_OUTLET)
#undef FVE_STORE_OUTLET
};
