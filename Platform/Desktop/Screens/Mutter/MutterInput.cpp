#include "Platform/Desktop/Screens/Mutter/MutterInput.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <linux/input-event-codes.h>
#include <xkbcommon/xkbcommon.h>

namespace farview
{
namespace
{

/// How far Mutter scrolls with one notch.
constexpr double notch = 10;
/// Neither a wheel, whose parts of notches Mutter 43 loses, nor fingers on a pad, which would have
/// to tell when they leave it.
constexpr unsigned isSteady = 8;

/// Users' fingers are those below.
constexpr unsigned fingerOfNobody = 16;

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

/// Mutter makes a device for what comes first of each kind. Places mean nothing to it before
/// pictures are taken, and no keyboard has that key: so nothing happens to any window.
void MutterInput::makeDevices()
{
    if (!mWish.input)
        return;
    const QVariant stream = mSession.streamPath();
    mSession.notify("NotifyPointerMotionAbsolute", {stream, 0.0, 0.0});
    // Mutter drops it, unless it is slow and the monitor has come: a finger that no user has, and
    // that must not stay down.
    mSession.notify("NotifyTouchDown", {stream, fingerOfNobody, 0.0, 0.0});
    mSession.notify("NotifyTouchUp", {fingerOfNobody});
    mSession.notify("NotifyKeyboardKeycode", {unsigned{KEY_RESERVED}, true});
}

void MutterInput::end()
{
    for (int finger = 0; finger < int(mFingers.size()); ++finger)
        lift(finger);
    mUnsettled = 0;
    goOn();
    mMonitor.reset();
}

InputAbilities MutterInput::abilities() const
{
    const bool flag = isOpen();
    return {.pointer = flag, .touch = flag, .pen = false, .keys = flag};
}

void MutterInput::notify(const char* member, const QVariantList& arguments)
{
    if (!isOpen())
        return;
    mWaiting.emplace_back(member, arguments);
    passOn();
}

/// A finger is lifted, and what comes after that is done, once Mutter knows that it was down: where
/// both reach a program together, Qt holds the finger for down until the next touch. Mutter's own
/// threads may still bring that about.
void MutterInput::passOn()
{
    const auto mustWait = [this] {
        return mIsHeld || (mUnsettled > 0 && mWaiting.front().first == lifting);
    };
    for (; !mWaiting.empty() && !mustWait(); mWaiting.pop_front())
        send(mWaiting.front());
}

void MutterInput::send(const Notice& notice)
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

void MutterInput::hold(std::function<void()> then)
{
    mIsHeld = true;
    mSession.settle(std::move(then));
}

void MutterInput::goOn()
{
    mIsHeld = false;
    passOn();
}

/// Mutter takes places in the desktop's units, from the monitor's corner, and beyond its edge lie
/// other screens. A monitor that is about to become smaller may be so already.
std::optional<QVariantList> MutterInput::onStream(const InputPlace& place) const
{
    const auto isWithin = [](double at, int end) { return at >= 0 && at < end; };
    if (!isOpen() || !isWithin(place.x, std::min(mMonitor->width, mWish.width)) ||
        !isWithin(place.y, std::min(mMonitor->height, mWish.height)))
        return std::nullopt;
    return QVariantList{place.x * mMonitor->area.width / mMonitor->width,
                        place.y * mMonitor->area.height / mMonitor->height};
}

void MutterInput::movePointer(const InputPlace& place)
{
    if (const auto at = onStream(place))
        notify("NotifyPointerMotionAbsolute", QVariantList{mSession.streamPath()} + *at);
}

void MutterInput::button(PointerButton button, bool isDown)
{
    notify("NotifyPointerButton", {codeOf(button), isDown});
}

/// Some programs know whole notches only.
void MutterInput::wheel(double right, double down)
{
    if (!isWhole(right) || !isWhole(down))
        return notify("NotifyPointerAxis", {right * notch, down * notch, isSteady});
    if (right != 0)
        notify("NotifyPointerAxisDiscrete", {unsigned{horizontal}, int(right)});
    if (down != 0)
        notify("NotifyPointerAxisDiscrete", {unsigned{vertical}, int(down)});
}

void MutterInput::touch(const TouchPoint& point)
{
    if (point.finger < 0 || point.finger >= int(mFingers.size()))
        return;
    if (point.phase == TouchPhase::down)
        press(point.finger, point.place);
    else if (point.phase != TouchPhase::motion)
        lift(point.finger);
    else if (const auto at = onStream(point.place); at && mFingers[point.finger])
        notify("NotifyTouchMotion",
               QVariantList{mSession.streamPath(), unsigned(point.finger)} + *at);
}

void MutterInput::press(int finger, const InputPlace& place)
{
    const auto at = onStream(place);
    if (!at || mFingers[finger])
        return;
    mFingers.set(finger);
    notify(touching, QVariantList{mSession.streamPath(), unsigned(finger)} + *at);
}

void MutterInput::lift(int finger)
{
    if (mFingers[finger])
        notify(lifting, {unsigned(finger)});
    mFingers.reset(finger);
}

void MutterInput::key(std::uint16_t code, bool isDown)
{
    notify("NotifyKeyboardKeycode", {unsigned{code}, isDown});
}

void MutterInput::text(const std::string& text)
{
    for (const auto character : QString::fromStdString(text).toUcs4()) {
        const unsigned symbol = xkb_utf32_to_keysym(character);
        notify("NotifyKeyboardKeysym", {symbol, true});
        notify("NotifyKeyboardKeysym", {symbol, false});
    }
}

} // namespace farview
