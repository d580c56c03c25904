#pragma once

class FVEPreferencePane;

namespace farview
{
class Object;
}

/// The sheet in which the user types the address of a device that cannot be found by itself.
class FVEConnectToOtherSheetController
{
public:
    /// Opens the sheet on the pane's window.
    void showConnectToOtherSheet(farview::Object* sender);
};
