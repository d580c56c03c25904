#pragma once

#include "Link/Wire/LinkFrame.h"
#include "Platform/RunLoop.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <vector>

namespace farview
{

/// Tells the host what the device's user does with its picture, as far as the host wants to know.
/// Each finger, the pen, the pointer and the wheel tell a motion at most once in `pause`, the
/// newest; no motion is told before or after a press that it did not belong to. Main thread only.
class InputReporter
{
public:
    using Send = std::function<void(const LinkFrame&)>;

    static constexpr Duration pause = std::chrono::milliseconds(4);

    /// Sends nothing before the host's options allow it. `loop` outlives this.
    InputReporter(RunLoop& loop, Send send);

    /// What the host wants. Lifts what is down and no longer wanted.
    void setOptions(const LinkOptions& options);
    bool takesInput() const { return mOptions.touch; }
    /// Keys and text.
    bool takesTyping() const { return mOptions.touch && mOptions.typing; }

    /// A finger that was not told as down, or was lifted meanwhile, is passed over until it comes
    /// down again; so is a key that goes up.
    void touch(const LinkTouch& touch);
    void pen(const LinkPen& pen);
    void pointer(const LinkPointer& pointer);
    void wheel(const LinkWheel& wheel);
    void key(const LinkKey& key);
    /// Of any length; what cannot be printed becomes a blank.
    void text(std::string_view text);

    /// The device lost sight of its fingers.
    void cancelFingers();
    /// Takes fingers, pen, buttons and keys up, because the user is elsewhere now.
    void liftAll();

    bool isDown(std::uint8_t finger) const { return mFingers.contains(finger); }
    const LinkPen& pen() const { return mPen; }
    const LinkPointer& pointer() const { return mPointer; }

private:
    void say(const LinkFrame& frame);
    void sayMotion(const LinkFrame& motion);
    void sayWaiting();
    void liftKeys();

    RunLoop& mLoop;
    Send mSend;
    LinkOptions mOptions;
    // As they were told, or will be.
    std::map<std::uint8_t, LinkTouch> mFingers; ///< that are down
    LinkPen mPen{.place = {}, .isNear = false};
    LinkPointer mPointer;
    std::set<std::uint8_t> mKeys;    ///< that are down
    std::vector<LinkFrame> mWaiting; ///< motions, while one was told just now
    bool mIsPausing = false;
    std::shared_ptr<int> mLife = std::make_shared<int>(); ///< the pause ends with it
};

} // namespace farview
