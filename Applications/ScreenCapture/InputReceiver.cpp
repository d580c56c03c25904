#include "Applications/ScreenCapture/InputReceiver.h"

#include <algorithm>

namespace farview
{
namespace
{

constexpr double fullPressure = kFullLinkPressure;
constexpr double partsOfNotch = 120;
constexpr std::uint8_t leftButton = 1;
constexpr std::uint8_t rightButton = 2;
constexpr std::array buttonsByBit{PointerButton::left, PointerButton::right, PointerButton::middle,
                                  PointerButton::back, PointerButton::forward};

bool isBegin(std::uint8_t byte) { return (byte & 0xC0U) != 0x80; }

double charactersOf(const std::string& text)
{
    return static_cast<double>(std::count_if(text.begin(), text.end(), isBegin));
}

} // namespace

bool EventBudget::spend(double events, Duration now)
{
    mLeft = std::min(mMost, mLeft + (now - mAt).count() * mPerSecond);
    mAt = now;
    if (mLeft < events)
        return false;
    mLeft -= events;
    return true;
}

void InputReceiver::setRights(const Rights& rights)
{
    mRights = rights;
    if (!rights.input)
        releaseAll();
    else if (!rights.keys)
        releaseKeys();
}

bool InputReceiver::take(const LinkFrame& frame)
{
    if (!mRights.input)
        return false;
    if (const auto* touch = std::get_if<LinkTouch>(&frame))
        pass(*touch);
    else if (const auto* pen = std::get_if<LinkPen>(&frame))
        pass(*pen);
    else if (const auto* pointer = std::get_if<LinkPointer>(&frame))
        pass(*pointer);
    else if (const auto* wheel = std::get_if<LinkWheel>(&frame))
        pass(*wheel);
    else if (const auto* key = std::get_if<LinkKey>(&frame))
        return pass(*key);
    else if (const auto* text = std::get_if<LinkText>(&frame))
        return pass(*text);
    return false;
}

std::optional<InputPlace> InputReceiver::placeOf(const LinkPlace& place) const
{
    const auto mapped = mappedPlace(place, mMonitor);
    if (!mapped)
        return std::nullopt;
    return InputPlace{mapped->x, mapped->y, mapped->desktopX, mapped->desktopY};
}

bool InputReceiver::mayMove() { return mMotions.spend(1, mNow()); }

bool InputReceiver::mayStrike(double strokes) { return mStrokes.spend(strokes, mNow()); }

// --- fingers ---------------------------------------------------------------------------------

/// What was put down is lifted where it was last, wherever that is on the picture of now.
void InputReceiver::pass(const LinkTouch& touch)
{
    const auto& known = mFingers.at(touch.finger);
    const auto place = placeOf(touch.place);
    TouchPoint point{touch.finger,
                     static_cast<TouchPhase>(touch.phase),
                     place.value_or(known ? known->place : InputPlace{}),
                     touch.pressure / fullPressure,
                     static_cast<double>(touch.contactWidth),
                     static_cast<double>(touch.contactHeight)};
    if (point.phase == TouchPhase::down && known)
        lift(*known, TouchPhase::up);
    if (point.phase == TouchPhase::down && place && mayStrike())
        press(point);
    else if (point.phase == TouchPhase::motion && known && place && mayMove()) {
        mFingers.at(touch.finger) = point;
        if (mFingerOfPointer == point.finger)
            mSink.movePointer(point.place);
        else if (!mFingerOfPointer)
            mSink.touch(point);
    } else if (point.phase == TouchPhase::up || point.phase == TouchPhase::cancel) {
        if (known)
            lift(point, point.phase);
    }
}

void InputReceiver::press(const TouchPoint& point)
{
    const bool isFirst = std::none_of(mFingers.begin(), mFingers.end(),
                                      [](const auto& finger) { return finger.has_value(); });
    mFingers.at(static_cast<std::size_t>(point.finger)) = point;
    if (isFirst && !mSink.abilities().touch) {
        mFingerOfPointer = point.finger;
        mSink.movePointer(point.place);
        setButtons(leftButton);
    } else if (!mFingerOfPointer) {
        mSink.touch(point);
    }
}

void InputReceiver::lift(TouchPoint point, TouchPhase phase)
{
    point.phase = phase;
    mFingers.at(static_cast<std::size_t>(point.finger)).reset();
    if (mFingerOfPointer == point.finger) {
        mSink.movePointer(point.place);
        setButtons(0);
        liftFingers();
        mFingerOfPointer.reset();
    } else if (!mFingerOfPointer) {
        mSink.touch(point);
    }
}

void InputReceiver::liftFingers()
{
    for (const auto& finger : mFingers) {
        if (const auto point = finger)
            lift(*point, TouchPhase::cancel);
    }
}

// --- pen and pointer -------------------------------------------------------------------------

void InputReceiver::pass(const LinkPen& pen)
{
    const auto place = placeOf(pen.place);
    const bool isStroke = mPen && (mPen->isDown != pen.isDown || mPen->buttons != pen.buttons);
    if (!pen.isNear || !place) {
        if (mPen && !pen.isNear)
            setPen({.place = mPen->place, .isNear = false});
        return;
    }
    if (isStroke ? mayStrike() : mayMove())
        setPen({*place, true, pen.isDown, pen.isEraser, pen.pressure / fullPressure, pen.tiltX,
                pen.tiltY, pen.buttons});
}

void InputReceiver::setPen(const PenState& state)
{
    mPen = state.isNear ? std::optional(state) : std::nullopt;
    if (mSink.abilities().pen) {
        mSink.pen(state);
        return;
    }
    mSink.movePointer(state.place);
    const std::uint8_t pressed = (state.buttons & 1U) != 0 ? rightButton : leftButton;
    setButtons(state.isNear && state.isDown ? pressed : 0);
}

void InputReceiver::pass(const LinkPointer& pointer)
{
    const auto place = placeOf(pointer.place);
    const bool isRelease = (pointer.buttons & ~mButtons) == 0 && pointer.buttons != mButtons;
    if (place && mayMove())
        mSink.movePointer(*place);
    if (isRelease || (place && pointer.buttons != mButtons && mayStrike()))
        setButtons(pointer.buttons);
}

void InputReceiver::setButtons(std::uint8_t buttons)
{
    const std::uint8_t before = std::exchange(mButtons, buttons);
    for (std::size_t bit = 0; bit < buttonsByBit.size(); ++bit) {
        const std::uint8_t mask = 1U << bit;
        if (((before ^ buttons) & mask) != 0)
            mSink.button(buttonsByBit.at(bit), (buttons & mask) != 0);
    }
}

void InputReceiver::pass(const LinkWheel& wheel)
{
    const auto place = placeOf(wheel.place);
    if (!place || !mayMove())
        return;
    mSink.movePointer(*place);
    mSink.wheel(wheel.right / partsOfNotch, wheel.down / partsOfNotch);
}

// --- keys ------------------------------------------------------------------------------------

bool InputReceiver::pass(const LinkKey& key)
{
    const bool isChange = mRights.keys && mKeys.test(key.code) != key.isDown;
    if (!isChange || (key.isDown && !mayStrike()))
        return false;
    mKeys.set(key.code, key.isDown);
    mSink.key(key.code, key.isDown);
    return key.isDown;
}

bool InputReceiver::pass(const LinkText& text)
{
    const bool isAllowed = mRights.keys && !text.text.empty() && mayStrike(charactersOf(text.text));
    if (isAllowed)
        mSink.text(text.text);
    return isAllowed;
}

void InputReceiver::releaseKeys()
{
    for (std::size_t code = 0; code < mKeys.size(); ++code) {
        if (mKeys.test(code))
            mSink.key(static_cast<std::uint16_t>(code), false);
    }
    mKeys.reset();
}

void InputReceiver::releaseAll()
{
    liftFingers();
    if (mPen)
        setPen({.place = mPen->place, .isNear = false});
    setButtons(0);
    releaseKeys();
}

} // namespace farview
