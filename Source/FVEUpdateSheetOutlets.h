#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Panel.h"

#include <memory>
#include <span>
#include <utility>

// Every control that the sheet's interface file must hold: its type, the outlet's name and its
// setter.
#define FVE_UPDATE_SHEET_OUTLETS(OUTLET)                                                           \
    OUTLET(farview::Panel, updatePanel, setUpdatePanel)                                            \
    OUTLET(farview::TextField, headlineText, setHeadlineText)                                      \
    OUTLET(farview::TextField, detailText, setDetailText)                                          \
    OUTLET(farview::View, notesArea, setNotesArea)                                                 \
    OUTLET(farview::TextField, notesText, setNotesText)                                            \
    OUTLET(farview::ProgressIndicator, updateProgress, setUpdateProgress)                          \
    OUTLET(farview::Button, firstButton, setFirstButton)                                           \
    OUTLET(farview::Button, secondButton, setSecondButton)

/// The sheet's outlets. Each is a property, null until the interface file is loaded.
class FVEUpdateSheetOutlets : public farview::InterfaceOwner
{
public:
    std::span<const farview::Outlet> outlets() const override;

#define FVE_DECLARE_OUTLET(Type, name, setName)                                                    \
    const std::shared_ptr<Type>& name() const { return mOutlet_##name; }                           \
    void setName(std::shared_ptr<Type> control) { mOutlet_##name = std::move(control); }
    FVE_UPDATE_SHEET_OUTLETS(FVE_DECLARE_OUTLET)
#undef FVE_DECLARE_OUTLET

private:
#define FVE_STORE_OUTLET(Type, name, setName) std::shared_ptr<Type> mOutlet_##name;
    FVE_UPDATE_SHEET_OUTLETS(FVE_STORE_OUTLET)
#undef FVE_STORE_OUTLET
};
