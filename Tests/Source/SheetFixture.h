#pragma once

#include "Source/FVEConnectToOtherSheetController.h"
#include "Tests/Source/PaneFixture.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Connects the sheet as its interface file does.
inline void wireSheet(const FakeInterfaceLoader::Owner& owner)
{
    auto& sheet = dynamic_cast<FVEConnectToOtherSheetController&>(*owner);
    sheet.otherTextField()->setEditable(true);
    sheet.connectToOtherOKButton()->setTitle("OK");
    sheet.connectToOtherOKButton()->setTarget(owner);
    sheet.connectToOtherOKButton()->setAction({"okButtonPressed:"});
}

/// A pane on show whose user opens the sheet and types.
class SheetFixture : public PaneFixture
{
protected:
    using Role = farview::TextField::Role;

    SheetFixture()
    {
        loader->wire = wireSheet;
        pane->setInterfaceLoader(loader);
    }

    void open()
    {
        if (!pane->isOnShow())
            showWithState(1);
        ASSERT_TRUE(choose(connectToOther));
        fake.runLoop.runUntilIdle();
        ASSERT_TRUE(isOpen());
    }
    FVEConnectToOtherSheetController& sheet() const
    {
        return *pane->connectToOtherSheetController();
    }
    void type(const std::string& text) { sheet().otherTextField()->userTyped(text); }
    void pressOK()
    {
        sheet().connectToOtherOKButton()->performClick(nullptr);
        fake.runLoop.runUntilIdle();
    }
    void pressCancel()
    {
        sheet().perform({"cancelButtonPressed:"}, nullptr);
        fake.runLoop.runUntilIdle();
    }
    void openAndConnectTo(const std::string& address)
    {
        open();
        type(address);
        pressOK();
    }

    bool isOpen() const
    {
        const auto& panel = sheet().otherDevicePanel();
        return panel && panel->isSheet() && panel->isVisible() && sheet().isOpen();
    }
    bool okIsEnabled() const { return sheet().connectToOtherOKButton()->isEnabled(); }
    std::string okTitle() const { return sheet().connectToOtherOKButton()->title(); }
    std::string progress() const { return sheet().connectToOtherProgress()->stringValue(); }
    bool progressShows() const { return !sheet().connectToOtherProgress()->isHidden(); }
    Role progressRole() const { return sheet().connectToOtherProgress()->textRole(); }
    bool isWaiting() const { return !sheet().connectionAttemptTimoutTimer().expired(); }
    std::vector<Post> requests() const { return posts(kConnectServerToTicket); }

    /// Whether the pane acts on reports of the server: one is sent that it cannot overlook.
    bool paneHearsTheServer()
    {
        pane->setConnectedToOtherDevice(false);
        serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "Other"}});
        const bool heardResult = pane->connectedToOtherDevice();
        pane->setConnectedToOtherDevice(false);
        serverPosts(kServerConnectedToDevice, {{"DeviceName", "Other"}});
        const bool heardReport = pane->connectedToOtherDevice();
        EXPECT_EQ(heardResult, heardReport) << "both or none";
        return heardResult && heardReport;
    }
};
