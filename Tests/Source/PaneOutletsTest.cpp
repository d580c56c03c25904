// What an interface file and other objects find in the pane by name.

#include "Tests/Source/PaneFixture.h"

#include <fstream>
#include <regex>
#include <set>

namespace
{

class PaneOutlets : public PaneFixture
{
};

const std::set<std::string_view> outletNames = {
    "offTextButton",
    "pairingBox",
    "pairingLabel",
    "pairingDigitsLabel",
    "pairingHintLabel",
    "pairingYesButton",
    "pairingNoButton",
    "onOffSwitch",
    "onTextButton",
    "tabView",
    "statusLabel",
    "statusExplanationLabel",
    "virtualScreenSelectionPopup",
    "instructionsLabel",
    "menuExtraCheckbox",
    "startAtLoginCheckbox",
    "warningImage",
    "reinstallDriversButton",
    "enableHiDPIResolutions",
    "enableTouchDisplay",
    "enableRetinaResolutions",
    "autoUpdateCheckbox",
    "checkNowForUpdateButton",
    "updateStatusLabel",
    "autoMoveWindowsBack",
    "autoConnect",
    "autoConnectTable",
    "placeholderForFullPopupSize",
    "placeholderForReducedPopupSize",
    "waitingForServerIndicator",
    "versionNumberLabel",
    "deviceHintLabel",
    "screenDiagnoseButton",
    "screenPlaceBox",
    "screenMap",
    "connectionHelpLabel",
    "connectionDiagnoseButton",
    "orderHintLabel",
    "autoConnectAll",
    "windowsHintLabel",
    "typingLabel",
    "furtherDevicesTable",
    "mayTypeBox",
    "mayTypeCheckbox",
};

TEST_F(PaneOutlets, AreTheseAndNoOthers)
{
    std::set<std::string_view> found;
    for (const auto& outlet : pane->outlets())
        EXPECT_TRUE(found.insert(outlet.name).second) << outlet.name << " is there twice";
    EXPECT_EQ(found, outletNames);
}

TEST_F(PaneOutlets, AreNullUntilTheyAreConnected)
{
    FVEPreferencePane fresh(fake.platform());
    EXPECT_EQ(fresh.offTextButton(), nullptr);
    EXPECT_EQ(fresh.onOffSwitch(), nullptr);
    EXPECT_EQ(fresh.deviceHintLabel(), nullptr);
}

TEST_F(PaneOutlets, ConnectingStoresTheControlInThePropertyOfThatName)
{
    for (const auto& outlet : pane->outlets()) {
        const auto control = outlet.connect(*pane);
        if (outlet.name == "statusLabel") {
            EXPECT_EQ(control, pane->statusLabel());
        } else if (outlet.name == "autoConnect") {
            EXPECT_EQ(control, pane->autoConnect());
        } else if (outlet.name == "onOffSwitch") {
            EXPECT_EQ(control, pane->onOffSwitch());
        }
        EXPECT_NE(control, nullptr) << outlet.name;
    }
}

TEST_F(PaneOutlets, CheckBoxesAreCheckBoxes)
{
    using Kind = farview::Button::Kind;
    for (const auto& box :
         {pane->menuExtraCheckbox(), pane->startAtLoginCheckbox(), pane->enableHiDPIResolutions(),
          pane->enableTouchDisplay(), pane->enableRetinaResolutions(), pane->autoUpdateCheckbox(),
          pane->autoMoveWindowsBack(), pane->autoConnect(), pane->autoConnectAll(),
          pane->mayTypeCheckbox()})
        EXPECT_EQ(box->kind(), Kind::checkBox);
    EXPECT_EQ(pane->offTextButton()->kind(), Kind::push);
    EXPECT_EQ(pane->reinstallDriversButton()->kind(), Kind::push);
    EXPECT_EQ(pane->checkNowForUpdateButton()->kind(), Kind::push);
}

TEST_F(PaneOutlets, EveryNameThatOthersCallIsAnswered)
{
    load();
    for (const char* name : {"onTextPressed:",
                             "offTextPressed:",
                             "onOffSliderPressed:",
                             "onOffSwitchPressed:",
                             "prefsChanged:",
                             "applicationDidBecomeActive:",
                             "takeNoVirtualScreenFrom:",
                             "takeVirtualScreenFrom:",
                             "takeVirtualOtherDeviceScreenFrom:",
                             "virtualScreensDidChange:",
                             "virtualScreensDidRemoveService:",
                             "netServiceTXTRecordChanged:",
                             "serverConnectedToDeviceNotification:",
                             "serverQueryResultNotification:",
                             "serverDisconnectedFromDeviceNotification:",
                             "serverRespondedToConnectRequest:",
                             "requestingErrorMsgFromPrefPane:",
                             "checkForConnectionError:",
                             "errorMessageCanNowBeCleared:",
                             "watchdogTimerOperation:",
                             "autoConnectPressed:",
                             "menuExtraCheckboxPressed:",
                             "startAtLoginPressed:",
                             "enableTouchDisplayPressed:",
                             "enableRetinaPressed:",
                             "enableHiDPIPressed:",
                             "autoMoveWindowsBackPressed:",
                             "reinstallDriversPressed:",
                             "helpPressed:",
                             "checkNowForUpdatePressed:",
                             "autoUpdatePressed:",
                             "showDevices:",
                             "screenPlaced:",
                             "serverScreenDidChange:",
                             "serverFurtherDevicesDidChange:",
                             "pairedDevicesDidChange:",
                             "mayTypePressed:",
                             "autoConnectAllPressed:"})
        EXPECT_TRUE(pane->respondsTo({name})) << name;
}

TEST_F(PaneOutlets, ANameThatNobodyCallsIsNotAnswered)
{
    for (const char* name : {"", "onTextPressed", "onTextPressed::", "dealloc", "updateUI:"}) {
        EXPECT_FALSE(pane->respondsTo({name})) << name;
        EXPECT_FALSE(pane->perform({name}, nullptr)) << name;
    }
}

TEST_F(PaneOutlets, CallingByNameReachesTheOperation)
{
    showWithState(0);
    EXPECT_TRUE(pane->perform({"onTextPressed:"}, nullptr));
    EXPECT_EQ(status(), "On");
    EXPECT_TRUE(pane->perform({"helpPressed:"}, nullptr));
    EXPECT_EQ(fake.workspace.opened().size(), 1u);
    EXPECT_TRUE(pane->perform({"requestingErrorMsgFromPrefPane:"}, nullptr));
    EXPECT_FALSE(warningShows()) << "an observer wants a notification";
}

// The interface file itself, as text: the real loader has tests of its own.

std::string interfaceFile()
{
    std::ifstream file(std::string(FARVIEW_SOURCE_DIR) + "/PaneBundle/PreferencePane.ui");
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(PaneOutlets, TheInterfaceFileHasAnObjectForEachOutlet)
{
    const auto file = interfaceFile();
    ASSERT_FALSE(file.empty());
    for (const auto name : outletNames)
        EXPECT_NE(file.find("name=\"" + std::string(name) + "\""), std::string::npos) << name;
}

TEST_F(PaneOutlets, TheInterfaceFileSendsTheActionsAndNoUnknownOnes)
{
    static const std::regex action("name=\"action\"[^>]*><string[^>]*>([^<]+)</string>");
    const auto file = interfaceFile();
    std::set<std::string> sent;
    for (std::sregex_iterator match(file.begin(), file.end(), action), end; match != end; ++match)
        sent.insert((*match)[1]);
    for (const char* name :
         {"onTextPressed:", "offTextPressed:", "autoConnectPressed:", "menuExtraCheckboxPressed:",
          "enableTouchDisplayPressed:", "enableRetinaPressed:", "enableHiDPIPressed:",
          "autoMoveWindowsBackPressed:", "reinstallDriversPressed:", "helpPressed:",
          "checkNowForUpdatePressed:", "autoUpdatePressed:", "showDevices:", "screenPlaced:",
          "mayTypePressed:", "autoConnectAllPressed:"})
        EXPECT_TRUE(sent.contains(name)) << name;
    for (const auto& name : sent)
        EXPECT_TRUE(pane->respondsTo({name})) << name;
}

TEST_F(PaneOutlets, ShowDevicesTurnsToTheDeviceList)
{
    loadAndShow();
    ASSERT_EQ(pane->tabView()->selectedIdentifier(), "Settings");
    EXPECT_TRUE(pane->perform({"showDevices:"}, nullptr));
    EXPECT_EQ(pane->tabView()->selectedIdentifier(), "Main");
}

} // namespace
