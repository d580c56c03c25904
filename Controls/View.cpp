#include "Controls/View.h"

#include <map>

namespace farview
{

struct View::Observers {
    std::map<unsigned, std::shared_ptr<std::function<void(Change)>>> all;
    unsigned next = 0;
};

View::View() : mObservers(std::make_shared<Observers>()) {}
View::~View() = default;

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

Subscription View::observe(std::function<void(Change)> observer)
{
    const unsigned number = mObservers->next++;
    mObservers->all[number] = std::make_shared<std::function<void(Change)>>(std::move(observer));
    return Subscription([observers = std::weak_ptr<Observers>(mObservers), number] {
        if (const auto alive = observers.lock())
            alive->all.erase(number);
    });
}

void View::changed(Change change)
{
    // An observer may end its own or another's subscription while it is told, or the view's life.
    const auto observers = mObservers;
    const auto snapshot = observers->all;
    for (const auto& [number, observer] : snapshot) {
        if (observers->all.contains(number))
            (*observer)(change);
    }
}

} // namespace farview
