#include "Platform/Desktop/Screens/X11/X11Input.h"

#include "Platform/Desktop/Screens/X11/XConnection.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace farview
{
namespace
{

/// More than anybody turns a wheel at a time.
constexpr double mostNotches = 100;

std::uint8_t numberOf(PointerButton button)
{
    switch (button) {
    case PointerButton::left:
        return 1;
    case PointerButton::middle:
        return 2;
    case PointerButton::right:
        return 3;
    case PointerButton::back:
        return 8;
    case PointerButton::forward:
        return 9;
    }
    return 1;
}

} // namespace

X11Input::X11Input(xcb_connection_t* connection, std::unique_ptr<InputDevices> devices)
    : mConnection(connection), mHands(connection), mText(connection, mHands),
      mDevices(connection, std::move(devices))
{
}

void X11Input::setArea(const std::optional<PixelRect>& area)
{
    if (area == mArea)
        return;
    mArea = area;
    if (mArea)
        keepOnMonitor();
    releaseAll();
    mPointer.reset();
}

/// What the device's user drags is not dropped on another screen because the monitor has left.
void X11Input::keepOnMonitor()
{
    const auto keep = [this](InputPlace& place) {
        place.x = std::clamp<double>(place.x, 0, mArea->width - 1);
        place.y = std::clamp<double>(place.y, 0, mArea->height - 1);
        locate(place);
    };
    if (mPointer && mHands.hasButtonDown()) {
        keep(*mPointer);
        placePointer();
    }
    for (auto& [number, finger] : mFingers) {
        keep(finger.place);
        finger.phase = TouchPhase::motion;
        mDevices.touch(finger);
    }
    if (mPen) {
        keep(mPen->place);
        mDevices.pen(*mPen);
    }
}

InputAbilities X11Input::abilities() const
{
    return {.pointer = true,
            .touch = mDevices.hasTouch(),
            .pen = mDevices.hasPen(),
            .keys = true,
            .touchWithARight = !mDevices.hasTouch()};
}

/// Where on the desktop it is now: the monitor may have moved since somebody worked that out. False
/// outside the monitor.
bool X11Input::locate(InputPlace& place) const
{
    const bool isInside =
        mArea && place.x >= 0 && place.y >= 0 && place.x < mArea->width && place.y < mArea->height;
    if (isInside) {
        place.desktopX = mArea->x + place.x;
        place.desktopY = mArea->y + place.y;
    }
    return isInside;
}

void X11Input::movePointer(const InputPlace& place)
{
    auto located = place;
    if (!locate(located))
        return;
    mPointer = located;
    placePointer();
}

void X11Input::placePointer()
{
    mHands.movePointer(
        pixelPoint(static_cast<int>(mPointer->desktopX), static_cast<int>(mPointer->desktopY)));
}

/// There where the device's user has put the pointer, and nowhere else.
void X11Input::button(PointerButton button, bool isDown)
{
    if (!mPointer)
        return;
    if (isDown)
        placePointer();
    mHands.button(numberOf(button), isDown);
}

void X11Input::wheel(double right, double down)
{
    if (!mPointer || !std::isfinite(right) || !std::isfinite(down))
        return;
    placePointer();
    turn(mRight, right, 6, 7);
    turn(mDown, down, 4, 5);
}

/// The server knows whole notches only, as buttons.
void X11Input::turn(double& sum, double notches, std::uint8_t back, std::uint8_t forth)
{
    sum = std::clamp(sum + notches, -mostNotches, mostNotches);
    const double whole = std::trunc(sum);
    sum -= whole;
    const auto number = whole < 0 ? back : forth;
    for (double count = std::abs(whole); count > 0; --count) {
        mHands.button(number, true);
        mHands.button(number, false);
    }
}

void X11Input::touch(TouchPoint point)
{
    if (point.phase == TouchPhase::up || point.phase == TouchPhase::cancel)
        return liftFinger(point.finger);
    const bool isKnown = mFingers.contains(point.finger);
    const bool mayBegin = point.phase == TouchPhase::down && mDevices.hasTouch();
    if (!locate(point.place) || !(isKnown || mayBegin))
        return;
    point.phase = isKnown ? TouchPhase::motion : TouchPhase::down;
    mFingers[point.finger] = point;
    mDevices.touch(point);
}

void X11Input::liftFinger(int finger)
{
    auto known = mFingers.extract(finger);
    if (known.empty())
        return;
    known.mapped().phase = TouchPhase::up;
    mDevices.touch(known.mapped());
}

void X11Input::pen(PenState state)
{
    if (!state.isNear)
        return takePenAway();
    if (!mDevices.hasPen() || !locate(state.place))
        return;
    mPen = state;
    mDevices.pen(state);
}

void X11Input::takePenAway()
{
    if (!mPen)
        return;
    mPen->isNear = false;
    mDevices.pen(*std::exchange(mPen, std::nullopt));
}

void X11Input::key(std::uint16_t code, bool isDown)
{
    constexpr int offset = 8;
    constexpr int most = 255 - offset;
    if (mArea && code <= most)
        mHands.key(static_cast<std::uint8_t>(code + offset), isDown);
}

void X11Input::text(const std::string& text)
{
    if (mArea)
        mText.type(text);
}

void X11Input::releaseAll()
{
    mHands.releaseAll();
    while (!mFingers.empty())
        liftFinger(mFingers.begin()->first);
    takePenAway();
    mRight = 0;
    mDown = 0;
}

/// The server has to have taken it before the connection ends.
void X11Input::finish()
{
    releaseAll();
    mText.giveBackAll();
    const XReply<xcb_get_input_focus_reply_t> taken(
        xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr));
}

} // namespace farview
