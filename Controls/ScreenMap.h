#pragma once

#include "Common/Rules/ScreenPlacement.h"
#include "Controls/Control.h"

#include <string>
#include <vector>

namespace farview
{

/// A small picture of the user's screens and of the device's beside them, which the user moves to
/// another side of the main one. It shows what it was told and nothing else: what the user chooses
/// is only asked for.
class ScreenMap : public Control
{
public:
    /// Where the device's screen is, and the user's own, the main one first; in the desktop's own
    /// units. `screens` is not empty.
    void setScreens(PixelRect monitor, std::vector<PixelRect> screens);
    const PixelRect& monitor() const { return mMonitor; }
    /// Empty until it was told.
    const std::vector<PixelRect>& screens() const { return mScreens; }
    /// The same in words.
    const std::string& stringValue() const { return mStringValue; }
    void setStringValue(std::string text) { update(mStringValue, std::move(text)); }

    /// The user's door: stores the side and sends the action.
    void userChose(ScreenSide side);
    /// Goes back to where the device's screen was before the latest choice; once for each.
    void userTookBack();
    ScreenSide chosenSide() const { return mChosenSide; }

private:
    void choose(ScreenSide side);

    PixelRect mMonitor;
    std::vector<PixelRect> mScreens;
    std::vector<ScreenSide> mEarlierSides;
    std::string mStringValue;
    ScreenSide mChosenSide = ScreenSide::right;
};

} // namespace farview
