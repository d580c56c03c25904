#pragma once

#include "Controls/View.h"
#include "Platform/Types/Selector.h"

#include <memory>

namespace farview
{

/// A small window of its own, beside the one that opened it. What is closed is not shown again: the
/// next opening makes a new window.
class Window : public View
{
public:
    /// On every space that the user looks at.
    static constexpr unsigned canJoinAllSpaces = 1;

    /// Shows it in front of the window that `view` is in, which goes on taking input.
    void orderFront(const std::shared_ptr<View>& view);
    /// Takes it off the screen, after the delegate's "windowWillClose:". The user's close button
    /// does the same. Does nothing while it is not on the screen.
    void close();

    bool isVisible() const { return mVisible; }
    /// A view in the window that it stands beside; null when there is none (any more).
    std::shared_ptr<View> besideView() const { return mBeside.lock(); }

    void setDelegate(std::weak_ptr<Responder> delegate) { mDelegate = std::move(delegate); }
    std::shared_ptr<Responder> delegate() const { return mDelegate.lock(); }

    /// Puts it in the middle when it is shown.
    void center() { mCentered = true; }
    bool isCentered() const { return mCentered; }
    unsigned collectionBehavior() const { return mCollectionBehavior; }
    void setCollectionBehavior(unsigned behavior) { mCollectionBehavior = behavior; }

private:
    std::weak_ptr<View> mBeside;
    std::weak_ptr<Responder> mDelegate;
    unsigned mCollectionBehavior = 0;
    bool mCentered = false;
    bool mVisible = false;
};

} // namespace farview
