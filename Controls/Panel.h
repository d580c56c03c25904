#pragma once

#include "Controls/View.h"

#include <memory>

namespace farview
{

/// A window that is shown as a sheet: it hangs on another window, which takes no input meanwhile.
class Panel : public View
{
public:
    /// Shows the panel on the window that `view` is in. Does nothing while it is a sheet already.
    void beginSheet(const std::shared_ptr<View>& view);
    /// Gives the other window its input back.
    void endSheet(int returnCode);
    /// Takes the panel off the screen.
    void orderOut();

    bool isSheet() const { return mSheet; }
    bool isVisible() const { return mVisible; }
    /// A view in the window that the sheet hangs on; null when there is none (any more).
    std::shared_ptr<View> sheetParent() const { return mParent.lock(); }
    /// How the last sheet ended.
    int returnCode() const { return mReturnCode; }

private:
    std::weak_ptr<View> mParent;
    int mReturnCode = 0;
    bool mSheet = false;
    bool mVisible = false;
};

} // namespace farview
