#pragma once

#include "Controls/Control.h"
#include "Controls/InterfaceOwner.h"
#include "Platform/AccessibilitySwitch.h"

#include <memory>
#include <optional>
#include <span>
#include <string>

namespace farview
{

class Accessibility;
class Bundle;

/// The small pane that shows and sets the desktop's accessibility switch. Made with
/// `std::make_shared`; main thread only; what it is given by reference outlives it.
class AccessibilityPane : public InterfaceOwner,
                          public Object,
                          public std::enable_shared_from_this<AccessibilityPane>
{
public:
    /// `windows` tells whether programs may move windows anyway; `bundle` holds the texts.
    AccessibilityPane(Accessibility& windows, AccessibilitySwitch& accessibilitySwitch,
                      std::shared_ptr<const Bundle> bundle);

    std::span<const Outlet> outlets() const override;
    bool respondsTo(Selector selector) const override;
    bool perform(Selector selector, Object* argument) override;

    void willSelect();
    void willUnselect();
    void accessibilityPressed(Object* sender);

    // Outlets, null until the interface file is loaded.
    OutletProperty<Button> accessibilityCheckbox;
    OutletProperty<TextField> lifetimeLabel; ///< how long the choice holds
    OutletProperty<TextField> windowsLabel;  ///< what it means for Farview
    OutletProperty<TextField> problemLabel;

private:
    using State = AccessibilitySwitch::State;
    using Problem = AccessibilitySwitch::Problem;

    void wasSet(Problem problem);
    void show();
    void showWhatItMeansForWindows();
    std::string localized(const std::string& text) const;

    Accessibility& mWindows;
    AccessibilitySwitch& mSwitch;
    std::shared_ptr<const Bundle> mBundle;
    Subscription mSubscription;
    State mState;
    Problem mProblem = Problem::none; ///< of the last change
    bool mIsBeingSet = false;
};

} // namespace farview
