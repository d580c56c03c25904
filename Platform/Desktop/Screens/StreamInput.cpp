#include "Platform/Desktop/Screens/StreamInput.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <linux/input-event-codes.h>
#include <xkbcommon/xkbcommon.h>

namespace farview
{
namespace
{

/// How far the desktop scrolls with one notch.
constexpr double notch = 10;
/// Neither a wheel, whose parts of notches Mutter 43 loses, nor fingers on a pad, which would have
/// to tell when they leave it.
constexpr unsigned isSteady = 8;

constexpr char touching[] = "NotifyTouchDown";
constexpr char lifting[] = "NotifyTouchUp";

enum Axis : unsigned { vertical = 0, horizontal = 1 };

int codeOf(PointerButton button)
{
    switch (button) {
    case PointerButton::right:
        return BTN_RIGHT;
    case PointerButton::middle:
        return BTN_MIDDLE;
    case PointerButton::back:
        return BTN_SIDE;
    case PointerButton::forward:
        return BTN_EXTRA;
    default:
        return BTN_LEFT;
    }
}

bool isWhole(double number) { return number == std::trunc(number); }

} // namespace

void StreamInput::end()
{
    for (int finger = 0; finger < int(mFingers.size()); ++finger)
        lift(finger);
    mUnsettled = 0;
    mHolds = 0;
    passOn();
    mMonitor.reset();
}

InputAbilities StreamInput::abilities() const
{
    return isOpen() ? mSession.inputAbilities() : InputAbilities{};
}

void StreamInput::notify(const char* member, const QVariantList& arguments)
{
    if (!isOpen())
        return;
    mWaiting.emplace_back(member, arguments);
    passOn();
}

/// A finger is lifted, and what comes after that is done, once the desktop knows that it was down:
/// where both reach a program together, Qt holds the finger for down until the next touch. Mutter's
/// own threads may still bring that about.
void StreamInput::passOn()
{
    const auto mustWait = [this] {
        return mHolds > 0 || (mUnsettled > 0 && mWaiting.front().first == lifting);
    };
    for (; !mWaiting.empty() && !mustWait(); mWaiting.pop_front())
        send(mWaiting.front());
}

void StreamInput::send(const Notice& notice)
{
    mSession.notify(notice.first, notice.second);
    if (notice.first != touching)
        return;
    ++mUnsettled;
    mSession.settle([this] {
        --mUnsettled;
        passOn();
    });
}

void StreamInput::hold(std::function<void()> then)
{
    ++mHolds;
    mSession.settle(std::move(then));
}

void StreamInput::goOn()
{
    mHolds = std::max(0, mHolds - 1);
    passOn();
}

/// Places are told in the desktop's units, from the monitor's corner, and beyond its edge lie
/// other screens. A monitor that is about to become smaller may be so already.
std::optional<QVariantList> StreamInput::onStream(const InputPlace& place) const
{
    const auto isWithin = [](double at, int end) { return at >= 0 && at < end; };
    if (!isOpen() || !isWithin(place.x, std::min(mMonitor->width, mWish.width)) ||
        !isWithin(place.y, std::min(mMonitor->height, mWish.height)))
        return std::nullopt;
    return QVariantList{place.x * mMonitor->area.width / mMonitor->width,
                        place.y * mMonitor->area.height / mMonitor->height};
}

void StreamInput::movePointer(const InputPlace& place)
{
    if (const auto at = onStream(place))
        notify("NotifyPointerMotionAbsolute", QVariantList{mSession.streamName()} + *at);
}

void StreamInput::button(PointerButton button, bool isDown)
{
    notify("NotifyPointerButton", {codeOf(button), isDown});
}

/// Some programs know whole notches only.
void StreamInput::wheel(double right, double down)
{
    if (!isWhole(right) || !isWhole(down))
        return notify("NotifyPointerAxis", {right * notch, down * notch, isSteady});
    if (right != 0)
        notify("NotifyPointerAxisDiscrete", {unsigned{horizontal}, int(right)});
    if (down != 0)
        notify("NotifyPointerAxisDiscrete", {unsigned{vertical}, int(down)});
}

void StreamInput::touch(const TouchPoint& point)
{
    if (point.finger < 0 || point.finger >= int(mFingers.size()))
        return;
    if (point.phase == TouchPhase::down)
        press(point.finger, point.place);
    else if (point.phase != TouchPhase::motion)
        lift(point.finger);
    else if (const auto at = onStream(point.place); at && mFingers[point.finger])
        notify("NotifyTouchMotion",
               QVariantList{mSession.streamName(), unsigned(point.finger)} + *at);
}

void StreamInput::press(int finger, const InputPlace& place)
{
    const auto at = onStream(place);
    if (!at || mFingers[finger])
        return;
    mFingers.set(finger);
    notify(touching, QVariantList{mSession.streamName(), unsigned(finger)} + *at);
}

void StreamInput::lift(int finger)
{
    if (mFingers[finger])
        notify(lifting, {unsigned(finger)});
    mFingers.reset(finger);
}

void StreamInput::key(std::uint16_t code, bool isDown)
{
    notify("NotifyKeyboardKeycode", {unsigned{code}, isDown});
}

void StreamInput::text(const std::string& text)
{
    for (const auto character : QString::fromStdString(text).toUcs4()) {
        const unsigned symbol = xkb_utf32_to_keysym(character);
        notify("NotifyKeyboardKeysym", {symbol, true});
        notify("NotifyKeyboardKeysym", {symbol, false});
    }
}

} // namespace farview
