#include "Controls/View.h"

namespace farview
{

void View::setHidden(bool hidden) { update(mHidden, hidden); }

void View::setFrame(Rect frame, bool animated)
{
    if (mFrame == frame)
        return;
    mFrame = frame;
    mFrameChangeIsAnimated = animated;
    changed(Change::frame);
}

std::optional<Animation> View::defaultAnimationForKey(std::string_view key)
{
    const bool isPlace = key == "frame" || key == "frameOrigin" || key == "frameSize";
    return isPlace ? std::optional<Animation>(Animation{}) : std::nullopt;
}

void View::setToolTip(std::string toolTip) { update(mToolTip, std::move(toolTip)); }

} // namespace farview
