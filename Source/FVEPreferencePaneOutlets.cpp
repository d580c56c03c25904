#include "Source/FVEPreferencePaneOutlets.h"

#include <array>

using farview::InterfaceOwner;
using farview::Outlet;
using farview::outlet;
using farview::View;

namespace
{

using Pane = FVEPreferencePaneOutlets;

template <auto property> constexpr Outlet checkBox(std::string_view name)
{
    return {name, [](InterfaceOwner& owner) -> std::shared_ptr<View> {
                const auto box = farview::connectOutlet(owner, property);
                box->setKind(farview::Button::Kind::checkBox);
                return box;
            }};
}

constexpr auto outletTable = std::to_array<Outlet>({
    outlet<&Pane::offTextButton>("offTextButton"),
    outlet<&Pane::onOffSwitch>("onOffSwitch"),
    outlet<&Pane::onTextButton>("onTextButton"),
    outlet<&Pane::tabView>("tabView"),
    outlet<&Pane::statusLabel>("statusLabel"),
    outlet<&Pane::statusExplanationLabel>("statusExplanationLabel"),
    outlet<&Pane::virtualScreenSelectionPopup>("virtualScreenSelectionPopup"),
    outlet<&Pane::instructionsLabel>("instructionsLabel"),
    checkBox<&Pane::menuExtraCheckbox>("menuExtraCheckbox"),
    checkBox<&Pane::startAtLoginCheckbox>("startAtLoginCheckbox"),
    outlet<&Pane::warningImage>("warningImage"),
    outlet<&Pane::reinstallDriversButton>("reinstallDriversButton"),
    checkBox<&Pane::enableHiDPIResolutions>("enableHiDPIResolutions"),
    checkBox<&Pane::enableTouchDisplay>("enableTouchDisplay"),
    checkBox<&Pane::enableRetinaResolutions>("enableRetinaResolutions"),
    checkBox<&Pane::autoUpdateCheckbox>("autoUpdateCheckbox"),
    outlet<&Pane::checkNowForUpdateButton>("checkNowForUpdateButton"),
    outlet<&Pane::updateStatusLabel>("updateStatusLabel"),
    checkBox<&Pane::autoMoveWindowsBack>("autoMoveWindowsBack"),
    outlet<&Pane::windowsHintLabel>("windowsHintLabel"),
    checkBox<&Pane::autoConnect>("autoConnect"),
    outlet<&Pane::autoConnectTable>("autoConnectTable"),
    outlet<&Pane::orderHintLabel>("orderHintLabel"),
    checkBox<&Pane::autoConnectAll>("autoConnectAll"),
    outlet<&Pane::placeholderForFullPopupSize>("placeholderForFullPopupSize"),
    outlet<&Pane::placeholderForReducedPopupSize>("placeholderForReducedPopupSize"),
    outlet<&Pane::waitingForServerIndicator>("waitingForServerIndicator"),
    outlet<&Pane::versionNumberLabel>("versionNumberLabel"),
    outlet<&Pane::pairingBox>("pairingBox"),
    outlet<&Pane::pairingLabel>("pairingLabel"),
    outlet<&Pane::pairingDigitsLabel>("pairingDigitsLabel"),
    outlet<&Pane::pairingHintLabel>("pairingHintLabel"),
    outlet<&Pane::pairingYesButton>("pairingYesButton"),
    outlet<&Pane::pairingNoButton>("pairingNoButton"),
    outlet<&Pane::deviceHintLabel>("deviceHintLabel"),
    outlet<&Pane::screenDiagnoseButton>("screenDiagnoseButton"),
    outlet<&Pane::typingLabel>("typingLabel"),
    outlet<&Pane::furtherDevicesTable>("furtherDevicesTable"),
    outlet<&Pane::screenPlaceBox>("screenPlaceBox"),
    outlet<&Pane::screenMap>("screenMap"),
    outlet<&Pane::mayTypeBox>("mayTypeBox"),
    checkBox<&Pane::mayTypeCheckbox>("mayTypeCheckbox"),
    outlet<&Pane::connectionHelpLabel>("connectionHelpLabel"),
    outlet<&Pane::connectionDiagnoseButton>("connectionDiagnoseButton"),
});

} // namespace

std::span<const Outlet> FVEPreferencePaneOutlets::outlets() const { return outletTable; }
