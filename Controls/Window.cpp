#include "Controls/Window.h"

namespace farview
{

void Window::orderFront(const std::shared_ptr<View>& view)
{
    mBeside = view;
    update(mVisible, true);
}

void Window::close()
{
    if (!mVisible)
        return;
    const auto keptAlive = shared_from_this();
    if (const auto delegate = mDelegate.lock())
        delegate->perform({"windowWillClose:"}, this);
    update(mVisible, false);
}

} // namespace farview
