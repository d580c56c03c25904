#include "Applications/Device/InputReporter.h"

#include "Link/Wire/LinkCodec.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace farview
{
namespace
{

bool isOfSameSource(const LinkFrame& left, const LinkFrame& right)
{
    const auto* finger = std::get_if<LinkTouch>(&left);
    const auto* other = std::get_if<LinkTouch>(&right);
    return left.index() == right.index() && (!finger || finger->finger == other->finger);
}

std::int16_t sum(std::int16_t left, std::int16_t right)
{
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<int>(left + right, Limits::min(), Limits::max()));
}

/// Places replace each other, turns of the wheel add up.
void join(LinkFrame& waiting, const LinkFrame& newest)
{
    const auto* before = std::get_if<LinkWheel>(&waiting);
    const auto* now = std::get_if<LinkWheel>(&newest);
    if (before && now)
        waiting =
            LinkWheel{now->place, sum(before->right, now->right), sum(before->down, now->down)};
    else
        waiting = newest;
}

bool isSameGrip(const LinkPen& left, const LinkPen& right)
{
    return left.isNear == right.isNear && left.isDown == right.isDown &&
           left.isEraser == right.isEraser && left.buttons == right.buttons;
}

} // namespace

InputReporter::InputReporter(RunLoop& loop, Send send) : mLoop(loop), mSend(std::move(send)) {}

void InputReporter::setOptions(const LinkOptions& options)
{
    if (!options.touch)
        liftAll();
    if (!options.typing)
        liftKeys();
    mOptions = options;
}

// --- what the user does ----------------------------------------------------------------------

void InputReporter::touch(const LinkTouch& touch)
{
    const bool isDown = touch.phase == LinkTouchPhase::down;
    if (!takesInput() || isDown == mFingers.contains(touch.finger))
        return;
    if (touch.phase == LinkTouchPhase::motion)
        sayMotion(touch);
    else
        say(touch);
    if (isDown || touch.phase == LinkTouchPhase::motion)
        mFingers[touch.finger] = touch;
    else
        mFingers.erase(touch.finger);
}

void InputReporter::pen(const LinkPen& pen)
{
    if (!takesInput() || (!pen.isNear && !mPen.isNear))
        return;
    if (isSameGrip(std::exchange(mPen, pen), pen))
        sayMotion(pen);
    else
        say(pen);
}

void InputReporter::pointer(const LinkPointer& pointer)
{
    if (!takesInput())
        return;
    if (std::exchange(mPointer, pointer).buttons == pointer.buttons)
        sayMotion(pointer);
    else
        say(pointer);
}

void InputReporter::wheel(const LinkWheel& wheel)
{
    if (takesInput() && (wheel.right != 0 || wheel.down != 0))
        sayMotion(wheel);
}

void InputReporter::key(const LinkKey& key)
{
    if (takesTyping() && (key.isDown ? mKeys.insert(key.code).second : mKeys.erase(key.code) > 0))
        say(key);
}

void InputReporter::text(std::string_view text)
{
    const std::string plain = plainLinkText(text, text.size());
    for (std::string_view rest = plain; takesTyping() && !rest.empty();) {
        const LinkText part{plainLinkText(rest, kLinkTextLimit)};
        say(part);
        rest.remove_prefix(part.text.size());
    }
}

void InputReporter::liftAll()
{
    mWaiting.clear();
    cancelFingers();
    if (mPen.isNear)
        say(mPen = {.place = mPen.place, .isNear = false});
    if (std::exchange(mPointer.buttons, 0) != 0)
        say(mPointer);
    liftKeys();
}

void InputReporter::cancelFingers()
{
    for (auto [finger, touch] : std::exchange(mFingers, {})) {
        touch.phase = LinkTouchPhase::cancel;
        say(touch);
    }
}

void InputReporter::liftKeys()
{
    for (const std::uint8_t code : std::exchange(mKeys, {}))
        say(LinkKey{code, false});
}

// --- what is told of it ----------------------------------------------------------------------

void InputReporter::say(const LinkFrame& frame)
{
    for (const auto& motion : std::exchange(mWaiting, {}))
        mSend(motion);
    mSend(frame);
}

void InputReporter::sayMotion(const LinkFrame& motion)
{
    const auto same = std::find_if(mWaiting.begin(), mWaiting.end(),
                                   [&](const auto& each) { return isOfSameSource(each, motion); });
    if (same == mWaiting.end())
        mWaiting.push_back(motion);
    else
        join(*same, motion);
    if (!mIsPausing)
        sayWaiting();
}

void InputReporter::sayWaiting()
{
    mIsPausing = !mWaiting.empty();
    if (!mIsPausing)
        return;
    for (const auto& motion : std::exchange(mWaiting, {}))
        mSend(motion);
    mLoop.performAfterDelay(pause, mLife, [this] { sayWaiting(); });
}

} // namespace farview
