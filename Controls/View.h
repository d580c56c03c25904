#pragma once

#include "Controls/Animation.h"
#include "Platform/Types/Object.h"
#include "Platform/Types/Observers.h"
#include "Platform/Types/Rect.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace farview
{

/// What a control tells its observers about.
enum class Change {
    properties, ///< anything that has no word of its own: texts, states, enabled, hidden
    frame,
    menu,
    rows,
    sheet,
    textSelection,
    typedText, ///< the user typed: the only change of a text that is not a program's doing
};

/// Something on screen that can be hidden and has a place. Remembers what was set, whether or not
/// anything shows it. All controls are made with `std::make_shared` and live on the main thread.
class View : public Object, public std::enable_shared_from_this<View>
{
public:
    bool isHidden() const { return mHidden; }
    void setHidden(bool hidden);

    /// The destination frame, in points, in the coordinates of the view around it.
    Rect frame() const { return mFrame; }
    /// Sets the destination at once; when `animated`, whoever shows the view plays the way there.
    void setFrame(Rect frame, bool animated);
    /// Whether the last change of the frame asked for an animation.
    bool frameChangeIsAnimated() const { return mFrameChangeIsAnimated; }

    /// How a change of that property is played; none when it cannot be.
    static std::optional<Animation> defaultAnimationForKey(std::string_view key);

    const std::string& toolTip() const { return mToolTip; }
    void setToolTip(std::string toolTip);

    /// Calls `observer` after every change until the subscription ends. It may outlive the view.
    Subscription observe(std::function<void(Change)> observer)
    {
        return mObservers.add(std::move(observer));
    }

protected:
    void changed(Change change) { mObservers.tell(change); }

    /// Stores a value and tells the observers when it differs from the one before.
    template <typename Value> void update(Value& stored, Value value)
    {
        if (stored == value)
            return;
        stored = std::move(value);
        changed(Change::properties);
    }

private:
    Observers<Change> mObservers;
    Rect mFrame;
    std::string mToolTip;
    bool mHidden = false;
    bool mFrameChangeIsAnimated = false;
};

} // namespace farview
