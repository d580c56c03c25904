#include "Source/AccessibilityPane.h"

#include "Controls/OperationTable.h"
#include "Platform/Accessibility.h"
#include "Platform/Bundle.h"

#include <array>
#include <utility>

namespace farview
{
namespace
{

using Pane = AccessibilityPane;
using Lifetime = AccessibilitySwitch::Lifetime;

constexpr auto operations = std::to_array<Operation<Pane>>({
    action<&Pane::accessibilityPressed, Pane>("accessibilityPressed:"),
});

constexpr auto outletTable = std::to_array<Outlet>({
    outlet<&Pane::accessibilityCheckbox>("accessibilityCheckbox"),
    outlet<&Pane::lifetimeLabel>("lifetimeLabel"),
    outlet<&Pane::windowsLabel>("windowsLabel"),
    outlet<&Pane::problemLabel>("problemLabel"),
});

const char* lifetimeText(std::optional<Lifetime> lifetime)
{
    if (!lifetime)
        return "";
    return lifetime == Lifetime::kept
               ? "Your desktop keeps this choice until you change it, also after you log out."
               : "Your desktop does not keep this choice: it holds until you log out.";
}

const char* problemText(AccessibilitySwitch::Problem problem)
{
    switch (problem) {
    case AccessibilitySwitch::Problem::noService:
        return "This desktop has no accessibility service, so there is nothing to switch. The "
               "package at-spi2-core brings it.";
    case AccessibilitySwitch::Problem::noAnswer:
        return "The accessibility service of this desktop does not answer. Log out and in again, "
               "then try once more.";
    case AccessibilitySwitch::Problem::notTaken:
        return "The desktop did not take the change. Its administrator may have locked the "
               "setting.";
    case AccessibilitySwitch::Problem::none:
        break;
    }
    return "";
}

} // namespace

AccessibilityPane::AccessibilityPane(Accessibility& windows,
                                     AccessibilitySwitch& accessibilitySwitch,
                                     std::shared_ptr<const Bundle> bundle)
    : mWindows(windows), mSwitch(accessibilitySwitch), mBundle(std::move(bundle))
{
}

std::span<const Outlet> AccessibilityPane::outlets() const { return outletTable; }

bool AccessibilityPane::respondsTo(Selector selector) const
{
    return findOperation<Pane>(operations, selector) != nullptr;
}

bool AccessibilityPane::perform(Selector selector, Object* argument)
{
    const auto* operation = findOperation<Pane>(operations, selector);
    if (operation)
        operation->call(*this, argument);
    return operation != nullptr;
}

void AccessibilityPane::willSelect()
{
    mState = {};
    mProblem = Problem::none;
    show();
    mSubscription = mSwitch.observe([this](const State& state) {
        mState = state;
        show();
    });
}

void AccessibilityPane::willUnselect() { mSubscription.end(); }

void AccessibilityPane::accessibilityPressed(Object* /*sender*/)
{
    mIsBeingSet = true;
    mProblem = Problem::none;
    accessibilityCheckbox()->setEnabled(false);
    mSwitch.set(accessibilityCheckbox()->state() == 1, [weak = weak_from_this()](Problem problem) {
        if (const auto pane = weak.lock())
            pane->wasSet(problem);
    });
}

void AccessibilityPane::wasSet(Problem problem)
{
    mIsBeingSet = false;
    mProblem = problem;
    show();
}

void AccessibilityPane::show()
{
    // While a change is under way the box shows what was asked for.
    if (!mIsBeingSet) {
        accessibilityCheckbox()->setState(mState.isOn.value_or(false) ? 1 : 0);
        accessibilityCheckbox()->setEnabled(mState.isOn.has_value());
    }
    lifetimeLabel()->setStringValue(localized(mState.isOn ? lifetimeText(mState.lifetime) : ""));
    showWhatItMeansForWindows();
    const auto problem = mProblem == Problem::none ? mState.problem : mProblem;
    problemLabel()->setTextRole(TextField::Role::error);
    problemLabel()->setStringValue(localized(problemText(problem)));
}

void AccessibilityPane::showWhatItMeansForWindows()
{
    const auto say = [this](const char* text) { windowsLabel()->setStringValue(localized(text)); };
    say(mState.isOn == true ? "Farview may move windows back: tick that option in its settings."
                            : "");
    if (mState.isOn != false)
        return;
    mWindows.askWhetherEnabled(weak_from_this(), [this, say](bool isEnabled) {
        if (isEnabled && mState.isOn == false)
            say("On this desktop Farview may move windows back even while this is off.");
    });
}

std::string AccessibilityPane::localized(const std::string& text) const
{
    return mBundle && !text.empty() ? mBundle->localizedString(text, "", "") : text;
}

} // namespace farview
