#include "Controls/Control.h"

namespace farview
{

bool Control::sendAction()
{
    const auto self = shared_from_this();
    const auto target = mTarget.lock();
    return target && !mAction.isEmpty() && target->perform(mAction, this);
}

void Button::performClick(Object* /*sender*/)
{
    if (!isEnabled())
        return;
    if (mKind == Kind::checkBox)
        setState(mState == 0 ? 1 : 0);
    sendAction();
}

void TextField::userTyped(std::string text)
{
    if (!isEnabled() || !mEditable || text == mStringValue)
        return;
    mStringValue = std::move(text);
    changed(Change::typedText);
}

} // namespace farview
